// SPDX-License-Identifier: Apache-2.0
/// The class that an operand names.
#ifndef TOOLS_QDX_STORE_VERBS_CHOSEN_CLASS_H_
#define TOOLS_QDX_STORE_VERBS_CHOSEN_CLASS_H_

#include <string>

#include "database/database.h"

namespace NVORNQDX20::NStore {

/// Returns the name of the class of the store that a person means, such as "disk"; empty for an
/// empty text. Throws a TCommandFailure if there is none or several, and a TDatabaseError.
std::string ChosenClass(TDatabase& database, const std::string& typed);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_CHOSEN_CLASS_H_
