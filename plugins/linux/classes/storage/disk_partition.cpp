// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_DiskPartition: parts of disks and of other block devices.
#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

/// The kernel counts sectors of 512 bytes here, too.
TNumber ReadStart(const TBlockDevice& partition) {
  return Scaled(partition.ReadNumber("start"), 512);
}

/// Of a partition table of DOS, where 5, 15 and 133 are containers of logical partitions.
TReading<std::uint16_t> ReadDOSType(const TBlockDevice& partition) {
  return partition.fUdev.Get("ID_PART_ENTRY_SCHEME")
      .and_then([&partition](const std::string& scheme) -> TReading<std::uint16_t> {
        if (scheme != "dos") return Missing("the partition table is of type " + scheme);
        return ToNumber<std::uint16_t>(partition.fUdev.Get("ID_PART_ENTRY_TYPE"), "its type");
      });
}

constexpr std::uint16_t kPrimary = 1, kExtended = 2, kLogical = 3;
constexpr std::uint64_t kFirstLogicalNumber = 5;

TReading<std::uint16_t> ReadPartitionType(const TBlockDevice& partition) {
  return ReadDOSType(partition).and_then([&partition](unsigned type) {
    return partition.ReadNumber("partition").map([type](std::uint64_t number) {
      const bool isContainer = type == 0x05 || type == 0x0f || type == 0x85;
      return isContainer ? kExtended : number >= kFirstLogicalNumber ? kLogical : kPrimary;
    });
  });
}

/// The flag 0x80 of a DOS entry, or bit 2 of the attributes of a GPT entry. Without flags, udev has
/// no such property.
TReading<bool> ReadBootable(const TBlockDevice& partition) {
  return partition.fUdev.Get("ID_PART_ENTRY_SCHEME").map([&partition](const std::string& scheme) {
    const auto flags = ParseNumber(partition.fUdev.Get("ID_PART_ENTRY_FLAGS").ValueOr("0"));
    return (flags.value_or(0) & (scheme == "gpt" ? 4U : 0x80U)) != 0;
  });
}

}  // namespace

TClass DiskPartitionClass() {
  return THostTable<TExtent>{
      "VORNSG_DiskPartition",
      "A partition of a disk or of another block device.",
      ExtentsOf(EBlockKind::kPartition),
      {{"PartitionNumber", "Its number in the partition table.",
        FileNumber<std::uint32_t>("partition")},
       {"StartingOffset", "Where it begins on the disk.", ReadStart, TUnit{"byte"}},
       {"PartitionScheme", "The kind of partition table, as in \"gpt\" or \"dos\".",
        FromUdev("ID_PART_ENTRY_SCHEME")},
       {"PartitionTypeID", "What it is for, as the table says: a UUID, or a number of DOS.",
        FromUdev("ID_PART_ENTRY_TYPE")},
       {"PartitionType", "Which kind of entry of a DOS table it is.", ReadPartitionType,
        TEnumeration{{0, "Unknown"}, {1, "Primary"}, {2, "Extended"}, {3, "Logical"}}},
       {"PartitionUUID", "The UUID of the entry in the table.", FromUdev("ID_PART_ENTRY_UUID"),
        ESecret::kSerial},
       {"PartitionLabel", "The name in the table.", DecodedFromUdev("ID_PART_ENTRY_NAME")},
       {"Bootable", "Whether the table marks it as active.", ReadBootable}}}
      .DerivedFrom(StorageExtentTable());
}

}  // namespace NVORNQDX20
