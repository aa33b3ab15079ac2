// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>

#include "cli/output.h"
#include "days.h"
#include "opened_store.h"
#include "storage/store.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

const char* const kReadings = "readings";
const int kDefaultDays = 30;

EExitCode Prune(const TArguments& arguments) {
  const auto age = std::chrono::hours(24) * DaysOf(arguments, kReadings, kDefaultDays);
  const auto before = std::chrono::system_clock::now() - age;
  const auto microseconds =
      std::chrono::duration_cast<std::chrono::microseconds>(before.time_since_epoch()).count();
  const auto database = OpenStoreOf(arguments.GetOperand(0), EAccess::kExisting);
  try {
    const std::int64_t count =
        TStore(*database).PruneReadings(std::max<std::int64_t>(microseconds, 0));
    WriteOutput(std::to_string(count) +
                (count == 1 ? " reading removed\n" : " readings removed\n"));
  } catch (const TDatabaseError& error) {
    FailOnStore(database->GetLocation(), error);
  }
  return kExitDone;
}

}  // namespace

TVerb PruneVerb() {
  return {
      "prune",
      "Removes old readings.",
      "Readings are the values that change while nobody changes the host, such as temperatures\n"
      "and counters: they are stored with every document. All else is kept. A file does not\n"
      "become smaller, but uses the space again.\n",
      {{kReadings, "DAYS", "Keep those of the last days (30)."}},
      Prune,
      {{"DB"}}};
}

}  // namespace NVORNQDX20::NStore
