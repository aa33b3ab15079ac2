// SPDX-License-Identifier: Apache-2.0
/// Parses mount tables (fstab(5), proc_pid_mounts(5), proc_pid_mountinfo(5)).
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
  std::string fOptions;  ///< As in the table, without blanks.
  /// Only in a table of mountinfo: the number of the device, as in "8:1".
  std::string fNumber;
  /// Only in a table of mountinfo: the folder of the file system that is mounted, "/" for all.
  std::string fFolder;
  bool fIsHidden = false;  ///< From this process, which has another mount in its place, or none.
};

/// Returns the mounts by the printable form of their paths; the last one if several have the same
/// path. Without the kernel's own file systems such as /proc.
std::map<std::string, TMount> ParseMounts(std::string_view table);
/// The same for a table of mountinfo.
std::map<std::string, TMount> ParseMountInfo(std::string_view table);

/// Returns whether the files of this type of file system are on a server.
bool IsRemoteType(const std::string& type);

/// Decodes blanks, tabs, line ends and backslashes, written as a backslash and three octal digits.
std::string UnescapeMount(std::string_view word);

/// Returns whether the comma-separated options have this one.
bool HasMountOption(std::string_view options, std::string_view option);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_MOUNT_TABLE_H_
