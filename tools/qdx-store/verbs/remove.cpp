// SPDX-License-Identifier: Apache-2.0
// The verb remove.
#include <string>
#include <vector>

#include "chosen_host.h"
#include "cli/failure.h"
#include "cli/output.h"
#include "format/answer.h"
#include "opened_store.h"
#include "storage/hosts.h"
#include "storage/removal.h"
#include "time_option.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

EExitCode Remove(const TArguments& arguments) {
  if (!arguments.Has("since") && !arguments.Has("until")) {
    FailOnUsage("option '--since' or '--until' is missing");
  }
  const TTypedTime range = TimeRange(arguments);
  const auto database = OpenStoreOf(arguments.GetOperand(0), EAccess::kExisting);
  try {
    TTransaction transaction(*database);
    LockAllHosts(*database);
    const TFleetHost host = ChosenHost(*database, arguments.GetOperand(1));
    const auto removed = RemoveDocuments(*database, host.fID, range.fBegin, range.fEnd);
    transaction.Commit();
    std::string text;
    for (const auto& [time, digest] : removed) text += TimeText(time) + " " + digest + "\n";
    WriteOutput(text + std::to_string(removed.size()) +
                (removed.size() == 1 ? " document of " : " documents of ") + ShortName(host.fName) +
                " removed\n");
  } catch (const TDatabaseError& error) {
    FailOnStore(database->GetLocation(), error);
  }
  return kExitDone;
}

}  // namespace

TVerb RemoveVerb() {
  return {
      "remove",
      "Takes documents of a host out again.",
      "It is for documents of a host whose clock was wrong: what they say hides what later ones\n"
      "say. Afterwards the store is as if they had never been added. Each is listed with its\n"
      "time and its digest, which sha256sum prints for the file: a file that remains can be\n"
      "added again. HOST is a name, UUID, machine ID or serial number, or how one of the first\n"
      "three begins; host_id=3 is one of several with the same name. TIME is UTC, such as\n"
      "2026-01-31T12:00, which can be cut off: 2026-01 is the whole month. 7d and 12h are so\n"
      "long ago. One of the options is needed.\n",
      {{"since", "TIME", "The documents from this time on."},
       {"until", "TIME", "The documents up to this time."}},
      Remove,
      {{"DB"}, {"HOST"}}};
}

}  // namespace NVORNQDX20::NStore
