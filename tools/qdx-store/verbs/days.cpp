// SPDX-License-Identifier: Apache-2.0
#include "days.h"

#include <charconv>
#include <string_view>

#include "cli/failure.h"

namespace NVORNQDX20::NStore {

int DaysOf(const TArguments& arguments, const std::string& option, int byDefault) {
  if (!arguments.Has(option)) return byDefault;
  const std::string text = arguments.Get(option, "");
  constexpr int kMost = 100'000;
  int days = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, days);
  const std::string_view unit(rest, static_cast<std::size_t>(end - rest));
  if (error != std::errc() || days < 0 || days > kMost || (!unit.empty() && unit != "d")) {
    FailOnUsage("--" + option + " is '" + text + "', not a number of days, as in 30d");
  }
  return days;
}

}  // namespace NVORNQDX20::NStore
