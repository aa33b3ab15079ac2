// SPDX-License-Identifier: Apache-2.0
/// Why the dynamic loader failed.
#ifndef SRC_OS_LINUX_LOADER_ERROR_H_
#define SRC_OS_LINUX_LOADER_ERROR_H_

#include <string>

#include <dlfcn.h>

namespace NVORNQDX20 {

/// Returns the text of dlerror(), which clears it.
inline std::string LoaderError() {
  const char* const error = ::dlerror();
  return error != nullptr ? error : "unknown error";
}

}  // namespace NVORNQDX20

#endif  // SRC_OS_LINUX_LOADER_ERROR_H_
