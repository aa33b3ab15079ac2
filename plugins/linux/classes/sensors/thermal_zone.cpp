// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_ThermalZone: what the kernel keeps cool.
#include "sensor.h"
#include "sources/sensors/thermal.h"

namespace NVORNQDX20 {
namespace {

struct TThermalZone : TNumericSensor, TFiles {
  explicit TThermalZone(const TThermalDevice& zone) : TFiles(zone.fFolder) {
    const TMissing none = Missing("the kernel has no such limit of thermal zones");
    const TTripPoints points(zone.fFolder);
    fID = "thermal/" + zone.fID;
    fName = zone.fName;
    fLabel = zone.fType;
    fChip = Missing("a thermal zone is of no chip");
    fType = kTemperature;
    fOtherType = Missing("SensorType tells the type");
    fState = Missing("a thermal zone has no alarm");
    fStates = Missing("a thermal zone has no alarm");
    fBaseUnits = kDegreesCelsius;
    fUnitModifier = -3;
    fReading = ReadNumber<std::int32_t>("temp");
    fAverage = fLowerNonCritical = fLowerCritical = fUpperFatal = none;
    fHysteresis = none;
    fUpperNonCritical = points.fWarning;
    fUpperCritical = points.fCritical;
  }
};

TInstances<TThermalZone> ListZones(const THost& host) {
  const auto& zones = host.Shared<TThermal>().fZones;
  return {{zones.fAll.begin(), zones.fAll.end()}, zones.fReason};
}

}  // namespace

TClass ThermalZoneClass() {
  return THostTable<TThermalZone>{
      "VORNSG_ThermalZone",
      "A part of the machine that the kernel keeps cool. A chip can have the same temperature.",
      ListZones,
      {{"Policy", "How the kernel chooses what cools it.", FileLine("policy")},
       {"Mode", "Whether the kernel cools it.", FileLine("mode")}}}
      .DerivedFrom(NumericSensorTable());
}

}  // namespace NVORNQDX20
