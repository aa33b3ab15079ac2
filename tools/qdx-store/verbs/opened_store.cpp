// SPDX-License-Identifier: Apache-2.0
#include "opened_store.h"

namespace NVORNQDX20::NStore {

std::unique_ptr<TDatabase> OpenStoreOf(const std::string& operand, EAccess access) {
  const std::string scheme = TLocation::UnknownSchemeOf(operand);
  if (!scheme.empty()) {
    FailOnUsage("a store is a file or postgresql://USER@HOST/NAME, not " + scheme +
                "...; a file of this name is ./" + scheme + "...");
  }
  const TLocation location(operand);
  const auto reportWait = [shown = location.fShown] {
    PrintError("waiting for another program that has locked store " + shown + ", at most " +
               std::to_string(kLockTimeout.count()) + " s");
  };
  try {
    return OpenStore(location, access, reportWait);
  } catch (const TDatabaseError& error) {
    FailOnStore(location, error);
  }
}

void FailOnStore(const TLocation& location, const TDatabaseError& error) {
  throw TCommandFailure(kExitBadInput, "using store " + location.fShown, error);
}

}  // namespace NVORNQDX20::NStore
