// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_AssociatedSensor: ties sensors to what they watch.
#include "classes/logical_device.h"
#include "classes/physical_element.h"
#include "sources/sensors/chips.h"
#include "sources/sensors/power.h"

namespace NVORNQDX20 {
namespace {

/// Returns the device that the chip is a part of, if it has an instance.
TInstanceName DeviceOf(const TChannel& channel, const THost& host) {
  const std::size_t slash = channel.fDevice.rfind('/');
  if (slash == std::string::npos) return {};
  const std::string name = channel.fDevice.substr(slash + 1);
  const std::string folder = channel.fDevice.substr(0, slash);
  const std::string kind = folder.substr(folder.rfind('/') + 1);
  if (kind == "power_supply") {
    for (const TPowerSource& source : host.Shared<TPowerSources>().fAll) {
      if (source.fName != name) continue;
      return {source.fIsBattery ? "VORNSG_Battery" : "VORNSG_PowerSupply", name};
    }
    return {};
  }
  if (kind == "nvme" && !host.IsAbsent("/sys/class/nvme/" + name)) {
    return {"VORNSG_NVMeController", "/dev/" + name};
  }
  if (!host.IsAbsent("/sys/bus/pci/devices/" + name)) return {"VORNSG_PCIDevice", name};
  return {};
}

TInstances<TTie> ListTies(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  TInstances<TTie> ties({}, chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    const std::uint16_t type = channel.fQuantity->fSensorType;
    const TInstanceName device =
        type == kTachometer ? TInstanceName{"VORNSG_Fan", channel.fID} : DeviceOf(channel, host);
    if (device.fClass.empty()) continue;
    const char* const sensor = type == kIntrusion ? "VORNSG_Sensor" : "VORNSG_NumericSensor";
    ties.fAll.push_back({{sensor, channel.fID}, device});
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
