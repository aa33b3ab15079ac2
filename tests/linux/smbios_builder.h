// SPDX-License-Identifier: Apache-2.0
/// Builds the files of a made-up firmware's table (DMTF DSP0134).
#ifndef TESTS_LINUX_SMBIOS_BUILDER_H_
#define TESTS_LINUX_SMBIOS_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace NVORNQDX20 {

/// Bytes by their hexadecimal digits, with or without blanks between them.
inline std::string BytesOf(const std::string& hexadecimal) {
  std::string bytes;
  std::string digits;
  for (const char character : hexadecimal) {
    if (character == ' ') continue;
    digits += character;
    if (digits.size() < 2) continue;
    bytes += static_cast<char>(std::stoi(digits, nullptr, 16));
    digits.clear();
  }
  return bytes;
}

/// A structure with these bytes after its header, followed by its strings.
inline std::string SMBIOSStructure(std::uint8_t type, std::uint16_t handle,
                                   const std::string& fields,
                                   const std::vector<std::string>& strings = {}) {
  const std::string body = BytesOf(fields);
  std::string bytes = {static_cast<char>(type), static_cast<char>(body.size() + 4),
                       static_cast<char>(handle & 0xFFU), static_cast<char>(handle >> 8U)};
  bytes += body;
  for (const std::string& text : strings) bytes += text + '\0';
  if (strings.empty()) bytes += '\0';
  return bytes + '\0';
}

/// An entry point of SMBIOS 3.
inline std::string SMBIOS3EntryPoint(std::uint8_t major, std::uint8_t minor) {
  std::string bytes = "_SM3_" + BytesOf("00 18");
  bytes += {static_cast<char>(major), static_cast<char>(minor)};
  return bytes + BytesOf("00 01 00 00100000 0000000000000000");
}

/// An entry point of SMBIOS 2, which counts the structures.
inline std::string SMBIOS2EntryPoint(std::uint8_t minor, std::uint8_t count) {
  std::string bytes = "_SM_" + BytesOf("00 1F 02");
  bytes += static_cast<char>(minor);
  bytes += BytesOf("0001 00 0000000000") + "_DMI_" + BytesOf("00 0010 00000000");
  return bytes + static_cast<char>(count) + BytesOf("00 27");
}

}  // namespace NVORNQDX20

#endif  // TESTS_LINUX_SMBIOS_BUILDER_H_
