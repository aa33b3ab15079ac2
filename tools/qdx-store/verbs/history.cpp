// SPDX-License-Identifier: Apache-2.0
// The verb history.
#include <qdxdisplay/names.h>

#include <string>
#include <vector>

#include "chosen_class.h"
#include "chosen_host.h"
#include "format/answer.h"
#include "format/time_text.h"
#include "opened_store.h"
#include "questions/history.h"
#include "time_option.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

using TColumn = TAnswerColumn;

const char* NameOf(TChange::EChange change) {
  switch (change) {
    case TChange::kAdded:
      return "added";
    case TChange::kRemoved:
      return "removed";
    case TChange::kMissing:
      return "missing";
    case TChange::kNotMissing:
      return "not missing";
    case TChange::kChanged:
      break;
  }
  return "changed";
}

std::string LabelOf(const TChange& change) {
  return ShortClassName(change.fClass) + (change.fObject.empty() ? "" : " " + change.fObject);
}

/// One row for each change. In a table an object that came or went has one row.
std::vector<std::vector<TJSON>> RowsOf(const std::vector<TChange>& changes, bool isForPeople) {
  std::vector<std::vector<TJSON>> rows;
  const TChange* whole = nullptr;
  for (const TChange& change : changes) {
    const bool isOfWhole = isForPeople && change.fIsOfWholeObject;
    const bool isSame = isOfWhole && whole != nullptr && whole->fTime == change.fTime &&
                        whole->fChange == change.fChange && whole->fClass == change.fClass &&
                        whole->fObject == change.fObject && whole->fNamespace == change.fNamespace;
    whole = isOfWhole ? &change : nullptr;
    if (isSame) continue;
    const auto old = isOfWhole ? TJSON() : OrNull(change.fOld);
    const auto now = isOfWhole ? TJSON() : OrNull(change.fNew);
    rows.push_back(
        {TimeText(change.fTime), TimeText(change.fAfter), NameOf(change.fChange), change.fNamespace,
         change.fClass, change.fObject, LabelOf(change),
         isOfWhole || (isForPeople && change.fProperty.empty()) ? TJSON() : TJSON(change.fProperty),
         old, now, OrNull(change.fReason)});
  }
  return rows;
}

TAnswer AnswerOf(const TFleetHost& host, const std::vector<TChange>& changes, bool isForPeople,
                 bool withMissing) {
  TAnswer answer{"changes",
                 {{"time", "Time"},
                  {"after", "After", TColumn::kPrograms},
                  {"change", "Change"},
                  {"namespace", "", TColumn::kPrograms},
                  {"class", "", TColumn::kPrograms},
                  {"object", "", TColumn::kPrograms},
                  {"", "Object", TColumn::kPeople, TColumn::kName},
                  {"property", "Property"},
                  {"old", "Old"},
                  {"new", "New"},
                  {"reason", "Reason", withMissing ? TColumn::kAll : TColumn::kPrograms}},
                 RowsOf(changes, isForPeople)};
  answer.fOthers["host"] = host.fName;
  answer.fOthers["firstSeen"] = host.fFirstSeen;
  answer.fOthers["lastSeen"] = host.fLastSeen;
  answer.fOthers["documents"] = host.fDocuments;
  answer.fRemarks.push_back(std::to_string(changes.size()) +
                            (changes.size() == 1 ? " change in " : " changes in ") +
                            std::to_string(host.fDocuments) +
                            (host.fDocuments == 1 ? " document from " : " documents from ") +
                            host.fFirstSeen + " to " + host.fLastSeen);
  return answer;
}

EExitCode History(const TArguments& arguments) {
  RequireOneForm(arguments);
  THistoryRequest request{};
  const TTypedTime range = TimeRange(arguments);
  request.fSince = range.fBegin;
  request.fUntil = range.fEnd;
  request.fWithMissing = arguments.Has("missing");
  const auto database = OpenStoreOf(arguments.GetOperand(0), EAccess::kExisting);
  try {
    const TTransaction oneState(*database, TTransaction::kReading);
    const TFleetHost host = ChosenHost(*database, arguments.GetOperand(1));
    request.fHost = host.fID;
    request.fClass = ChosenClass(*database, arguments.GetOperand(2));
    const bool isForPeople = !arguments.Has("json") && !arguments.Has("csv");
    const std::vector<TChange> changes = ReadHistory(*database, request);
    database->RequireSameState();
    WriteAnswer(AnswerOf(host, changes, isForPeople, request.fWithMissing), arguments);
  } catch (const TDatabaseError& error) {
    FailOnStore(database->GetLocation(), error);
  }
  return kExitDone;
}

}  // namespace

TVerb HistoryVerb() {
  std::vector<TOptionSpec> options = FormOptions();
  options.push_back(
      {"missing", nullptr, "Also what became missing for a reason, and when that ended."});
  options.push_back({"since", "TIME", "Only changes from this time on."});
  options.push_back({"until", "TIME", "Only changes up to this time."});
  return {
      "history",
      "Lists what changed on a host, and when.",
      "HOST is a name, UUID, machine ID or serial number, or how one of the first three\n"
      "begins; host_id=3 is one of several with the same name. CLASS is the name of a class,\n"
      "or a word such as 'disk'. TIME is UTC, such as 2026-01-31T12:00, which can be cut off:\n"
      "2026-01 is the whole month. 7d and 12h are so long ago. What changes by itself, such as\n"
      "temperatures, is not listed. The time of a change is that of the first document that\n"
      "shows it.\n",
      options,
      History,
      {{"DB"}, {"HOST"}, {"CLASS", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20::NStore
