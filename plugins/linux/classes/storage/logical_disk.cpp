// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_LogicalDisk: devices of the device mapper, and loop devices.
#include <boost/algorithm/string/predicate.hpp>

#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

TInstances<TExtent> ListLogicalDisks(const THost& host) {
  TInstances<TExtent> disks = ExtentsOf(EBlockKind::kDeviceMapper)(host);
  for (TExtent& loop : ExtentsOf(EBlockKind::kLoop)(host).fAll) {
    disks.fAll.push_back(std::move(loop));
  }
  return disks;
}

TReading<TLogicalVolume> VolumeOf(const TBlockDevice& disk) {
  return disk.fMapperUUID.and_then([&disk](const std::string& uuid) -> TReading<TLogicalVolume> {
    if (!boost::algorithm::starts_with(uuid, "LVM-")) return Missing("not a logical volume");
    return disk.fMapperName.map(ParseLogicalVolume);
  });
}

/// A name that somebody gave with dmsetup(8) may have no group.
auto VolumePart(std::string TLogicalVolume::*part) {
  return [part](const TBlockDevice& disk) {
    return VolumeOf(disk).and_then([part](const TLogicalVolume& volume) -> TText {
      if (volume.fName.empty()) return Missing("'" + volume.fGroup + "' has no group");
      return volume.*part;
    });
  };
}

TText ReadBackingFile(const TBlockDevice& disk) {
  if (disk.fKind != EBlockKind::kLoop) return Missing("not a loop device");
  return disk.ReadLine("loop/backing_file");
}

TReading<bool> ReadSuspended(const TBlockDevice& disk) {
  if (disk.fKind == EBlockKind::kLoop) return Missing("not of the device mapper");
  return disk.ReadFlag("dm/suspended");
}

}  // namespace

TClass LogicalDiskClass() {
  return THostTable<TExtent>{
      "VORNSG_LogicalDisk",
      "A disk that the kernel makes of others or of a file: a logical volume, an encrypted or a "
      "multipath device, a loop device.",
      ListLogicalDisks,
      {{"ElementName", "The name that the device mapper has for it, as in \"vg0-root\".",
        &TBlockDevice::fMapperName},
       {"MapperUUID", "By which the device mapper knows it; begins with the kind.",
        &TBlockDevice::fMapperUUID, ESecret::kSerial},
       {"VolumeGroup", "The group that a logical volume is in.",
        VolumePart(&TLogicalVolume::fGroup)},
       {"LogicalVolume", "The name of a logical volume in its group.",
        VolumePart(&TLogicalVolume::fName)},
       {"Members", "The block devices that it is made of: of a multipath device, its paths.",
        &TBlockDevice::fSlaves},
       {"Suspended", "Whether the device mapper holds back what is read and written.",
        ReadSuspended, kVolatile},
       {"BackingFile", "The file that a loop device presents.", ReadBackingFile}}}
      .DerivedFrom(StorageExtentTable());
}

}  // namespace NVORNQDX20
