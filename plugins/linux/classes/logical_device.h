// SPDX-License-Identifier: Apache-2.0
/// What the devices of all kinds have in common.
#ifndef PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
#define PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_

#include <string>
#include <vector>

#include "catalogue.h"

namespace NVORNQDX20 {

/// A class of devices, whose superclass has the keys and the name.
TClassSpec DeviceClass(const char* name, const char* description,
                       std::vector<TPropertySpec> properties);

/// Adds a device, and the association that ties it to the machine, if that is wanted. The keys are
/// added to the values.
void AddDevice(TNamespaceBuilder& builder, const THost& host, ICIMClass& deviceClass,
               const std::string& deviceID, const std::vector<TPropertyValue>& values);

/// The devices that a sysfs folder lists. If there is no such folder, that is noted as the reason
/// why the class has no instances.
std::vector<std::string> ListDevices(TNamespaceBuilder& builder, const THostFiles& files,
                                     const ICIMClass& deviceClass, const std::string& folder);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_LOGICAL_DEVICE_H_
