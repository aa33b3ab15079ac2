// SPDX-License-Identifier: Apache-2.0
/// Options that are a number of days.
#ifndef TOOLS_QDX_STORE_VERBS_DAYS_H_
#define TOOLS_QDX_STORE_VERBS_DAYS_H_

#include <string>

#include "cli/arguments.h"

namespace NVORNQDX20::NStore {

/// Returns the value of an option such as "30d" or "30", and without the option the default. Throws
/// a TCommandFailure for another text, and for more than 100,000 days.
int DaysOf(const TArguments& arguments, const std::string& option, int byDefault);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_DAYS_H_
