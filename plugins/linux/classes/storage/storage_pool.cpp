// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_StoragePool, VORNSG_ConcreteComponent and VORNSG_AllocatedFromStoragePool: volume
// groups of LVM, what they consist of, and what is made of them.
#include "sources/storage/volume_groups.h"
#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

const char* const kPoolClassName = "VORNSG_StoragePool";

std::string PoolIDOf(const TKnownGroup& group) { return "VORNSG:" + group.fName; }

TInstances<TKnownGroup> ListPools(const THost& host) {
  const auto& groups = host.Shared<TVolumeGroups>();
  return {groups.fAll, groups.fReason};
}

/// Reads a number of extents as bytes.
auto PoolBytes(TNumber TVolumeGroup::*extents) {
  return [extents](const TKnownGroup& group) {
    return (group.*extents).and_then([&group](std::uint64_t count) {
      return group.fExtentSize.and_then(
          [count](std::uint64_t size) { return Scaled(count, size); });
    });
  };
}

/// Returns the function that ties each pool to block devices.
auto TiesTo(std::vector<std::string> TKnownGroup::*names) {
  return [names](const THost& host) {
    const auto& devices = host.Shared<TBlockDevices>();
    std::vector<TTie> ties;
    for (const TKnownGroup& group : host.Shared<TVolumeGroups>().fAll) {
      for (const std::string& name : group.*names) {
        const TBlockDevice* const device = devices.Find(name);
        if (device == nullptr || !IsExtent(*device)) continue;
        ties.push_back({{kPoolClassName, PoolIDOf(group)}, ExtentName(*device)});
      }
    }
    return ties;
  };
}

}  // namespace

TClass StoragePoolClass() {
  const TUnit bytes{"byte"};
  return THostTable<TKnownGroup>{
      kPoolClassName,
      "A volume group of LVM. What its text says is what LVM saved at the last change of the "
      "group.",
      ListPools,
      {{"InstanceID", "Tells the group from others.", PoolIDOf, kKey},
       {"PoolID", "The name of the group.", &TVolumeGroup::fName},
       {"UUID", "By which LVM knows the group.", &TVolumeGroup::fUUID, ESecret::kSerial},
       {"Active", "Whether the kernel has a volume of it now.", &TKnownGroup::fIsActive},
       {"Status", "What may be done with it, as in \"READ\", \"WRITE\" and \"RESIZEABLE\".",
        &TVolumeGroup::fStatus},
       {"TotalManagedSpace", "Its size.", PoolBytes(&TVolumeGroup::fExtents), bytes},
       {"RemainingManagedSpace", "What no volume uses.", PoolBytes(&TVolumeGroup::fFreeExtents),
        bytes},
       {"ExtentSize", "The size of the pieces that volumes consist of.", &TVolumeGroup::fExtentSize,
        bytes},
       {"ExtentCount", "How many pieces it has.", &TVolumeGroup::fExtents},
       {"FreeExtentCount", "How many of them no volume uses.", &TVolumeGroup::fFreeExtents},
       {"SequenceNumber", "How often it was changed.", &TVolumeGroup::fSequence},
       {"LogicalVolumes", "The volumes that users see, also those that are not active.",
        &TVolumeGroup::fLogicalVolumes}}};
}

TClass ConcreteComponentClass() {
  return THostTable<TTie>{
      "VORNSG_ConcreteComponent",
      "Ties a volume group to a block device that it consists of.",
      TiesTo(&TKnownGroup::fMembers),
      {{"GroupComponent", "The group.", &TTie::fAntecedent, kKey, TRefersTo{kPoolClassName}},
       {"PartComponent", "The block device.", &TTie::fDependent, kKey,
        TRefersTo{"VORNSG_StorageExtent"}}}}
      .AsAssociation();
}

TClass AllocatedFromStoragePoolClass() {
  return THostTable<TTie>{
      "VORNSG_AllocatedFromStoragePool",
      "Ties a volume group to an active volume of it.",
      TiesTo(&TKnownGroup::fVolumes),
      {{"Antecedent", "The group.", &TTie::fAntecedent, kKey, TRefersTo{kPoolClassName}},
       {"Dependent", "The volume.", &TTie::fDependent, kKey, TRefersTo{"VORNSG_StorageExtent"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
