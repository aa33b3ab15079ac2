// SPDX-License-Identifier: Apache-2.0
/// The locks by which the writers of a server's store wait for each other.
#ifndef TOOLS_QDX_STORE_DATABASE_LOCKS_H_
#define TOOLS_QDX_STORE_DATABASE_LOCKS_H_

#include <cstdint>

#include "database.h"

namespace NVORNQDX20::NStore {

enum class ELock {
  kShared,    ///< With others that have a shared lock.
  kExclusive  ///< Nobody else has a lock.
};

/// Locks the tables and the hosts until the transaction ends. It has no effect on a file, which has
/// one writer anyway. REQUIRES: a transaction without such a lock. Throws a TDatabaseError.
void LockStore(TDatabase& database, ELock lock);

/// The same for one host, exclusively.
void LockHost(TDatabase& database, std::int64_t host);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_LOCKS_H_
