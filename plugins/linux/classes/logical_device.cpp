// SPDX-License-Identifier: Apache-2.0
#include "logical_device.h"

#include <qdxcore/schema_helper.h>
#include <qdxmodel/classes.h>

#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

const char* const kDeviceClassName = "VORNSG_LogicalDevice";

/// A device, as VORNSG_SystemDevice refers to it.
struct TPart {
  TInstanceName fDevice;
};

TInstanceName System(const THost& host) {
  return {TCIMSchemaHelper::kSystemCreationClassName, host.fName.ValueOr("")};
}

std::vector<TPart> ListParts(const THost&, const ICIMNamespace& ns) {
  std::vector<TPart> parts;
  for (const auto& cimClass : NModel::WithSubclasses(ns.GetClass(kDeviceClassName, {}))) {
    NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& device) {
      parts.push_back({{cimClass->GetName({}), device.GetProperty("DeviceID", {})->GetValue()}});
    });
  }
  return parts;
}

}  // namespace

THostTable<TDevice> LogicalDeviceTable() {
  return {kDeviceClassName,
          "A device of the machine, of whatever kind.",
          {{"SystemCreationClassName", "The class of the machine.",
            Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
           // Without a reason: the instance of VORNSG_ComputerSystem explains a missing name.
           {"SystemName", "The name of the machine.",
            [](const THost& host) { return host.fName.ValueOr(""); }, kKey, ESecret::kHostName},
           {"CreationClassName", "The class of the device.", kClassName, kKey},
           {"DeviceID", "Tells the device from its like.", &TDevice::fID, kKey},
           {"Name", "By which the device is known.", &TDevice::fName}}};
}

TClass LogicalDeviceClass() { return LogicalDeviceTable(); }

TClass SystemDeviceClass() {
  return THostTable<TPart>{
      "VORNSG_SystemDevice",
      "Ties a device to the machine that it is part of.",
      ListParts,
      {{"GroupComponent", "The machine.", System, kKey,
        TRefersTo{TCIMSchemaHelper::kSystemCreationClassName.c_str()}},
       {"PartComponent", "The device.", &TPart::fDevice, kKey, TRefersTo{kDeviceClassName}}}}
      .AsAssociation();
}

TInstances<TSysfsDevice> ListDevices(const THost& host, const std::string& folder) {
  return host.fFiles.List(folder).map([&](const std::vector<std::string>& names) {
    std::vector<TSysfsDevice> devices;
    for (const std::string& name : names) {
      // The kernel has only printable names, and a key must be printable.
      if (PrintableText(name) != name) continue;
      devices.push_back({{name, name}, &host.fFiles, folder + "/" + name + "/"});
    }
    return devices;
  });
}

}  // namespace NVORNQDX20
