// SPDX-License-Identifier: Apache-2.0
/// The store that an operand names.
#ifndef TOOLS_QDX_STORE_VERBS_OPENED_STORE_H_
#define TOOLS_QDX_STORE_VERBS_OPENED_STORE_H_

#include <memory>
#include <string>

#include "cli/failure.h"
#include "database/open.h"

namespace NVORNQDX20::NStore {

/// Null for an optional store that does not exist yet. A line reports a long wait for another
/// program. Throws a TCommandFailure that names the store, without a password, if it cannot be
/// opened.
std::unique_ptr<TDatabase> OpenStoreOf(const std::string& operand, EAccess access);

/// Ends the command with a line about the store.
[[noreturn]] void FailOnStore(const TLocation& location, const TDatabaseError& error);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_VERBS_OPENED_STORE_H_
