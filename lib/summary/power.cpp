// SPDX-License-Identifier: Apache-2.0
// Batteries and power supplies.
#include <algorithm>
#include <tuple>
#include <utility>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

/// Empty if nothing is known to be wrong.
std::string FaultOf(const TFacts& supply) {
  if (supply.Flag("Present") == false) return "not present";
  if (supply.Flag("Unplugged") == true) return "unplugged";
  const std::string status = supply.Text("Status");
  return status == "Non-critical" || status == "Critical" ? status : "";
}

}  // namespace

void ReadPower(const ICIMNamespace& ns, TSummary& summary) {
  ForEach(ns, "VORNSG_Battery", [&summary](const TFacts& facts) {
    // That of a mouse tells nothing about the machine.
    if (facts.Text("Scope") == "Device" || facts.Flag("Present") == false) return;
    std::string name = facts.Text("Name");
    if (name.empty()) name = facts.Text("DeviceID");
    summary.fBatteries.push_back({std::move(name), facts.Text("Status"),
                                  facts.Number("EstimatedChargeRemaining"),
                                  facts.Number("HealthPercent")});
  });
  std::vector<TPowerSupplies>& all = summary.fPowerSupplies;
  ForEach(ns, "VORNSG_PowerSupply", [&all](const TFacts& facts) {
    TPowerSupplies supply;
    supply.fCount = 1;
    supply.fModel = facts.Text("Model");
    if (facts.Text("OutputPowerUnits") == "watt") {
      supply.fWatts = facts.Number("RatedMaxOutputPower");
    }
    supply.fFault = FaultOf(facts);
    const auto key = [](const TPowerSupplies& each) {
      return std::tie(each.fFault, each.fModel, each.fWatts);
    };
    const auto same = std::find_if(all.begin(), all.end(),
                                   [&](const auto& each) { return key(each) == key(supply); });
    same == all.end() ? all.push_back(std::move(supply)) : void(++same->fCount);
  });
}

}  // namespace NVORNQDX20::NSummary
