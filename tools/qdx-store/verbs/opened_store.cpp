// SPDX-License-Identifier: Apache-2.0
#include "opened_store.h"

namespace NVORNQDX20::NStore {

std::unique_ptr<TDatabase> OpenStoreOf(const std::string& operand, EAccess access) {
  const TLocation location(operand);
  try {
    return OpenStore(location, access);
  } catch (const TDatabaseError& error) {
    FailOnStore(location, error);
  }
}

void FailOnStore(const TLocation& location, const TDatabaseError& error) {
  throw TCommandFailure(kExitBadInput, "using store " + location.fShown, error);
}

}  // namespace NVORNQDX20::NStore
