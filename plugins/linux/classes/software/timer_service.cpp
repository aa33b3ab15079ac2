// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_TimerService: timers, which start services at their times.
#include <algorithm>

#include "service.h"

namespace NVORNQDX20 {
namespace {

TInstances<TServiceUnit> ListTimers(const THost& host) { return UnitsWithSuffix(host, ".timer"); }

/// Settings of times begin with "On": "OnCalendar", "OnBootSec"; some others do, too.
std::vector<std::string> Times(const TUnitSettings& settings) {
  std::vector<std::string> times = settings.GetList("Timer", "On");
  const auto isOther = [](const std::string& setting) {
    return setting.compare(0, 11, "OnCalendar=") != 0 && setting.find("Sec=") == std::string::npos;
  };
  times.erase(std::remove_if(times.begin(), times.end(), isOther), times.end());
  return times;
}

}  // namespace

TClass TimerServiceClass() {
  return THostTable<TServiceUnit>{
      "VORNSG_TimerService",
      "A timer, which starts a unit at its times.",
      ListTimers,
      {{"Times", "When: settings such as \"OnCalendar=daily\" and \"OnBootSec=15min\".",
        [](const TServiceUnit& unit) { return unit.fSettings.map(Times); }},
       {"Unit", "What it starts.", StartedUnit("Timer", "Unit")}}}
      .DerivedFrom(ServiceTable());
}

}  // namespace NVORNQDX20
