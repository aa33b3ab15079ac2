// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_DiskDrive: block devices with hardware.
#include <algorithm>

#include "classes/logical_device.h"

namespace NVORNQDX20 {
namespace {

/// Takes hardware, unlike loop devices and memory disks, and not a second path to a disk that is
/// listed already.
TReading<bool> AdaptDrive(TSysfsDevice& drive) {
  if (drive.IsAbsent("device") || drive.ReadFlag("hidden").ValueOr(false)) return false;
  // In sysfs, "!" replaces a slash in the name of the device file.
  std::replace(drive.fID.begin(), drive.fID.end(), '!', '/');
  drive.fID = "/dev/" + drive.fID;
  return true;
}

const char* const kSerialNumberPage = "device/vpd_pg80";

/// The page of a SCSI disk has four bytes of header before the text.
TText ReadSerialNumberPage(const TFiles& drive) {
  return drive.Read(kSerialNumberPage).and_then([&](const std::string& contents) -> TText {
    std::string text = contents.size() > 4 ? PrintableText(contents.substr(4)) : std::string();
    if (text.empty()) return drive.MissingFrom(kSerialNumberPage, "empty");
    return text;
  });
}

TText ReadSerialNumber(const TFiles& drive) {
  const TText file = drive.FirstOf({"device/serial", "serial", kSerialNumberPage});
  return file.and_then([&drive](const std::string& name) {
    return name == kSerialNumberPage ? ReadSerialNumberPage(drive) : drive.ReadLine(name);
  });
}

/// The kernel counts sectors of 512 bytes, independent of the disk's own sector size.
TNumber ReadMaxMediaSize(const TFiles& drive) {
  if (drive.ReadFlag("removable").ValueOr(false)) return Missing("depends on the medium");
  return Scaled(drive.ReadNumber("size"), 512, 1000);
}

}  // namespace

TClass DiskDriveClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_DiskDrive",
      "A disk, or another drive of blocks.",
      DevicesIn("/sys/block", AdaptDrive),
      {{"Model", "The model, as the disk names it.", FileLine("device/model")},
       {"SerialNumber", "The serial number of the disk.", ReadSerialNumber, ESecret::kSerial},
       {"State", "What the driver makes of it: \"running\" or \"live\" if all is well.",
        FileLine("device/state")},
       {"MaxMediaSize", "The size of the disk.", ReadMaxMediaSize, TUnit{"byte * 10^3"}},
       {"Removable", "Whether the medium can be taken out.", FileFlag("removable")},
       {"Rotational", "Whether the kernel takes it for a disk that turns.",
        FileFlag("queue/rotational")},
       {"ReadOnly", "Whether it refuses to be written.", FileFlag("ro")}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
