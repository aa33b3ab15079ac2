// SPDX-License-Identifier: Apache-2.0
/// Opens a store.
#ifndef TOOLS_QDX_STORE_DATABASE_OPEN_H_
#define TOOLS_QDX_STORE_DATABASE_OPEN_H_

#include <cstdint>
#include <memory>

#include "database.h"

namespace NVORNQDX20::NStore {

enum class EAccess {
  kExisting,  ///< The store must exist.
  kOptional,  ///< There may be no store yet, where one can be made: null then.
  kCreating   ///< Makes the file if it does not exist, and the tables if there are none.
};

/// Connects, and brings the tables and views of an older version up to date. A file that it creates
/// can be read and written by its owner only. Throws a TDatabaseError for what is no store, and for
/// one of a newer version.
std::unique_ptr<TDatabase> OpenStore(const TLocation& location, EAccess access,
                                     TWaitListener onWait = nullptr);

/// The version of the tables that this program writes.
std::int64_t LatestVersion();

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_OPEN_H_
