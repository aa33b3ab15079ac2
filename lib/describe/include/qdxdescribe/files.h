// SPDX-License-Identifier: Apache-2.0
/// Reads files of the described machine.
///
///   const TFiles files(request);
///   const TReading<std::string> kernel = files.ReadLine("/proc/sys/kernel/osrelease");
///   const TFiles disk = files.In("/sys/block/sda");
///   const TReading<std::uint64_t> sectors = disk.ReadNumber("size");
#ifndef QDXDESCRIBE_FILES_H_
#define QDXDESCRIBE_FILES_H_

#include <qdxdescribe/numbers.h>
#include <qdxdescribe/reading.h>
#include <qdxdescribe/request.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// The files below a root folder: "/" for this machine, or a tree of files of another one.
///
/// A path is absolute below the root, for example "/etc/os-release", or relative to the folder of
/// this object, which is the root itself at first. No call blocks: only regular files up to a
/// maximum size are read. Symbolic links never lead out of a root other than "/". The reason of a
/// failure names the file below the root: "/etc/os-release: No such file or directory".
///
/// Copies are cheap and share the root. A file of up to 64 bytes is read once: later calls return
/// the same contents, so that the classes of one description agree.
class TFiles {
 public:
  static constexpr std::size_t kMaxFileSize = 64U << 10U;
  /// For tables that grow with the machine; enough for some thousand processors.
  static constexpr std::size_t kMaxTableSize = 4U << 20U;

  /// Logs and throws kQDXStatusAccessDenied without permission, and kQDXStatusFileNotFound if the
  /// root cannot be opened for another reason.
  explicit TFiles(const TRequest& request);

  /// Returns the whole contents unchanged.
  TReading<std::string> Read(const std::string& path, std::size_t maxSize = kMaxFileSize) const;
  /// Returns the first bytes, or all of a file that has fewer.
  TReading<std::string> ReadStart(const std::string& path, std::size_t size) const;
  /// Returns the printable part of the first line; an empty line counts as missing.
  TReading<std::string> ReadLine(const std::string& path) const;
  /// Reads the first line, which must be a number as in ToNumber().
  template <typename T = std::uint64_t>
  TReading<T> ReadNumber(const std::string& path) const {
    return ToNumber<T>(ReadLine(path), PathOf(path));
  }
  /// Reads the first line, which must be "1" or "0".
  TReading<bool> ReadFlag(const std::string& path) const;
  /// Returns what a symbolic link contains, unchanged; the reason for another file is "not a
  /// symbolic link".
  TReading<std::string> ReadLink(const std::string& path) const;
  /// Returns the sorted names in a folder, without "." and "..". Others can begin with a dot, too,
  /// for example that of a network interface.
  TReading<std::vector<std::string>> List(const std::string& path = {}) const;

  /// Returns whether nothing has this path. False also if that cannot be found out, for example
  /// because a parent folder may not be searched.
  bool IsAbsent(const std::string& path) const;
  /// Returns whether something has this path. Missing if that cannot be found out: for facts that
  /// follow from the presence of a file.
  TReading<bool> Exists(const std::string& path) const;
  /// Returns the first path that is not absent, else the last. Missing if that cannot be found out,
  /// so a file that exists and cannot be read is not replaced by the next.
  TReading<std::string> FirstOf(std::initializer_list<const char*> paths) const;

  /// Returns the files with another folder for relative paths.
  TFiles In(const std::string& folder) const;
  /// Returns the absolute path below the root.
  std::string PathOf(const std::string& path) const;
  /// Returns a reason that names the file: "/sys/block/sda/size: " and `reason`.
  TMissing MissingFrom(const std::string& path, const TReason& reason) const;

  /// Returns whether the root is that of the running machine, so that system calls describe it,
  /// too.
  bool IsThisMachine() const;

 private:
  class TRoot;

  TReading<std::string> ReadBytes(const std::string& path, std::size_t maxSize) const;

  std::shared_ptr<const TRoot> fRoot;
  std::string fFolder;  // empty for the root itself
};

// Readers of rows, by the path of the file. The source is derived from TFiles.
inline auto FileLine(const char* path) {
  return [path](const TFiles& files) { return files.ReadLine(path); };
}
template <typename T = std::uint64_t>
auto FileNumber(const char* path) {
  return [path](const TFiles& files) { return files.ReadNumber<T>(path); };
}
inline auto FileFlag(const char* path) {
  return [path](const TFiles& files) { return files.ReadFlag(path); };
}

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_FILES_H_
