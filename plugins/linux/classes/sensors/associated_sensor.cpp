// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_AssociatedSensor: ties sensors to what they watch.
#include "classes/logical_device.h"
#include "classes/physical_element.h"
#include "sources/sensors/chips.h"

namespace NVORNQDX20 {
namespace {

TInstances<TTie> ListTies(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  TInstances<TTie> ties({}, chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    const TInstanceName sensor{"VORNSG_NumericSensor", channel.fID};
    if (channel.fQuantity->fSensorType == kTachometer) {
      ties.fAll.push_back({sensor, {"VORNSG_Fan", channel.fID}});
    }
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
