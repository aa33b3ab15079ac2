// SPDX-License-Identifier: Apache-2.0
#include <charconv>
#include <chrono>
#include <string>

#include "cli/failure.h"
#include "cli/output.h"
#include "opened_store.h"
#include "storage/store.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

const char* const kDefaultAge = "30d";
const int kMostDays = 50000;  // back to before 1970 from any day on which this runs

/// "30d" are 30 days.
std::chrono::hours AgeOf(const std::string& text) {
  int days = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, days);
  if (error != std::errc() || days < 0 || days > kMostDays || std::string(rest, end) != "d") {
    FailOnUsage("'" + text + "' is no number of days, as in 30d");
  }
  return std::chrono::hours(24) * days;
}

EExitCode Prune(const TArguments& arguments) {
  const std::chrono::hours age = AgeOf(arguments.Get("readings", kDefaultAge));
  const auto before = std::chrono::system_clock::now() - age;
  const auto microseconds =
      std::chrono::duration_cast<std::chrono::microseconds>(before.time_since_epoch()).count();
  const auto database = OpenStoreOf(arguments.GetOperand(0), EAccess::kExisting);
  try {
    const std::int64_t count =
        TStore(*database).PruneReadings(std::max<std::int64_t>(microseconds, 0));
    WriteOutput(std::to_string(count) + " readings removed\n");
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
      {{"readings", "AGE", "Keep those of the last days; 30d without this option."}},
      Prune,
      {{"DB"}}};
}

}  // namespace NVORNQDX20::NStore
