// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_AssociatedSensor: ties sensors to what they watch.
#include "classes/logical_device.h"
#include "classes/physical_element.h"
#include "sources/sensors/chips.h"
#include "sources/sensors/power.h"

namespace NVORNQDX20 {
namespace {

/// Returns the device that the chip is a part of, if it has an instance; empty if it has none.
TReading<TInstanceName> DeviceOf(const TChannel& channel, const THost& host) {
  const std::size_t slash = channel.fDevice.rfind('/');
  if (slash == std::string::npos) return TInstanceName();
  const std::string name = channel.fDevice.substr(slash + 1);
  const std::string folder = channel.fDevice.substr(0, slash);
  const std::string kind = folder.substr(folder.rfind('/') + 1);
  if (kind == "power_supply") {
    for (const TPowerSource& source : host.Shared<TPowerSources>().fAll) {
      if (source.fName != name) continue;
      return TInstanceName{source.fIsBattery ? "VORNSG_Battery" : "VORNSG_PowerSupply", name};
    }
    return TInstanceName();
  }
  if (kind == "nvme") {
    return host.Exists("/sys/class/nvme/" + name).map([&name](bool exists) {
      return exists ? TInstanceName{"VORNSG_NVMeController", "/dev/" + name} : TInstanceName();
    });
  }
  return host.Exists("/sys/bus/pci/devices/" + name).map([&name](bool exists) {
    return exists ? TInstanceName{"VORNSG_PCIDevice", name} : TInstanceName();
  });
}

TInstances<TTie> ListTies(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  TInstances<TTie> ties({}, chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    const std::uint16_t type = channel.fQuantity->fSensorType;
    const TReading<TInstanceName> device =
        type == kTachometer ? TInstanceName{"VORNSG_Fan", channel.fID} : DeviceOf(channel, host);
    if (!device && ties.fReason.find(device.GetReason()) == std::string::npos) {
      ties.Miss(device.GetReason());
    }
    if (!device || device->fClass.empty()) continue;
    const char* const sensor = type == kIntrusion ? "VORNSG_Sensor" : "VORNSG_NumericSensor";
    ties.fAll.push_back({{sensor, channel.fID}, *device});
  }
  if (ties.fAll.empty() && ties.fReason.empty()) ties.Miss("no sensor is of a known device");
  return ties;
}

}  // namespace

TClass AssociatedSensorClass() {
  return THostTable<TTie>{
      "VORNSG_AssociatedSensor",
      "Ties a sensor to the device that it watches.",
      ListTies,
      {{"Antecedent", "The sensor.", &TTie::fFirst, kKey, TRefersTo{"VORNSG_Sensor"}},
       {"Dependent", "What it watches.", &TTie::fSecond, kKey, TRefersTo{"VORNSG_LogicalDevice"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
