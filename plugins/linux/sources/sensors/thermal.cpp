// SPDX-License-Identifier: Apache-2.0
#include "thermal.h"

#include "chips.h"

namespace NVORNQDX20 {
namespace {

constexpr int kMaxTripPoints = 64;

TInstances<TThermalDevice> Select(const TInstances<TDeviceFolder>& listed,
                                  const std::string& prefix, const char* none) {
  TInstances<TThermalDevice> devices({}, listed.fReason);
  std::map<std::string, int> taken;
  for (const TDeviceFolder& device : listed.fAll) {
    const std::string& name = device.fFileName;
    if (name.compare(0, prefix.size(), prefix) != 0) continue;
    const TText type = device.ReadLine("type");
    if (type.GetReason().IsError()) {  // a part of the key
      devices.Miss(type.GetReason());
      continue;
    }
    devices.fAll.push_back({TakeID(taken, type.ValueOr(name)), name, type, device});
  }
  if (devices.fAll.empty() && devices.fReason.empty()) devices.Miss(none);
  return devices;
}

}  // namespace

TThermal::TThermal(const THost& host) {
  const TInstances<TDeviceFolder> listed = ListByNumber(host, "/sys/class/thermal");
  fZones = Select(listed, "thermal_zone", "the kernel has no thermal zone");
  fCoolingDevices = Select(listed, "cooling_device", "the kernel has no cooling device");
}

TTripPoints::TTripPoints(const TFiles& zone)
    : fWarning(Missing("the zone has no such trip point")), fCritical(fWarning) {
  TReason unknown;  // why a point that is not known could be the lowest
  for (int point = 0; point < kMaxTripPoints; ++point) {
    const std::string name = "trip_point_" + std::to_string(point) + "_";
    const TText type = zone.ReadLine(name + "type");
    if (!type && !type.GetReason().IsError()) break;
    if (!type) {  // which may be of either kind
      unknown = type.GetReason();
      if (!fCritical) fCritical = Missing(type.GetReason());
      continue;
    }
    const auto temperature = zone.ReadNumber<std::int32_t>(name + "temp");
    if (*type == "critical") {
      fCritical = temperature;
    } else if (*type == "hot" || *type == "passive") {
      if (!temperature) unknown = temperature.GetReason();
      if (!fWarning || temperature.ValueOr(*fWarning) < *fWarning) fWarning = temperature;
    }
  }
  if (!unknown.empty()) fWarning = Missing(unknown);
}

}  // namespace NVORNQDX20
