// SPDX-License-Identifier: Apache-2.0
#include "logical_device.h"

#include <qdxcore/schema_helper.h>
#include <qdxmodel/classes.h>

#include <utility>

#include "sources/device_folder.h"

namespace NVORNQDX20 {
namespace {

const char* const kDeviceClassName = "VORNSG_LogicalDevice";

const TInstanceName& Itself(const TInstanceName& part) { return part; }

TInstanceName System(const THost& host) {
  return {TCIMSchemaHelper::kSystemCreationClassName, host.GetNameAsKey()};
}

/// Lists all devices, which are described before associations.
std::vector<TInstanceName> ListParts(const THost&, const ICIMNamespace& ns) {
  std::vector<TInstanceName> parts;
  for (const auto& cimClass : NModel::WithSubclasses(ns.GetClass(kDeviceClassName, {}))) {
    NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& device) {
      parts.push_back({cimClass->GetName({}), device.GetProperty("DeviceID", {})->GetValue()});
    });
  }
  return parts;
}

}  // namespace

THostTable<TDevice> LogicalDeviceTable() {
  return {
      kDeviceClassName,
      "A device of the machine, of whatever kind.",
      {{"SystemCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"SystemName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"CreationClassName", "The class of the device.", kClassName, kKey},
       {"DeviceID", "Tells the device from its like.", &TDevice::fID, kKey},
       {"Name", "By which the device is known.", &TDevice::fName}}};
}

TClass LogicalDeviceClass() { return LogicalDeviceTable(); }

TClass SystemDeviceClass() {
  return THostTable<TInstanceName>{
      "VORNSG_SystemDevice",
      "Ties a device to the machine that it is part of.",
      ListParts,
      {{"GroupComponent", "The machine.", System, kKey,
        TRefersTo{TCIMSchemaHelper::kSystemCreationClassName.c_str()}},
       {"PartComponent", "The device.", Itself, kKey, TRefersTo{kDeviceClassName}}}}
      .AsAssociation();
}

std::function<TInstances<TSysfsDevice>(const THost&)> DevicesIn(
    const char* folder, std::function<TReading<bool>(TSysfsDevice&)> adapt) {
  return [folder, adapt](const THost& host) -> TInstances<TSysfsDevice> {
    TInstances<TDeviceFolder> folders = ListDevices(host, folder);
    TInstances<TSysfsDevice> devices;
    devices.fReason = std::move(folders.fReason);
    for (const TDeviceFolder& each : folders.fAll) {
      TSysfsDevice device{{each.fFileName, each.fFileName}, each};
      const TReading<bool> isTaken = adapt(device);
      if (!isTaken) devices.Miss(isTaken.GetReason());
      if (isTaken.ValueOr(false)) devices.fAll.push_back(std::move(device));
    }
    return devices;
  };
}

}  // namespace NVORNQDX20
