// SPDX-License-Identifier: Apache-2.0
/// Reading directories.
#ifndef SRC_OS_LINUX_DIRECTORY_H_
#define SRC_OS_LINUX_DIRECTORY_H_

#include <memory>
#include <optional>
#include <string>

#include <dirent.h>

namespace NVORNQDX20 {

struct TCloseDir {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
using TDir = std::unique_ptr<DIR, TCloseDir>;

/// Opens the directory, close-on-exec. Throws kQDXStatusFileSystemError if it cannot be opened.
TDir OpenDir(const std::string& path);

/// Returns the name of the next entry in the order of readdir, or nothing at the end. Throws
/// kQDXStatusFileSystemError if reading fails: a partial list must not look complete.
std::optional<std::string> NextEntry(const TDir& directory);

/// Whether an entry is "." or "..".
bool IsSelfOrParent(const std::string& name);

}  // namespace NVORNQDX20

#endif  // SRC_OS_LINUX_DIRECTORY_H_
