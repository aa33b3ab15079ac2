// SPDX-License-Identifier: Apache-2.0
/// The host that an operand names.
#ifndef TOOLS_QDX_STORE_VERBS_CHOSEN_HOST_H_
#define TOOLS_QDX_STORE_VERBS_CHOSEN_HOST_H_

#include <string>

#include "database/database.h"
#include "questions/fleet.h"

namespace NVORNQDX20::NStore {

/// Returns the host of the store that a person means. Throws a TCommandFailure if there is none or
/// several, and a TDatabaseError.
TFleetHost ChosenHost(TDatabase& database, const std::string& typed);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_CHOSEN_HOST_H_
