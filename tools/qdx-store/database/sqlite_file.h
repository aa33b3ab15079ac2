// SPDX-License-Identifier: Apache-2.0
/// The file of a store, and how SQLite has to open it.
#ifndef TOOLS_QDX_STORE_DATABASE_SQLITE_FILE_H_
#define TOOLS_QDX_STORE_DATABASE_SQLITE_FILE_H_

#include <sys/stat.h>

#include <string>

namespace NVORNQDX20::NStore {

/// SQLite makes two files beside a store, its log and an index of that, also to read it. Where this
/// process cannot make them, or can but the owner of the store could not write them afterwards, the
/// store is read as a file that does not change. HasChanged() finds out whether it did.
class TSQLiteFile {
 public:
  /// Throws a TDatabaseError if there is no such file, or none that can be read: SQLite would
  /// create it, does not say why it cannot be opened, and finds fault with a folder only at the
  /// first statement.
  explicit TSQLiteFile(const std::string& file);

  /// Returns the parameters for SOCI.
  const std::string& GetParameters() const { return fParameters; }

  /// Returns whether a file that is read as one that does not change has changed since.
  bool HasChanged() const;

  /// Returns whether the file is no longer there, or another one is.
  bool IsReplaced() const;

 private:
  std::string fFile;
  std::string fParameters;
  struct stat fOpened {};
  bool fIsLocked = false;  // SQLite locks it
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_SQLITE_FILE_H_
