// SPDX-License-Identifier: Apache-2.0
/// Which file systems are mounted where (fstab(5), proc_pid_mounts(5)).
#ifndef PLUGINS_LINUX_MACHINE_MOUNT_TABLE_H_
#define PLUGINS_LINUX_MACHINE_MOUNT_TABLE_H_

#include <map>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

struct TMount {
  std::string fDevice;
  std::string fPath;  ///< As the kernel has it, whether or not it can be printed.
  std::string fType;
  bool fReadOnly;
  /// Asking it for its space cannot wait for a server, a user's program or a daemon: neither it nor
  /// a file system on the way to it depends on one.
  bool fCanBeAsked;
};

/// The mounts of a table by the printable forms of their paths; of several on one path the last.
/// Those that hold no files of anyone, such as /proc, are left out.
std::map<std::string, TMount> ParseMounts(std::string_view table);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_MOUNT_TABLE_H_
