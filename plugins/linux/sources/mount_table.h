// SPDX-License-Identifier: Apache-2.0
/// Parses mount tables (fstab(5), proc_pid_mounts(5)).
#ifndef PLUGINS_LINUX_SOURCES_MOUNT_TABLE_H_
#define PLUGINS_LINUX_SOURCES_MOUNT_TABLE_H_

#include <map>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

struct TMount {
  std::string fDevice;
  std::string fPath;  ///< As the kernel has it, perhaps not printable.
  std::string fType;
  bool fReadOnly;
  /// statfs cannot hang: neither this file system nor one on the path to it depends on a server, a
  /// user's program or a daemon.
  bool fCanBeAsked;
};

/// Returns the mounts by the printable form of their paths; the last one if several have the same
/// path. Without the kernel's own file systems such as /proc.
std::map<std::string, TMount> ParseMounts(std::string_view table);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_MOUNT_TABLE_H_
