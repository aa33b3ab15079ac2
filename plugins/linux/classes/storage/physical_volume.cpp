// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PhysicalVolume: the disks and partitions of volume groups of LVM.
#include "classes/catalogue.h"
#include "sources/storage/volume_groups.h"

namespace NVORNQDX20 {
namespace {

struct TMember : TPhysicalVolume {
  std::string fGroup;
  TNumber fExtentSize;
  TText fBlockDevice;
};

TInstances<TMember> ListMembers(const THost& host) {
  const auto& groups = host.Shared<TVolumeGroups>();
  TInstances<TMember> members({}, groups.fReason);
  bool isSaved = true;
  for (const TKnownGroup& group : groups.fAll) {
    for (const TPhysicalVolume& volume : group.fPhysicalVolumes) {
      members.fAll.push_back({volume, group.fName, group.fExtentSize, groups.FindDevice(volume)});
    }
    isSaved = isSaved && static_cast<bool>(group.fLogicalVolumes);
  }
  if (!isSaved) members.Miss("not all groups are saved in /etc/lvm/backup");
  if (members.fAll.empty() && members.fReason.empty()) members.Miss("no group has one");
  return members;
}

std::string VolumeIDOf(const TMember& member) {
  return "VORNSG:" + member.fGroup + "/" + member.fName;
}

TNumber CountFree(const TMember& member) {
  return member.fExtents.and_then([&member](std::uint64_t all) {
    return member.fUsedExtents.and_then([all](std::uint64_t used) -> TNumber {
      if (used > all) return Missing("more extents are in use than there are");
      return all - used;
    });
  });
}

/// Reads a number of extents as bytes.
template <typename TCount>
auto VolumeBytes(TCount count) {
  return [count](const TMember& member) {
    const TNumber extents = std::invoke(count, member);
    return member.fExtentSize.and_then(
        [&extents](std::uint64_t size) { return Scaled(extents, size); });
  };
}

}  // namespace

TClass PhysicalVolumeClass() {
  const TUnit bytes{"byte"};
  return THostTable<TMember>{
      "VORNSG_PhysicalVolume",
      "A disk or partition of a volume group of LVM, as LVM saved it at the last change.",
      ListMembers,
      {{"InstanceID", "Tells it from others.", VolumeIDOf, kKey},
       {"VolumeGroup", "The group.", &TMember::fGroup},
       {"UUID", "By which LVM knows it.", &TPhysicalVolume::fUUID, ESecret::kSerial},
       {"Device", "The block device that it is on now.", &TMember::fBlockDevice},
       {"SavedDevice", "The block device that it was on at the last change.",
        &TPhysicalVolume::fDevice, ESecret::kMountSource},
       {"Status", "What may be done with it; \"MISSING\" if LVM did not find it.",
        &TPhysicalVolume::fStatus},
       {"DeviceSize", "The size of the block device.", &TPhysicalVolume::fSize, bytes},
       {"TotalSpace", "What volumes can use.", VolumeBytes(&TPhysicalVolume::fExtents), bytes},
       {"FreeSpace", "What no volume uses.", VolumeBytes(CountFree), bytes},
       {"ExtentCount", "How many pieces it has.", &TPhysicalVolume::fExtents},
       {"UsedExtentCount", "How many of them volumes use.", &TPhysicalVolume::fUsedExtents}}};
}

}  // namespace NVORNQDX20
