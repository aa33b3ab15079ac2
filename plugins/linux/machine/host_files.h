// SPDX-License-Identifier: Apache-2.0
/// Reads files of the described machine; nothing else does.
#ifndef PLUGINS_LINUX_MACHINE_HOST_FILES_H_
#define PLUGINS_LINUX_MACHINE_HOST_FILES_H_

#include <qdxsystem/descriptor.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "reading.h"

namespace NVORNQDX20 {

/// The space of a file system; sizes in bytes.
struct TSpace {
  std::uint64_t fSize;
  std::uint64_t fAvailable;  ///< To users other than root.
  std::uint64_t fInodes;
  std::uint64_t fFreeInodes;
};

/// The files below a root folder: "/" for this machine, or a tree of files of another one.
///
/// Paths are absolute below the root, for example "/etc/os-release". No call blocks: only regular
/// files up to a maximum size are read. Symbolic links never lead out of a root other than "/".
/// The reason of a failure names the file: "/etc/os-release: No such file or directory".
class THostFiles {
 public:
  static constexpr std::size_t kMaxFileSize = 64U << 10U;
  /// For tables that grow with the machine; enough for some thousand processors.
  static constexpr std::size_t kMaxTableSize = 4U << 20U;

  /// Logs and throws kQDXStatusAccessDenied without permission, and kQDXStatusFileNotFound if the
  /// folder cannot be opened for another reason.
  explicit THostFiles(const std::string& root);

  /// Returns whether the root is that of the running machine, so that system calls describe it,
  /// too.
  bool IsThisMachine() const { return fIsThisMachine; }

  /// Returns the whole contents unchanged.
  TText Read(const std::string& path, std::size_t maxSize = kMaxFileSize) const;
  /// Returns the printable part of the first line; an empty line counts as missing.
  TText ReadLine(const std::string& path) const;
  /// Returns the contents of the first of several files that exists. A file that exists and cannot
  /// be read is not replaced by the next.
  TText ReadFirst(std::initializer_list<const char*> paths,
                  std::size_t maxSize = kMaxFileSize) const;
  /// Returns whether nothing has this path. False also if that cannot be found out, for example
  /// because a parent folder may not be searched.
  bool IsAbsent(const std::string& path) const;
  /// Returns the sorted names in a folder, without those that begin with a dot.
  TReading<std::vector<std::string>> List(const std::string& path) const;

  /// Returns the space of the file system that is mounted there on this machine. This call can
  /// block on a network file system: callers must check TMount::fCanBeAsked first.
  TReading<TSpace> ReadSpace(const std::string& path) const;

 private:
  TDescriptor Open(const std::string& path, int flags) const;
  TDescriptor OpenToRead(const std::string& path) const;

  TDescriptor fRoot;
  bool fIsThisMachine;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_HOST_FILES_H_
