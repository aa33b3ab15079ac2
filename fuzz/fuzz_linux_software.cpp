// SPDX-License-Identifier: Apache-2.0
// What is installed and what runs. The first byte selects a file of a time zone (0), the rule of
// one (1), a unit file (2), packages (3), users (4), groups (5) or the state of a process (6).
#include <sources/software/package_status.h>
#include <sources/software/process.h>
#include <sources/software/time_zone.h>
#include <sources/software/unit_file.h>
#include <sources/software/user_table.h>

#include <algorithm>

#include "checks.h"

using namespace NVORNQDX20;

namespace {

constexpr std::int64_t kMoments[] = {-5'000'000'000, 0, 1'768'478'400, 1'784'116'800,
                                     9'999'999'999};

void CheckTimeZoneFile(const std::string& text) {
  for (const std::int64_t when : kMoments) {
    // A part of a file that is too short gives nothing else.
    if (OffsetInZoneFile(text, when)) Require(text.substr(0, 4) == "TZif" && text.size() >= 50);
  }
}

void CheckTimeZoneRule(const std::string& text) {
  constexpr std::int64_t kLargest = 170 * 3600;
  for (const std::int64_t when : kMoments) {
    const auto offset = OffsetByRule(text, when);
    if (offset) Require(*offset >= -kLargest && *offset <= kLargest);
    Require(offset.has_value() == OffsetByRule(text, 0).has_value());
  }
}

/// Settings are written as a unit file that has the same.
void CheckUnitFile(const std::string& text) {
  TUnitSettings unit;
  unit.Add(text);
  std::string written;
  const auto& all = unit.GetAll();
  for (const auto& [section, name, value] : all) {
    Require(PrintableText(name) == name && PrintableText(value) == value);
    // Such a line would be another kind of line.
    if (!name.empty() &&
        (name.find_first_of("=#;[") == 0 || value.find_last_of("\\]") != std::string::npos))
      return;
    if (section.find(']') != std::string::npos || name.empty()) return;
    written += "[" + section + "]\n" + name + " = " + value + "\n";
    const std::string program = unit.GetProgram(section, name);
    Require(std::any_of(all.begin(), all.end(), [&program](const auto& each) {
      return each.fValue.find(program) != std::string::npos;
    }));
  }
  TUnitSettings again;
  again.Add(written);
  const auto same = [](const auto& one, const auto& other) {
    return one.fSection == other.fSection && one.fName == other.fName && one.fValue == other.fValue;
  };
  Require(std::equal(all.begin(), all.end(), again.GetAll().begin(), again.GetAll().end(), same));
}

void CheckPackages(const std::string& text) {
  std::vector<TPackage> packages;
  ParsePackages(text, packages);
  std::string written;
  for (const TPackage& each : packages) {
    Require(!each.fName.empty() && !each.fVersion.empty());
    written += "Package: " + each.fName + "\nVersion: " + each.fVersion +
               "\nStatus: " + each.fStatus + "\nDescription: " + each.fSummary + "\n\n";
  }
  std::vector<TPackage> again;
  ParsePackages(written, again);
  const auto same = [](const TPackage& one, const TPackage& other) {
    return one.fName == other.fName && one.fVersion == other.fVersion &&
           one.fStatus == other.fStatus && one.fSummary == other.fSummary;
  };
  Require(std::equal(packages.begin(), packages.end(), again.begin(), again.end(), same));
}

void CheckUsers(const std::string& text) {
  for (const TUser& each : ParseUsers(text)) {
    Require(!each.fName.empty() && each.fName.find(':') == std::string::npos);
    Require(ParseNumber<std::uint32_t>(each.fID).has_value());
  }
}

void CheckGroups(const std::string& text) {
  for (const TGroup& each : ParseGroups(text)) {
    Require(!each.fName.empty() && ParseNumber<std::uint32_t>(each.fID).has_value());
    for (const std::string& member : each.fMembers) {
      Require(!member.empty() && member.find(',') == std::string::npos);
    }
  }
}

void CheckProcess(const std::string& text) {
  const auto state = ParseProcessState(text);
  if (!state) return;
  Require(PrintableText(state->fName) == state->fName && ParseNumber(state->fParent).has_value());
  // What comes after the fields that are read does not count.
  Require(ParseProcessState(text + " 1 2")->fStartTime == state->fStartTime);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return RunCheck({CheckTimeZoneFile, CheckTimeZoneRule, CheckUnitFile, CheckPackages, CheckUsers,
                   CheckGroups, CheckProcess},
                  data, size);
}
