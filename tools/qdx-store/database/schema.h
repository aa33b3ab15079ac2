// SPDX-License-Identifier: Apache-2.0
/// The tables and views of a store.
#ifndef TOOLS_QDX_STORE_DATABASE_SCHEMA_H_
#define TOOLS_QDX_STORE_DATABASE_SCHEMA_H_

#include <string>
#include <vector>

namespace NVORNQDX20::NStore {

/// The statements that make version i + 1 of the tables of version i; those at 0 make version 1.
/// Never changed once released: a change is a new version.
const std::vector<std::vector<std::string>>& Migrations();

struct TView {
  std::string fName;
  std::string fQuery;
};

/// The views of the latest version. A view may use those before it.
std::vector<TView> Views();

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_SCHEMA_H_
