// SPDX-License-Identifier: Apache-2.0
/// The machine that is described.
#ifndef PLUGINS_LINUX_MACHINE_HOST_H_
#define PLUGINS_LINUX_MACHINE_HOST_H_

#include <string>

#include "host_files.h"
#include "reading.h"

namespace NVORNQDX20 {

/// The machine's files, and the names that more than one class needs.
struct THost {
  /// Throws as THostFiles does.
  explicit THost(const std::string& root);

  THostFiles fFiles;
  TReading fKernelName;     ///< "Linux"
  TReading fKernelRelease;  ///< "6.1.0-18-amd64"
  TReading fName;           ///< The host name.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_HOST_H_
