// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Sensor: sensors that have states only.
#include "sensor.h"

namespace NVORNQDX20 {
namespace {

/// A file that is 1 while the state lasts; the worst one first.
struct TAlarm {
  const char* fFile;
  const char* fState;
};
constexpr TAlarm kAlarms[] = {{"fault", "Fault"},
                              {"emergency_alarm", "Upper Fatal"},
                              {"lcrit_alarm", "Lower Critical"},
                              {"crit_alarm", "Upper Critical"},
                              {"min_alarm", "Lower Non-Critical"},
                              {"max_alarm", "Upper Non-Critical"},
                              {"cap_alarm", "Upper Non-Critical"},
                              {"alarm", "Alarm"}};

TMissing NoAlarm() { return Missing("the driver has no alarm for it"); }

void ReadStates(const TChannel& channel, TSensor& sensor) {
  std::vector<std::string> states;
  TReason reason;
  std::string worst;
  for (const auto& [file, state] : kAlarms) {
    if (!channel.Has(file)) continue;
    if (states.empty() || states.back() != state) states.emplace_back(state);
    const auto isOn = channel.fFolder.ReadFlag(channel.PathOf(file));
    if (!isOn) reason.Add(isOn.GetReason());
    if (isOn.ValueOr(false) && worst.empty()) worst = state;
  }
  if (states.empty()) {
    sensor.fState = NoAlarm();
    sensor.fStates = NoAlarm();
    return;
  }
  states.emplace_back("Normal");
  sensor.fStates = states;
  if (worst.empty() && !reason.empty()) {
    sensor.fState = Missing(reason);
  } else {
    sensor.fState = worst.empty() ? "Normal" : worst;
  }
}

TInstances<TSensor> ListSensors(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  TInstances<TSensor> sensors({}, chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    if (channel.fQuantity->fSensorType != kIntrusion) continue;
    sensors.fAll.push_back(SensorOfChannel(channel));
  }
  if (sensors.fAll.empty() && sensors.fReason.empty()) {
    sensors.Miss("all sensors have numbers as readings: VORNSG_NumericSensor");
  }
  return sensors;
}

}  // namespace

TSensor SensorOfChannel(const TChannel& channel) {
  TSensor sensor;
  sensor.fID = channel.fID;
  sensor.fName = channel.fName;
  sensor.fLabel = channel.fFolder.ReadLine(channel.PathOf("label"));
  sensor.fChip = channel.fChip;
  sensor.fType = channel.fQuantity->fSensorType;
  sensor.fOtherType = *channel.fQuantity->fOther == '\0'
                          ? TText(Missing("SensorType tells the type"))
                          : TText(channel.fQuantity->fOther);
  ReadStates(channel, sensor);
  return sensor;
}

THostTable<TSensor> SensorTable() {
  return THostTable<TSensor>{
      "VORNSG_Sensor",
      "A sensor that reports states, such as the opened chassis.",
      ListSensors,
      {{"ElementName", "What it measures, as the driver or the firmware names it.",
        &TSensor::fLabel},
       {"Chip", "The chip that it belongs to, as the driver names it.", &TSensor::fChip},
       {"SensorType", "What it measures.", &TSensor::fType,
        TEnumeration{{0, "Unknown"},
                     {1, "Other"},
                     {2, "Temperature"},
                     {3, "Voltage"},
                     {4, "Current"},
                     {5, "Tachometer"},
                     {6, "Counter"},
                     {7, "Switch"},
                     {8, "Lock"},
                     {9, "Humidity"},
                     {10, "Smoke Detection"},
                     {11, "Presence"},
                     {12, "Air Flow"},
                     {13, "Power Consumption"},
                     {14, "Power Production"},
                     {15, "Pressure"},
                     {16, "Intrusion"}}},
       {"OtherSensorTypeDescription", "The type that SensorType has no number for.",
        &TSensor::fOtherType},
       {"PossibleStates", "The states for which the driver has alarms, and \"Normal\".",
        &TSensor::fStates},
       {"CurrentState", "The worst state that an alarm reports now.", &TSensor::fState, kVolatile}}}
      .DerivedFrom(LogicalDeviceTable());
}

TClass SensorClass() { return SensorTable(); }

}  // namespace NVORNQDX20
