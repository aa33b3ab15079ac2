// SPDX-License-Identifier: Apache-2.0
/// What all folders of devices in sysfs have in common.
#ifndef PLUGINS_LINUX_SOURCES_DEVICE_FOLDER_H_
#define PLUGINS_LINUX_SOURCES_DEVICE_FOLDER_H_

#include <qdxdescribe/table.h>

#include <string>

#include "reading.h"

namespace NVORNQDX20 {

/// The files of one device.
struct TDeviceFolder : TFiles {
  std::string fFileName;
};

/// Returns why a device that is listed by this name cannot be described, which is an error; empty
/// if it can, and if it is no longer there.
TReason ObstacleToDevice(const TFiles& folder, const std::string& name);

/// Lists the devices of a folder that can be described, by name.
TInstances<TDeviceFolder> ListDevices(const TFiles& files, const char* folder);

/// Returns the last component of a symbolic link, for example of "driver".
TText ReadLinkedName(const TFiles& folder, const std::string& link);

/// Returns the driver that serves a device: of the link, or in a copy without links, of uevent.
TText ReadDriverOf(const TFiles& folder);

/// Reads a number with a fraction in front of a unit, as in "8.0 GT/s PCIe", times `multiplier`.
/// Drivers write that they do not know as "Unknown", with or without the unit.
TNumber ReadRate(const TFiles& folder, const char* file, double multiplier);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_DEVICE_FOLDER_H_
