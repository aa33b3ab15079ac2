// SPDX-License-Identifier: Apache-2.0
#include "logical_device.h"

#include <qdxcore/schema_helper.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

const char* const kDeviceClassName = "VORNSG_LogicalDevice";
const char* const kSystemDeviceClassName = "VORNSG_SystemDevice";

/// Without a reason: the instance of VORNSG_ComputerSystem explains a missing name.
std::string SystemName(const THost& host) { return host.fName.fValue.value_or(std::string()); }

}  // namespace

TClassDescription LogicalDeviceClass() {
  return {{kDeviceClassName,
           "A device of the machine, of whatever kind.",
           {{"SystemCreationClassName", TType::kCIMTypeString, true, "The class of the machine."},
            {"SystemName", TType::kCIMTypeString, true, "The name of the machine."},
            {"CreationClassName", TType::kCIMTypeString, true, "The class of the device."},
            {"DeviceID", TType::kCIMTypeString, true, "Tells the device from its like."},
            {"Name", TType::kCIMTypeString, false, "By which the device is known."}},
           TClassSpec::kAbstract}};
}

TClassDescription SystemDeviceClass() {
  return {{kSystemDeviceClassName,
           "Ties a device to the machine that it is part of.",
           {{"GroupComponent", TType::kCIMTypeReference, true, "The machine.", nullptr,
             TCIMSchemaHelper::kSystemCreationClassName.c_str()},
            {"PartComponent", TType::kCIMTypeReference, true, "The device.", nullptr,
             kDeviceClassName}},
           TClassSpec::kAssociation}};
}

TClassSpec DeviceClass(const char* name, const char* description,
                       std::vector<TPropertySpec> properties) {
  return {name, description, std::move(properties), TClassSpec::kConcrete, kDeviceClassName};
}

void AddDevice(TNamespaceBuilder& builder, const THost& host, ICIMClass& deviceClass,
               const std::string& deviceID, const std::vector<TPropertyValue>& values) {
  const std::string& className = deviceClass.GetName({});
  const std::string& systemClassName = TCIMSchemaHelper::kSystemCreationClassName;
  const std::vector<TPropertyValue> systemKeys = {{"CreationClassName", systemClassName},
                                                  {"Name", SystemName(host)}};
  const std::vector<TPropertyValue> keys = {{"SystemCreationClassName", systemClassName},
                                            {"SystemName", SystemName(host)},
                                            {"CreationClassName", className},
                                            {"DeviceID", deviceID}};
  std::vector<TPropertyValue> all = keys;
  std::copy(values.begin(), values.end(), std::back_inserter(all));
  if (!builder.AddInstance(deviceClass, all, deviceID)) return;
  if (!builder.HasClass(kSystemDeviceClassName)) return;
  builder.AddInstance(*builder.GetClass(kSystemDeviceClassName),
                      {{"GroupComponent", builder.ReferenceTo(systemClassName, systemKeys)},
                       {"PartComponent", builder.ReferenceTo(className, keys)}});
}

std::vector<std::string> ListDevices(TNamespaceBuilder& builder, const THostFiles& files,
                                     const ICIMClass& deviceClass, const std::string& folder) {
  if (!files.IsFolder(folder))
    builder.NoteMissingInstances(deviceClass, folder + ": no such folder");
  std::vector<std::string> names = files.List(folder);
  // The kernel has only printable names, and a key must be printable.
  names.erase(std::remove_if(names.begin(), names.end(),
                             [](const std::string& name) { return PrintableText(name) != name; }),
              names.end());
  return names;
}

}  // namespace NVORNQDX20
