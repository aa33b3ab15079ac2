// SPDX-License-Identifier: Apache-2.0
/// Common parts of all classes of devices.
#ifndef PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
#define PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_

#include <string>
#include <vector>

#include "catalogue.h"

namespace NVORNQDX20 {

/// Returns the TClassSpec of a class of devices; the superclass has the keys and the name.
TClassSpec DeviceClass(const char* name, const char* description,
                       std::vector<TPropertySpec> properties);

/// Adds a device, and its association with the machine if that class is wanted. Adds the keys to
/// the values.
void AddDevice(TNamespaceBuilder& builder, const THost& host, ICIMClass& deviceClass,
               const std::string& deviceID, const std::vector<TPropertyValue>& values);

/// Returns the devices in a sysfs folder. A missing folder is recorded as the reason why the class
/// has no instances.
std::vector<std::string> ListDevices(TNamespaceBuilder& builder, const THostFiles& files,
                                     const ICIMClass& deviceClass, const std::string& folder);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
