// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_MappedMemory: the addresses that arrays of memory have.
#include "classes/logical_device.h"
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

struct TMappedMemory : TDevice {
  TReading<TSMBIOSStructure> fStructure;
  TText fArray;
};

TText ArrayOf(const TSMBIOSStructure& range, const TMemoryDevices& devices) {
  return range.ReadNumber<std::uint16_t>(0x0C).and_then([&](std::uint16_t handle) -> TText {
    for (const TPhysicalElement& array : devices.GetArrays()) {
      if (array.fStructure->GetHandle() == handle) return array.fTag;
    }
    return range.MissingFrom("names no array of the table");
  });
}

TInstances<TMappedMemory> ListRanges(const THost& host) {
  const auto& devices = host.Shared<TMemoryDevices>();
  const auto elements = ListFirmware(host, 19, "Memory Array Mapped Address", {});
  TInstances<TMappedMemory> ranges({}, elements.fReason);
  ranges.fAll.reserve(elements.fAll.size());
  for (const TPhysicalElement& element : elements.fAll) {
    ranges.fAll.push_back(
        {{element.fTag, element.fName}, element.fStructure, ArrayOf(*element.fStructure, devices)});
  }
  return ranges;
}

constexpr std::size_t kFirst = 0x04, kLast = 0x08, kWideFirst = 0x0F, kWideLast = 0x17;

/// Returns the address of a byte of a KiB. If the first KiB of the range does not fit in its field,
/// wider fields have both addresses, in bytes.
TNumber ReadAddress(const TSMBIOSStructure& range, std::size_t offset, std::size_t wideOffset,
                    std::uint64_t byte) {
  constexpr std::uint32_t kInWideField = 0xFFFFFFFF;
  const auto first = range.ReadNumber<std::uint32_t>(kFirst);
  if (first && *first == kInWideField) return range.ReadNumber<std::uint64_t>(wideOffset);
  return range.ReadNumber<std::uint32_t>(offset).map(
      [byte](std::uint32_t kibibyte) { return (std::uint64_t{kibibyte} << 10U) + byte; });
}

TNumber ReadStart(const TMappedMemory& range) {
  return ReadAddress(*range.fStructure, kFirst, kWideFirst, 0);
}

TNumber ReadEnd(const TMappedMemory& range) {
  return ReadAddress(*range.fStructure, kLast, kWideLast, 1023);
}

TNumber ReadSize(const TMappedMemory& range) {
  return ReadStart(range).and_then([&range](std::uint64_t start) {
    return ReadEnd(range).and_then([&](std::uint64_t end) -> TNumber {
      if (end < start) return range.fStructure->MissingFrom("ends before it begins");
      return end - start + 1;
    });
  });
}

TReading<std::uint8_t> ReadWidth(const TMappedMemory& range) {
  return range.fStructure->ReadNumber<std::uint8_t>(0x0E);
}

}  // namespace

TClass MappedMemoryClass() {
  const TUnit bytes{"byte"};
  return THostTable<TMappedMemory>{
      "VORNSG_MappedMemory",
      "Addresses that belong to an array of memory.",
      ListRanges,
      {{"StartingAddress", "The address of its first byte.", ReadStart, bytes},
       {"EndingAddress", "The address of its last byte.", ReadEnd, bytes},
       {"Size", "The number of its bytes.", ReadSize, bytes},
       {"PartitionWidth", "The memory devices that a row of it consists of.", ReadWidth},
       {"MemoryArray", "The array that has them.", &TMappedMemory::fArray}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
