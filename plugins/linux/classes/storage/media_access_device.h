// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of drives.
#ifndef PLUGINS_LINUX_CLASSES_STORAGE_MEDIA_ACCESS_DEVICE_H_
#define PLUGINS_LINUX_CLASSES_STORAGE_MEDIA_ACCESS_DEVICE_H_

#include <functional>
#include <string>

#include "classes/logical_device.h"
#include "sources/storage/block_devices.h"
#include "sources/storage/vpd_pages.h"

namespace NVORNQDX20 {

struct TDrive : TDevice, TBlockDevice {
  TText fPath;  ///< Its place below /sys/devices.
  TText fModel;
  TText fRevision;  ///< Of the firmware, perhaps cut off.
  TText fWWN;       ///< The worldwide name.
  TReading<bool> fRemovable;
  TReading<bool> fRotational;
  TReading<TATAIdentity> fATA;  ///< Missing for a disk that is not on an ATA bus.
};

enum class EMedia { kDisk, kCD, kDVD };

/// The superclass of drives.
THostTable<TDrive> MediaAccessDeviceTable();

/// Returns the function that lists the drives for one kind of medium.
std::function<TInstances<TDrive>(const THost&)> DrivesFor(EMedia media);

/// Reads what all drives have in common.
TDrive MakeDrive(const THost& host, const TBlockDevice& device);

/// Returns whether the name in sysfs is that of a tape drive: "st0", not another mode of it such as
/// "nst0" or "st0a".
bool IsTapeDrive(const std::string& name);

/// Returns the name by which associations refer to the drive.
TInstanceName DriveName(const TBlockDevice& drive);

/// Returns how the drive is attached, as lsblk(8) names it: "sata", "sas", "nvme", "usb", ...
TText ReadTransport(const TDrive& drive);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_STORAGE_MEDIA_ACCESS_DEVICE_H_
