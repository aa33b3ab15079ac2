// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Fan: fans, whose speeds are those of their sensors.
#include "cooling_device.h"
#include "sources/sensors/chips.h"

namespace NVORNQDX20 {
namespace {

struct TFan : TCoolingDevice {
  TReading<bool> fIsVariable;
  TNumber fDesiredSpeed;
  TReading<std::uint16_t> fControlMode;
};

TReading<std::uint16_t> ControlModeOf(std::uint64_t enable) {
  constexpr std::uint16_t kAutomatic = 2, kManual = 3;
  if (enable == 0) return Missing("it is not controlled, and turns at full speed");
  return enable == 1 ? kManual : kAutomatic;
}

/// By the rule of most chips, "pwm2" is for "fan2".
TFan FanOf(const TChannel& channel) {
  TFan fan;
  const std::string pwm = "pwm" + channel.fName.substr(3);
  fan.fID = channel.fID;
  fan.fName = channel.fName;
  fan.fLabel = channel.fFolder.ReadLine(channel.PathOf("label"));
  fan.fIsActive = true;
  fan.fIsVariable = channel.Has("target") ? TReading<bool>(true) : channel.fFolder.Exists(pwm);
  fan.fDesiredSpeed = channel.fFolder.ReadNumber(channel.PathOf("target"));
  fan.fControlMode = channel.fFolder.ReadNumber(pwm + "_enable").and_then(ControlModeOf);
  return fan;
}

TInstances<TFan> ListFans(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  TInstances<TFan> fans({}, chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    if (channel.fQuantity->fSensorType == kTachometer) fans.fAll.push_back(FanOf(channel));
  }
  if (fans.fAll.empty() && fans.fReason.empty()) fans.Miss("no chip has the speed of a fan");
  return fans;
}

}  // namespace

TClass FanClass() {
  return THostTable<TFan>{"VORNSG_Fan",
                          "A fan. VORNSG_AssociatedSensor ties it to the sensor of its speed.",
                          ListFans,
                          {{"VariableSpeed", "Whether its speed can be set.", &TFan::fIsVariable},
                           {"DesiredSpeed", "The speed that is set.", &TFan::fDesiredSpeed,
                            TUnit{"revolution / minute"}, kGauge, kVolatile},
                           {"ControlMode", "What sets the speed.", &TFan::fControlMode,
                            TEnumeration{{0, "Unknown"}, {2, "Automatic"}, {3, "Manual"}}}}}
      .DerivedFrom(CoolingDeviceTable());
}

}  // namespace NVORNQDX20
