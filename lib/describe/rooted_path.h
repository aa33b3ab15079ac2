// SPDX-License-Identifier: Apache-2.0
/// Resolves paths below a root folder, out of which no link leads.
#ifndef LIB_DESCRIBE_ROOTED_PATH_H_
#define LIB_DESCRIBE_ROOTED_PATH_H_

#include <qdxsystem/descriptor.h>

#include <string>

namespace NVORNQDX20::NDescribe {

/// Opens a file as if the folder `root` were "/". The flags are those of open().
TDescriptor OpenInRoot(int root, const std::string& path, int flags);

/// Returns what the symbolic link contains; empty, with errno set, on failure: EINVAL if it is
/// none.
std::string TargetOf(int folder, const char* name);
/// The same for a link that is open.
std::string TargetOf(int link);

}  // namespace NVORNQDX20::NDescribe

#endif  // LIB_DESCRIBE_ROOTED_PATH_H_
