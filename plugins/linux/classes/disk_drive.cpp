// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_DiskDrive: block devices with hardware.
#include <algorithm>

#include "logical_device.h"
#include "machine/numbers.h"
#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

/// Returns whether the block device is hardware, unlike loop devices and memory disks, and not a
/// second path to a disk that is listed already.
bool IsDrive(const THostFiles& files, const std::string& folder) {
  return files.IsFolder(folder + "device") &&
         !ReadFlag(files, folder + "hidden").fValue.value_or(false);
}

/// In sysfs, "!" replaces a slash in the name of the device file.
std::string DeviceFile(std::string name) {
  std::replace(name.begin(), name.end(), '!', '/');
  return "/dev/" + name;
}

/// The serial number page of a SCSI disk: four bytes of header, then the text.
TReading ReadSerialNumberPage(const THostFiles& files, const std::string& path) {
  const TReading page = files.Read(path);
  const std::string text =
      page && page.fValue->size() > 4 ? PrintableText(page.fValue->substr(4)) : std::string();
  if (page && text.empty()) return TReading::Missing(path + ": empty");
  return page ? TReading::Of(text) : page;
}

TReading ReadSerialNumber(const THostFiles& files, const std::string& folder) {
  for (const char* file : {"device/serial", "serial"}) {
    TReading serial = files.ReadLine(folder + file);
    if (serial) return serial;
  }
  return ReadSerialNumberPage(files, folder + "device/vpd_pg80");
}

/// The kernel counts sectors of 512 bytes, independent of the disk's own sector size.
TNumber ReadMaxMediaSize(const THostFiles& files, const std::string& folder,
                         const TReadingOf<bool>& removable) {
  if (removable.fValue.value_or(false)) return TNumber::Missing("depends on the medium");
  return Scaled(ReadNumber(files, folder + "size"), 512, 1000);
}

std::vector<TPropertySpec> DiskDriveProperties() {
  return {{"Model", TType::kCIMTypeString, false, "The model, as the disk names it."},
          {"SerialNumber", TType::kCIMTypeString, false, "The serial number of the disk."},
          {"State", TType::kCIMTypeString, false,
           "What the driver makes of it: \"running\" or \"live\" if all is well."},
          {"MaxMediaSize", TType::kCIMTypeUint64, false, "The size of the disk.", "byte * 10^3"},
          {"Removable", TType::kCIMTypeBoolean, false, "Whether the medium can be taken out."},
          {"Rotational", TType::kCIMTypeBoolean, false,
           "Whether the kernel takes it for a disk that turns."},
          {"ReadOnly", TType::kCIMTypeBoolean, false, "Whether it refuses to be written."}};
}

void AddDiskDrives(TNamespaceBuilder& builder, const THost& host, ICIMClass& diskDrive) {
  const std::string disks = "/sys/block";
  const THostFiles& files = host.fFiles;
  for (const std::string& name : ListDevices(builder, files, diskDrive, disks)) {
    const std::string folder = disks + "/" + name + "/";
    if (!IsDrive(files, folder)) continue;
    const auto removable = ReadFlag(files, folder + "removable");
    AddDevice(builder, host, diskDrive, DeviceFile(name),
              {{"Name", name},
               {"Model", files.ReadLine(folder + "device/model")},
               {"SerialNumber", ReadSerialNumber(files, folder)},
               {"State", files.ReadLine(folder + "device/state")},
               {"MaxMediaSize", ReadMaxMediaSize(files, folder, removable)},
               {"Removable", removable},
               {"Rotational", ReadFlag(files, folder + "queue/rotational")},
               {"ReadOnly", ReadFlag(files, folder + "ro")}});
  }
}

}  // namespace

TClassDescription DiskDriveClass() {
  return {
      DeviceClass("VORNSG_DiskDrive", "A disk, or another drive of blocks.", DiskDriveProperties()),
      AddDiskDrives};
}

}  // namespace NVORNQDX20
