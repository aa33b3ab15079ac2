// SPDX-License-Identifier: Apache-2.0
#include "locks.h"

#include <string>

namespace NVORNQDX20::NStore {
namespace {

/// The first numbers of our advisory locks, which other programs should not use in the database.
const char* const kStoreLock = "7366225";
const char* const kHostLock = "7366226";

std::string Seconds(std::chrono::seconds time) { return "'" + std::to_string(time.count()) + "s'"; }

/// The two numbers are the key of an advisory lock.
void Lock(TDatabase& database, ELock lock, const char* first, std::int64_t second) {
  if (database.IsSQLite()) return;
  const std::string call = std::string("advisory_xact_lock") +
                           (lock == ELock::kShared ? "_shared(" : "(") + first +
                           ", CAST(:number AS INTEGER))";
  if (database.QueryNumber("SELECT CAST(pg_try_" + call + " AS INTEGER)", {second}) == 1) return;
  const std::string wait = "SELECT pg_" + call;
  database.Execute("SAVEPOINT waiting");
  database.Execute("SET LOCAL lock_timeout = " + Seconds(kSilentWait));
  try {
    database.Execute(wait, {second});
    database.Execute("SET LOCAL lock_timeout = " + Seconds(kLockTimeout));
    return;
  } catch (const TDatabaseError& error) {
    if (error.GetKind() != TDatabaseError::kLocked) throw;
  }
  database.ReportWait();
  database.Execute("ROLLBACK TO SAVEPOINT waiting");  // also of the time limit
  database.Execute(wait, {second});
}

}  // namespace

void LockStore(TDatabase& database, ELock lock) { Lock(database, lock, kStoreLock, 0); }

void LockHost(TDatabase& database, std::int64_t host) {
  constexpr std::int64_t kMost = 2147483647;  // of the type of the argument
  Lock(database, ELock::kExclusive, kHostLock, host % kMost);
}

}  // namespace NVORNQDX20::NStore
