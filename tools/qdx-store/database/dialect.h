// SPDX-License-Identifier: Apache-2.0
/// The differences between the databases.
#ifndef TOOLS_QDX_STORE_DATABASE_DIALECT_H_
#define TOOLS_QDX_STORE_DATABASE_DIALECT_H_

#include <string>

namespace NVORNQDX20::NStore {

/// Returns the statement with the database's own words for ours, which database.h lists.
std::string Translate(const std::string& sql, bool isSQLite);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_DIALECT_H_
