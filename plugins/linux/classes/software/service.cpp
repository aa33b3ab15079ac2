// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Service: what the machine starts; and the association VORNSG_HostedService.
#include "service.h"

#include <qdxcore/schema_helper.h>

namespace NVORNQDX20 {
namespace {

const char* const kServiceClass = "VORNSG_Service";
const std::string& kSystemClass = TCIMSchemaHelper::kSystemCreationClassName;

/// Services proper: units and scripts.
TInstances<TServiceUnit> ListServices(const THost& host) {
  const auto& units = host.Shared<TServiceUnits>();
  TInstances<TServiceUnit> services({}, units.ReasonFor(".service"));
  for (const TServiceUnit& unit : units.fAll) {
    if (unit.fIsScript || unit.HasSuffix(".service")) services.fAll.push_back(unit);
  }
  if (services.fAll.empty() && services.fReason.empty()) services.Miss("no unit is a service");
  return services;
}

bool IsEnabled(const std::string& state) {
  return state == "enabled" || state == "enabled-runtime";
}
bool IsMasked(const std::string& state) { return state == "masked" || state == "masked-runtime"; }

TText StartMode(const TServiceUnit& unit) {
  return unit.fState.and_then([&unit](const std::string& state) -> TText {
    if (IsMasked(state)) return "Manual";
    if (IsEnabled(state)) return "Automatic";
    return unit.fStartedBy.map([](const std::vector<std::string>& units) -> std::string {
      return units.empty() ? "Manual" : "Automatic";
    });
  });
}

// From the value map of CIM_EnabledLogicalElement.EnabledDefault.
constexpr std::uint16_t kEnabled = 2;
constexpr std::uint16_t kDisabled = 3;
constexpr std::uint16_t kNotApplicable = 5;

TReading<std::uint16_t> EnabledDefault(const TServiceUnit& unit) {
  return unit.fState.and_then([&](const std::string& state) -> TReading<std::uint16_t> {
    if (IsEnabled(state)) return kEnabled;
    if (state == "bad") return Missing(unit.fSettings.GetReason());
    return state == "disabled" || IsMasked(state) ? kDisabled : kNotApplicable;
  });
}

const char* Manager(const TServiceUnit& unit) { return unit.fIsScript ? "SysV" : "systemd"; }

auto Setting(const char* section, const char* name) {
  return [section, name](const TServiceUnit& unit) {
    return unit.fSettings.map(
        [section, name](const TUnitSettings& settings) { return settings.Get(section, name); });
  };
}

TText Program(const TServiceUnit& unit) {
  if (unit.fIsScript) return unit.fPath;
  return unit.fSettings.map(
      [](const TUnitSettings& settings) { return settings.GetProgram("Service", "ExecStart"); });
}

std::vector<TInstanceName> ListServiceNames(const THost& host) {
  std::vector<TInstanceName> names;
  const auto& units = host.Shared<TServiceUnits>();
  names.reserve(units.fAll.size());
  for (const TServiceUnit& unit : units.fAll) names.push_back({kServiceClass, unit.fName});
  return names;
}

TInstanceName HostSystem(const THost& host) { return {kSystemClass, host.GetNameAsKey()}; }
const TInstanceName& Itself(const TInstanceName& service) { return service; }

}  // namespace

TInstances<TServiceUnit> UnitsWithSuffix(const THost& host, const char* suffix) {
  const auto& units = host.Shared<TServiceUnits>();
  TInstances<TServiceUnit> chosen({}, units.ReasonFor(suffix));
  for (const TServiceUnit& unit : units.fAll) {
    if (unit.HasSuffix(suffix)) chosen.fAll.push_back(unit);
  }
  if (chosen.fAll.empty() && chosen.fReason.empty()) {
    chosen.Miss(std::string("no unit's name ends with ") + suffix);
  }
  return chosen;
}

THostTable<TServiceUnit> ServiceTable() {
  return {
      kServiceClass,
      "A service that the machine can start.",
      ListServices,
      {{"SystemCreationClassName", "The class of the machine.", Constant(kSystemClass), kKey},
       {"SystemName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"CreationClassName", "The class of the service.", kClassName, kKey},
       {"Name", "The name of the service, as in \"ssh.service\".", &TServiceUnit::fName, kKey},
       {"Description", "What it is, in a line; empty if it does not tell.",
        &TServiceUnit::fDescription},
       {"UnitFileState",
        "Whether it is enabled, in the words of \"systemctl list-unit-files\": enabled, disabled, "
        "static (started by others only), masked (never started), alias, indirect, generated, "
        "transient, linked, bad (not readable); with \"-runtime\" until the next start only.",
        &TServiceUnit::fState},
       {"StartMode",
        "\"Automatic\" if the machine's start, or that of another unit, starts it; else "
        "\"Manual\".",
        StartMode},
       {"EnabledDefault", "Whether it is switched on; what is started by others cannot be.",
        EnabledDefault,
        TEnumeration{
            {kEnabled, "Enabled"}, {kDisabled, "Disabled"}, {kNotApplicable, "Not Applicable"}}},
       {"StartedBy", "The units that start it together with themselves.",
        &TServiceUnit::fStartedBy},
       {"AliasOf", "The unit of which this is another name; empty for others.",
        &TServiceUnit::fAliasOf},
       {"UnitFile", "The file that describes it, or the script.", &TServiceUnit::fPath},
       {"Manager", "What starts it: \"systemd\", or \"SysV\" for a script.", Manager},
       {"StartProgram",
        "The program that it runs, without its arguments; empty if it runs none itself.", Program},
       {"RunsAs", "The user whose rights it has; empty if it does not tell.",
        Setting("Service", "User"), ESecret::kUser}}};
}

TClass ServiceClass() { return ServiceTable(); }

TClass HostedServiceClass() {
  return THostTable<TInstanceName>{
      "VORNSG_HostedService",
      "Ties a service to the machine that has it.",
      ListServiceNames,
      {{"Antecedent", "The machine.", HostSystem, kKey, TRefersTo{kSystemClass.c_str()}},
       {"Dependent", "The service.", Itself, kKey, TRefersTo{kServiceClass}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
