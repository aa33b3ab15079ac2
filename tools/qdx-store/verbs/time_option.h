// SPDX-License-Identifier: Apache-2.0
/// Times that options name.
#ifndef TOOLS_QDX_STORE_VERBS_TIME_OPTION_H_
#define TOOLS_QDX_STORE_VERBS_TIME_OPTION_H_

#include <string>

#include "cli/arguments.h"
#include "format/time_text.h"

namespace NVORNQDX20::NStore {

/// Returns the value of an option that is there. Throws a TCommandFailure if it is no time.
TTypedTime TimeOption(const TArguments& arguments, const std::string& option);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_TIME_OPTION_H_
