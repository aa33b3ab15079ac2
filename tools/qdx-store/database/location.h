// SPDX-License-Identifier: Apache-2.0
/// Where a store is: a file, or a server's database.
#ifndef TOOLS_QDX_STORE_DATABASE_LOCATION_H_
#define TOOLS_QDX_STORE_DATABASE_LOCATION_H_

#include <string>
#include <vector>

namespace NVORNQDX20::NStore {

struct TLocation {
  /// "postgresql://..." and "postgres://..." are servers, everything else is a file.
  explicit TLocation(const std::string& text);

  /// Returns the scheme of a URL that is neither, such as "mysql://", which hardly means a file;
  /// empty for all else.
  static std::string UnknownSchemeOf(const std::string& text);

  /// Returns a message without what may be a password in the location.
  std::string WithoutSecrets(std::string message) const;

  std::string fText;
  std::string fShown;  ///< For messages: without a password.
  bool fIsFile;

 private:
  std::vector<std::string> fSecrets;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_LOCATION_H_
