// SPDX-License-Identifier: Apache-2.0
/// Common parts of all classes of devices.
#ifndef PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
#define PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "catalogue.h"
#include "machine/numbers.h"

namespace NVORNQDX20 {

struct TDevice {
  std::string fID;
  TText fName;
};

/// A device with a folder of files in sysfs.
struct TSysfsDevice : TDevice {
  TText ReadLine(const std::string& file) const { return fFiles->ReadLine(fFolder + file); }
  TNumber ReadNumber(const std::string& file) const {
    return NVORNQDX20::ReadNumber(*fFiles, fFolder + file);
  }
  TReading<bool> ReadFlag(const std::string& file) const {
    return NVORNQDX20::ReadFlag(*fFiles, fFolder + file);
  }

  const THostFiles* fFiles;
  std::string fFolder;  ///< Ends with a slash.
};

// Readers of rows, by the name of the file.
inline auto Line(const char* file) {
  return [file](const TSysfsDevice& device) { return device.ReadLine(file); };
}
inline auto Number(const char* file) {
  return [file](const TSysfsDevice& device) { return device.ReadNumber(file); };
}
inline auto Flag(const char* file) {
  return [file](const TSysfsDevice& device) { return device.ReadFlag(file); };
}

/// The superclass, which has the keys and the name.
THostTable<TDevice> LogicalDeviceTable();

/// Returns the devices of a folder in sysfs, by name; the files' names are both ID and name.
TInstances<TSysfsDevice> ListDevices(const THost& host, const std::string& folder);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
