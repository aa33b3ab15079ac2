// SPDX-License-Identifier: Apache-2.0
/// Times that options name.
#ifndef TOOLS_QDX_STORE_VERBS_TIME_OPTION_H_
#define TOOLS_QDX_STORE_VERBS_TIME_OPTION_H_

#include "cli/arguments.h"
#include "format/time_text.h"

namespace NVORNQDX20::NStore {

/// Returns what is between the options --since and --until, either of which may lack. Throws a
/// TCommandFailure if one is no time, or nothing is between them.
TTypedTime TimeRange(const TArguments& arguments);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_TIME_OPTION_H_
