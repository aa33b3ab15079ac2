// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_MemoryArray: sockets for memory that are used together.
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

constexpr std::uint32_t kInWideField = 0x80000000;

TInstances<TPhysicalElement> ListArrays(const THost& host) {
  const auto& devices = host.Shared<TMemoryDevices>();
  return {devices.GetArrays(), devices.GetArraysReason()};
}

/// In KiB; what does not fit is in another field, in bytes.
TNumber ReadMaximum(const TPhysicalElement& array) {
  return FirmwareNumber<std::uint32_t>(0x07)(array).and_then([&array](std::uint32_t size) {
    return size == kInWideField ? FirmwareNumber<std::uint64_t>(0x0F)(array)
                                : TNumber(std::uint64_t{size} << 10U);
  });
}

}  // namespace

TClass MemoryArrayClass() {
  return THostTable<TPhysicalElement>{
      "VORNSG_MemoryArray",
      "Sockets for modules of memory that are used together.",
      ListArrays,
      {{"Use", "What the memory is for.", FirmwareNumber<std::uint8_t>(0x05),
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "System Memory"},
                     {4, "Video Memory"},
                     {5, "Flash Memory"},
                     {6, "Non-Volatile RAM"},
                     {7, "Cache Memory"}}},
       {"Location", "Where the sockets are.", FirmwareNumber<std::uint8_t>(0x04),
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "System Board"},
                     {4, "ISA Card"},
                     {5, "EISA Card"},
                     {6, "PCI Card"},
                     {7, "MCA Card"},
                     {8, "PCMCIA Card"},
                     {9, "Proprietary Card"},
                     {10, "NuBus"},
                     {160, "PC-98/C20 Card"},
                     {161, "PC-98/C24 Card"},
                     {162, "PC-98/E Card"},
                     {163, "PC-98/Local Bus Card"},
                     {164, "CXL Card"}}},
       {"ErrorCorrection", "How errors of the memory are noticed or corrected.",
        FirmwareNumber<std::uint8_t>(0x06),
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "None"},
                     {4, "Parity"},
                     {5, "Single-bit ECC"},
                     {6, "Multi-bit ECC"},
                     {7, "CRC"}}},
       {"MaximumMemoryCapacity", "The most memory that it takes.", ReadMaximum, TUnit{"byte"}},
       {"NumberOfSlots", "The sockets that it has.", FirmwareNumber<std::uint16_t>(0x0D)}}}
      .DerivedFrom(PhysicalPackageTable());
}

}  // namespace NVORNQDX20
