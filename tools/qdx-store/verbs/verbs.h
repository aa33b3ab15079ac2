// SPDX-License-Identifier: Apache-2.0
/// The verbs of the command, one source file for each.
#ifndef TOOLS_QDX_STORE_VERBS_VERBS_H_
#define TOOLS_QDX_STORE_VERBS_VERBS_H_

#include "cli/verb.h"

namespace NVORNQDX20::NStore {

TVerb AddVerb();
TVerb HistoryVerb();
TVerb HostsVerb();
TVerb OddVerb();
TVerb PruneVerb();
TVerb RemoveVerb();

/// The command with every verb, in the order of the help.
const TProgram& TheProgram();

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_VERBS_H_
