// SPDX-License-Identifier: Apache-2.0
#include "firmware_probe.h"

namespace NVORNQDX20 {

TReading<std::uint16_t> ReadKnown(const TSMBIOSStructure& structure, std::size_t offset) {
  constexpr std::uint16_t kUnknown = 0x8000;
  auto number = structure.ReadNumber<std::uint16_t>(offset);
  if (number && *number == kUnknown) return structure.MissingFrom("unknown");
  return number;
}

TReading<std::uint8_t> ReadBits(const TSMBIOSStructure& structure, std::size_t offset,
                                unsigned int lowest, std::uint8_t last) {
  const unsigned int mask = lowest == 0 ? 0x1FU : 0x07U;
  return structure.ReadNumber<std::uint8_t>(offset).and_then(
      [&](std::uint8_t byte) -> TReading<std::uint8_t> {
        const auto number = static_cast<std::uint8_t>(byte >> lowest & mask);
        if (number >= 1 && number <= last) return number;
        return structure.MissingFrom("number " + std::to_string(number) +
                                     " has no meaning in SMBIOS");
      });
}

}  // namespace NVORNQDX20
