// SPDX-License-Identifier: Apache-2.0
// The verb hosts.
#include <qdxcore/status.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "days.h"
#include "format/answer.h"
#include "format/time_text.h"
#include "opened_store.h"
#include "questions/fleet.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

constexpr const char* kSilentAfter = "silent-after";
constexpr int kDefaultDays = 7;
constexpr std::int64_t kMillisecondsOfDay = std::int64_t{24} * 60 * 60 * 1000;

/// Its clock was wrong, and documents with the right time seem older.
bool IsFromFuture(const TFleetHost& host) {
  const auto last = MillisecondsOf(host.fLastSeen);
  return last && IsInFuture(*last);
}

/// Returns the whole days between the last document of the host and now; 0 if it is in the future.
std::int64_t DaysOfSilence(const TFleetHost& host) {
  const auto last = MillisecondsOf(host.fLastSeen);
  return last ? std::max<std::int64_t>(0, (Now() - *last) / kMillisecondsOfDay) : 0;
}

TJSON AsJSON(const TProblem& problem) {
  return {{"kind", problem.fKind},
          {"provider", problem.fProvider},
          {"namespace", problem.fNamespace},
          {"operation", problem.fOperation},
          {"reason", problem.fReason}};
}

/// Who failed, and why.
std::string TextOf(const TProblem& problem) {
  return (problem.fProvider.empty() ? problem.fKind : problem.fProvider) + ": " + problem.fReason;
}

/// For programs and for people.
struct TIdentifierNames {
  const char* fKey;
  const char* fWords;
};

TIdentifierNames NamesOf(TFleetHost::EIdentifier identifier) {
  switch (identifier) {
    case TFleetHost::kMachineID:
      return {"machineId", "machine ID"};
    case TFleetHost::kSerialNumber:
      return {"serialNumber", "serial number"};
    case TFleetHost::kName:
      break;
  }
  return {"host", "name"};
}

/// What a person should know about the host, worst first.
std::string RemarksOn(const TFleetHost& host, std::int64_t silentAfter) {
  std::string remarks;
  const auto add = [&remarks](const std::string& remark) {
    remarks += (remarks.empty() ? "" : "; ") + remark;
  };
  const std::int64_t days = DaysOfSilence(host);
  if (days > silentAfter) add("silent for " + std::to_string(days) + " days");
  if (IsFromFuture(host)) add("last document from the future");
  if (!host.fClones.empty()) {
    constexpr std::size_t kShown = 3;
    std::string names;
    for (std::size_t i = 0; i < std::min(kShown, host.fClones.size()); ++i) {
      names += (names.empty() ? "" : ", ") + ShortName(host.fClones[i]);
    }
    if (host.fClones.size() > kShown) names += ", ...";
    add("same machine ID as " + names);
  }
  if (!host.fAlternating.empty()) {
    std::string what;
    for (const auto each : host.fAlternating) {
      what += std::string(what.empty() ? "" : ", ") + NamesOf(each).fWords;
    }
    add("several machines with one UUID? changes to and fro: " + what);
  }
  for (const TProblem& problem : host.fProblems) add(ShortName(TextOf(problem)));
  if (!host.fIsComplete && host.fProblems.empty()) add("incomplete");
  if (!host.fHasAllPermissions) add("without root");
  return remarks;
}

TAnswer AnswerOf(const std::vector<TFleetHost>& fleet, std::int64_t silentAfter) {
  using TColumn = TAnswerColumn;
  TAnswer answer{"hosts",
                 {{"host", "Host", TColumn::kAll, TColumn::kName},
                  {"", "Product", TColumn::kPeople, TColumn::kName},
                  {"uuid", "", TColumn::kPrograms},
                  {"machineId", "", TColumn::kPrograms},
                  {"serialNumber", "", TColumn::kPrograms},
                  {"manufacturer", "", TColumn::kPrograms},
                  {"model", "", TColumn::kPrograms},
                  {"firstSeen", "First seen"},
                  {"lastSeen", "Last seen"},
                  {"documents", "Documents"},
                  {"daysOfSilence", "", TColumn::kPrograms},
                  {"isSilent", "", TColumn::kPrograms},
                  {"isFromFuture", "", TColumn::kPrograms},
                  {"hasAllPermissions", "", TColumn::kPrograms},
                  {"isComplete", "", TColumn::kPrograms},
                  {"partsLeftOut", "", TColumn::kPrograms},
                  {"sharesMachineIdWith", "", TColumn::kPrograms},
                  {"problems", "", TColumn::kJSON},
                  {"problems", "", TColumn::kCSV},
                  {"alternating", "", TColumn::kPrograms},
                  {"", "Remarks", TColumn::kPeople}},
                 {}};
  for (const TFleetHost& host : fleet) {
    TJSON problems = TJSON::array();
    TJSON reasons = TJSON::array();
    TJSON alternating = TJSON::array();
    for (const auto each : host.fAlternating) alternating.push_back(NamesOf(each).fKey);
    for (const TProblem& problem : host.fProblems) {
      problems.push_back(AsJSON(problem));
      reasons.push_back(TextOf(problem));
    }
    const std::int64_t days = DaysOfSilence(host);
    answer.fRows.push_back({host.fName,
                            OrNull(ProductOf(host)),
                            OrNull(host.fUUID),
                            OrNull(host.fMachineID),
                            OrNull(host.fSerialNumber),
                            OrNull(host.fMaker),
                            OrNull(host.fModel),
                            host.fFirstSeen,
                            host.fLastSeen,
                            host.fDocuments,
                            days,
                            days > silentAfter,
                            IsFromFuture(host),
                            host.fHasAllPermissions,
                            host.fIsComplete,
                            TJSON(host.fPartsLeftOut),
                            TJSON(host.fClones),
                            problems,
                            reasons,
                            alternating,
                            OrNull(RemarksOn(host, silentAfter))});
  }
  if (fleet.empty()) answer.fRemarks.emplace_back("no hosts");
  return answer;
}

EExitCode Hosts(const TArguments& arguments) {
  RequireOneForm(arguments);
  const int silentAfter = DaysOf(arguments, kSilentAfter, kDefaultDays);
  const auto database = OpenStoreOf(arguments.GetOperand(0), EAccess::kExisting);
  try {
    const TTransaction oneState(*database, TTransaction::kReading);
    const std::vector<TFleetHost> fleet = ReadFleet(*database);
    database->RequireSameState();
    WriteAnswer(AnswerOf(fleet, silentAfter), arguments);
  } catch (const TDatabaseError& error) {
    FailOnStore(database->GetLocation(), error);
  }
  return kExitDone;
}

}  // namespace

TVerb HostsVerb() {
  std::vector<TOptionSpec> options = FormOptions();
  options.push_back({kSilentAfter, "DAYS", "Remark on hosts without a document for longer (7)."});
  return {"hosts",
          "Lists the hosts: who reported, when, and what failed.",
          "Remarks name hosts that have not reported for long, that share their machine ID with\n"
          "others, and what was wrong with their last document.\n",
          options,
          Hosts,
          {{"DB"}}};
}

}  // namespace NVORNQDX20::NStore
