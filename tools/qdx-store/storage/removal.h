// SPDX-License-Identifier: Apache-2.0
/// Takes documents out of a store again.
#ifndef TOOLS_QDX_STORE_STORAGE_REMOVAL_H_
#define TOOLS_QDX_STORE_STORAGE_REMOVAL_H_

#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"

namespace NVORNQDX20::NStore {

struct TRemovedDocument {
  std::int64_t fTime;  ///< Milliseconds since 1970.
  std::string fDigest;
};

/// Removes the documents of a host of these times, in milliseconds since 1970, the second one
/// excluded: then the hosts, facts and all else are as if they had never been added. Only texts
/// that nothing uses any more stay. Returns them by time. REQUIRES: a transaction in which all
/// hosts are locked. Throws a TDatabaseError.
std::vector<TRemovedDocument> RemoveDocuments(TDatabase& database, std::int64_t host,
                                              std::int64_t since, std::int64_t until);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_REMOVAL_H_
