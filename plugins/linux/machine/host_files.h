// SPDX-License-Identifier: Apache-2.0
/// The one place that reads files of the described machine.
#ifndef PLUGINS_LINUX_MACHINE_HOST_FILES_H_
#define PLUGINS_LINUX_MACHINE_HOST_FILES_H_

#include <qdxsystem/descriptor.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reading.h"

namespace NVORNQDX20 {

/// How much a file system holds; sizes in bytes.
struct TSpace {
  std::uint64_t fSize;
  std::uint64_t fAvailable;  ///< To users other than root.
  std::uint64_t fInodes;
  std::uint64_t fFreeInodes;
};

/// The files below a root folder: this machine's, or those of a tree that stands in for a machine.
///
/// Paths are absolute below the root, for example "/etc/os-release". Nothing blocks: only regular
/// files are read, and none above a size. No symbolic link of a stand-in tree leads out of it.
/// Where a file cannot be read, the reason names it: "/etc/os-release: No such file or directory".
class THostFiles {
 public:
  static constexpr std::size_t kMaxFileSize = 64U << 10U;
  /// For the tables that grow with the machine: one of some thousand processors fits.
  static constexpr std::size_t kMaxTableSize = 4U << 20U;

  /// Logs and throws kQDXStatusAccessDenied if permission is missing, and kQDXStatusFileNotFound if
  /// the folder cannot be opened for another cause.
  explicit THostFiles(const std::string& root);

  /// Whether the root is this machine's own, so that the kernel can be asked as well.
  bool IsThisMachine() const { return fIsThisMachine; }

  /// The whole file as it stands.
  TReading Read(const std::string& path, std::size_t maxSize = kMaxFileSize) const;
  /// The printable part of the first line; an empty one counts as missing.
  TReading ReadLine(const std::string& path) const;
  bool IsFolder(const std::string& path) const;
  /// The names in a folder, sorted, without those that begin with a dot; none if it cannot be read.
  std::vector<std::string> List(const std::string& path) const;

  /// Of the file system that is mounted there on this machine. The one call that the caller must
  /// not make where it could wait: on the way to a network's file system, for example.
  TReadingOf<TSpace> ReadSpace(const std::string& path) const;

 private:
  TDescriptor Open(const std::string& path, int flags) const;

  TDescriptor fRoot;
  bool fIsThisMachine;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_HOST_FILES_H_
