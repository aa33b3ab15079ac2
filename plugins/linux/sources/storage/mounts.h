// SPDX-License-Identifier: Apache-2.0
/// The mounts of a machine, and the lines of its fstab.
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_MOUNTS_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_MOUNTS_H_

#include <map>
#include <string>
#include <vector>

#include "sources/host.h"
#include "sources/mount_table.h"

namespace NVORNQDX20 {

/// Tables of mounts can have long lines, and 10,000 of them.
inline constexpr std::size_t kMaxMountTableSize = 16U << 20U;

/// What is mounted: by the table of this process, or of the first one if this process only has
/// other mounts of the same machine, as a service with a protected file system has; or in a copied
/// tree that of the process that was recorded, else of process 1, else /proc/mounts, else
/// /etc/mtab. Without all these it is what /etc/fstab configures. Empty copies are passed over.
struct TMounts {
  explicit TMounts(const THost& host);

  std::map<std::string, TMount> fAll;  ///< By the printable form of the path.
  TReason fReason;                     ///< Why there are none.
  bool fIsConfigured = false;          ///< From fstab: not known to be mounted.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_MOUNTS_H_
