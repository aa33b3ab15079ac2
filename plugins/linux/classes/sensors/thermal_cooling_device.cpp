// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_ThermalCoolingDevice: what the kernel cools thermal zones with.
#include "cooling_device.h"
#include "sources/sensors/thermal.h"

namespace NVORNQDX20 {
namespace {

struct TThermalCoolingDevice : TCoolingDevice, TFiles {};

bool Contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

TReading<bool> IsActiveFan(const std::string& type) {
  if (Contains(type, "Fan") || Contains(type, "fan")) return true;
  for (const char* slower : {"Processor", "powerclamp", "cpufreq", "cpuidle", "devfreq"}) {
    if (Contains(type, slower)) return false;
  }
  return Missing("the type does not tell");
}

/// Some drivers have -1 for a state that they do not know, for example while they do not cool.
TReading<std::int64_t> ReadState(const TFiles& device) {
  const char* const file = "cur_state";
  auto state = device.ReadNumber<std::int64_t>(file);
  if (state && *state < 0) return device.MissingFrom(file, "not known to the driver");
  return state;
}

TInstances<TThermalCoolingDevice> ListThermalDevices(const THost& host) {
  const auto& devices = host.Shared<TThermal>().fCoolingDevices;
  TInstances<TThermalCoolingDevice> all({}, devices.fReason);
  all.fAll.reserve(devices.fAll.size());
  for (const TThermalDevice& each : devices.fAll) {
    all.fAll.push_back(
        {{{"cooling/" + each.fID, each.fName}, each.fType, each.fType.and_then(IsActiveFan)},
         each.fFolder});
  }
  return all;
}

}  // namespace

TClass ThermalCoolingDeviceClass() {
  return THostTable<TThermalCoolingDevice>{
      "VORNSG_ThermalCoolingDevice",
      "A fan, a processor that can be slowed down, or what else the kernel can cool with.",
      ListThermalDevices,
      {{"CoolingState", "How much it cools now.", ReadState, kGauge, kVolatile},
       {"MaxCoolingState", "The most that it can cool; 0 is for not at all.",
        FileNumber<std::int64_t>("max_state")}}}
      .DerivedFrom(CoolingDeviceTable());
}

}  // namespace NVORNQDX20
