// SPDX-License-Identifier: Apache-2.0
/// Common parts of all classes of devices.
#ifndef PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
#define PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_

#include <functional>
#include <string>

#include "catalogue.h"

namespace NVORNQDX20 {

struct TDevice {
  std::string fID;
  TText fName;
};

/// A device with a folder of files in sysfs.
struct TSysfsDevice : TDevice, TFiles {};

/// The superclass, which has the keys and the name.
THostTable<TDevice> LogicalDeviceTable();

/// Returns the function that lists the devices of a folder in sysfs, by name; the files' names are
/// both ID and name. `adapt` can change a device, and returns whether the class has it.
std::function<TInstances<TSysfsDevice>(const THost&)> DevicesIn(
    const char* folder, std::function<TReading<bool>(TSysfsDevice&)> adapt);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
