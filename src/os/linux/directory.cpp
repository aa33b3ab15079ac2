// SPDX-License-Identifier: Apache-2.0
#include "directory.h"

#include <qdxcore/status.h>

#include <cerrno>

namespace NVORNQDX20 {

TDir OpenDir(const std::string& path) {
  TDir directory(::opendir(path.c_str()));
  if (!directory) throw TQDXException(kQDXStatusFileSystemError);
  return directory;
}

std::optional<std::string> NextEntry(const TDir& directory) {
  errno = 0;
  const dirent* const entry = ::readdir(directory.get());
  if (entry != nullptr) return entry->d_name;
  if (errno != 0) throw TQDXException(kQDXStatusFileSystemError);
  return std::nullopt;
}

bool IsSelfOrParent(const std::string& name) { return name == "." || name == ".."; }

}  // namespace NVORNQDX20
