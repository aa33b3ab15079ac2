// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_DiskDrive: block devices with hardware.
#include <algorithm>

#include "logical_device.h"
#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

/// Returns whether the block device is hardware, unlike loop devices and memory disks, and not a
/// second path to a disk that is listed already.
bool IsDrive(const TSysfsDevice& device) {
  return !device.fFiles->IsAbsent(device.fFolder + "device") &&
         !device.ReadFlag("hidden").ValueOr(false);
}

/// In sysfs, "!" replaces a slash in the name of the device file.
std::string DeviceFile(std::string name) {
  std::replace(name.begin(), name.end(), '!', '/');
  return "/dev/" + name;
}

TInstances<TSysfsDevice> ListDrives(const THost& host) {
  TInstances<TSysfsDevice> drives = ListDevices(host, "/sys/block");
  auto& all = drives.fAll;
  all.erase(std::remove_if(all.begin(), all.end(), std::not_fn(IsDrive)), all.end());
  for (TSysfsDevice& drive : all) drive.fID = DeviceFile(drive.fID);
  return drives;
}

/// The serial number page of a SCSI disk: four bytes of header, then the text.
TText ReadSerialNumberPage(const TSysfsDevice& drive) {
  const std::string path = drive.fFolder + "device/vpd_pg80";
  return drive.fFiles->Read(path).and_then([&path](const std::string& page) -> TText {
    std::string text = page.size() > 4 ? PrintableText(page.substr(4)) : std::string();
    if (text.empty()) return Missing(path + ": empty");
    return text;
  });
}

TText ReadSerialNumber(const TSysfsDevice& drive) {
  for (const char* file : {"device/serial", "serial"}) {
    if (!drive.fFiles->IsAbsent(drive.fFolder + file)) return drive.ReadLine(file);
  }
  return ReadSerialNumberPage(drive);
}

/// The kernel counts sectors of 512 bytes, independent of the disk's own sector size.
TNumber ReadMaxMediaSize(const TSysfsDevice& drive) {
  if (drive.ReadFlag("removable").ValueOr(false)) return Missing("depends on the medium");
  return Scaled(drive.ReadNumber("size"), 512, 1000);
}

}  // namespace

TClass DiskDriveClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_DiskDrive",
      "A disk, or another drive of blocks.",
      ListDrives,
      {{"Model", "The model, as the disk names it.", Line("device/model")},
       {"SerialNumber", "The serial number of the disk.", ReadSerialNumber, ESecret::kSerial},
       {"State", "What the driver makes of it: \"running\" or \"live\" if all is well.",
        Line("device/state")},
       {"MaxMediaSize", "The size of the disk.", ReadMaxMediaSize, TUnit{"byte * 10^3"}},
       {"Removable", "Whether the medium can be taken out.", Flag("removable")},
       {"Rotational", "Whether the kernel takes it for a disk that turns.",
        Flag("queue/rotational")},
       {"ReadOnly", "Whether it refuses to be written.", Flag("ro")}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
