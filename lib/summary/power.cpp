// SPDX-License-Identifier: Apache-2.0
// Batteries and power supplies.
#include <utility>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

/// Empty if nothing is known to be wrong.
std::string SupplyFaultOf(const TFacts& supply) {
  if (supply.Flag("Present") == false) return "not present";
  if (supply.Flag("Unplugged") == true) return "unplugged";
  const std::string status = supply.Text("Status");
  return status == "Non-critical" || status == "Critical" ? status : "";
}

}  // namespace

void ReadPower(const ICIMNamespace& ns, TSummary& summary) {
  ForEach(ns, "VORNSG_Battery", [&summary](const TFacts& facts) {
    // That of a mouse says nothing about the machine.
    if (facts.Text("Scope") == "Device" || facts.Flag("Present") == false) return;
    std::string name = facts.Text("Name");
    if (name.empty()) name = facts.Text("DeviceID");
    summary.fBatteries.push_back({std::move(name), facts.Text("Status"),
                                  facts.Number("EstimatedChargeRemaining"),
                                  facts.Number("HealthPercent")});
  });
  TGroups<TPowerSupplies, std::string, TNumber, std::string> groups(summary.fPowerSupplies);
  ForEach(ns, "VORNSG_PowerSupply", [&groups](const TFacts& facts) {
    const std::string model = facts.Text("Model");
    const bool isInWatts = facts.Text("OutputPowerUnits") == "watt";
    const TNumber watts = isInWatts ? facts.Number("RatedMaxOutputPower") : TNumber();
    const std::string fault = SupplyFaultOf(facts);
    ++groups.GroupOf({0, model, watts, fault}, model, watts, fault).fCount;
  });
}

}  // namespace NVORNQDX20::NSummary
