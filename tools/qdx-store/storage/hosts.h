// SPDX-License-Identifier: Apache-2.0
/// The hosts of a store: finds that of a document, joins hosts that turn out to be one, and parts
/// those that turn out to be two.
#ifndef TOOLS_QDX_STORE_STORAGE_HOSTS_H_
#define TOOLS_QDX_STORE_STORAGE_HOSTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"
#include "identity.h"

namespace NVORNQDX20::NStore {

struct TKnownHost {
  std::int64_t fIdentity;
  std::int64_t fHost;
};

/// Locks the host of the identity until the transaction ends; a new identity all hosts. Adds the
/// identity if it is new, and then moves documents whose host it shows to be another one. Adds a
/// warning for a machine-id that several hosts turn out to have, and for a UUID that several
/// machines seem to have. REQUIRES: a transaction. Throws a TDatabaseError.
TKnownHost FindHost(TDatabase& database, const TIdentity& identity,
                    std::vector<std::string>& warnings);

/// Locks all hosts until the transaction ends. REQUIRES: a transaction that has read nothing yet.
void LockAllHosts(TDatabase& database);

/// Removes an identity that no document has any more, and moves documents whose host only it
/// showed. REQUIRES: all hosts are locked.
void RemoveIdentity(TDatabase& database, std::int64_t number);

/// Gives the host the name in its last document that has one; else its key is its name. To be
/// called after its documents have changed.
void NameHost(TDatabase& database, std::int64_t host);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_HOSTS_H_
