// SPDX-License-Identifier: Apache-2.0
#include "time_option.h"

#include "cli/failure.h"

namespace NVORNQDX20::NStore {

TTypedTime TimeOption(const TArguments& arguments, const std::string& option) {
  const std::string text = arguments.Get(option, "");
  const auto time = ParseTypedTime(text, Now());
  if (!time) {
    FailOnUsage("--" + option + " is '" + text + "', not a time such as 2026-01-31T12:00 or 7d");
  }
  return *time;
}

}  // namespace NVORNQDX20::NStore
