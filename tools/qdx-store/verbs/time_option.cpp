// SPDX-License-Identifier: Apache-2.0
#include "time_option.h"

#include <limits>
#include <string>

#include "cli/failure.h"

namespace NVORNQDX20::NStore {
namespace {

TTypedTime TimeOf(const TArguments& arguments, const std::string& option, TMilliseconds now) {
  const std::string text = arguments.Get(option, "");
  const auto time = ParseTypedTime(text, now);
  if (!time) {
    FailOnUsage("--" + option + " is '" + text + "', not a time such as 2026-01-31T12:00 or 7d");
  }
  return *time;
}

}  // namespace

TTypedTime TimeRange(const TArguments& arguments) {
  const TMilliseconds now = Now();
  TTypedTime range{std::numeric_limits<TMilliseconds>::min(),
                   std::numeric_limits<TMilliseconds>::max()};
  if (arguments.Has("since")) range.fBegin = TimeOf(arguments, "since", now).fBegin;
  if (arguments.Has("until")) range.fEnd = TimeOf(arguments, "until", now).fEnd;
  if (range.fBegin >= range.fEnd) {
    FailOnUsage("no time is both after --since " + arguments.Get("since", "") +
                " and before the end of --until " + arguments.Get("until", ""));
  }
  return range;
}

}  // namespace NVORNQDX20::NStore
