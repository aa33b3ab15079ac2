// SPDX-License-Identifier: Apache-2.0
#include "host_files.h"

#include <qdxcore/logger.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "text.h"

namespace NVORNQDX20 {
namespace {

/// openat2 fails with EAGAIN if anything was renamed or mounted while it resolved a "..".
constexpr int kMaxAttempts = 32;

NDescribe::TMissing MissingFile(const std::string& path, const std::string& reason) {
  return Missing(path + ": " + reason);
}

TDescriptor OpenInRoot(int root, const std::string& path, int flags) {
  open_how how{};
  how.flags = static_cast<decltype(how.flags)>(flags);
  how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
  for (int attempt = 1;; ++attempt) {
    TDescriptor file(
        static_cast<int>(::syscall(SYS_openat2, root, path.c_str(), &how, sizeof how)));
    if (file.GetError() != EAGAIN || attempt == kMaxAttempts) return file;
  }
}

/// For kernels and sandboxes without openat2: follows no symbolic links, so none leads out.
TDescriptor OpenWithoutLinks(int root, const std::string& path, int flags) {
  const std::filesystem::path relative = std::filesystem::path(path).relative_path();
  TDescriptor folder(::openat(root, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
  for (const auto& component : relative.parent_path()) {
    folder = TDescriptor(
        ::openat(folder.Get(), component.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.IsOpen()) return folder;
  }
  return TDescriptor(::openat(folder.Get(), relative.filename().c_str(), flags | O_NOFOLLOW));
}

/// Reads at most one byte more than allowed, so that the caller notices a file that is too long.
TText ReadToEnd(int file, const std::string& path, std::size_t maxSize) {
  std::string text(maxSize + 1, '\0');
  std::size_t size = 0;
  while (size < text.size()) {
    const ssize_t count = ::read(file, text.data() + size, text.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return MissingFile(path, ErrorText(errno));
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  text.resize(size);
  return text;
}

bool IsRegularFile(int file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

bool IsRootFolder(int folder) {
  struct stat given {};
  struct stat root {};
  return ::fstat(folder, &given) == 0 && ::stat("/", &root) == 0 && given.st_dev == root.st_dev &&
         given.st_ino == root.st_ino;
}

/// Returns whether a file system is mounted there; true if the kernel is too old to tell.
bool MayBeMountPoint(int file) {
  struct statx status {};
  const int flags = AT_EMPTY_PATH | AT_STATX_DONT_SYNC;
  if (::statx(file, "", flags, 0, &status) != 0) return true;
  return (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) == 0 ||
         (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

TDescriptor OpenRoot(const std::string& root) {
  TDescriptor folder(::open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.IsOpen()) {
    LogErrorAndThrow(folder.GetError() == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileNotFound,
                     {"linux: root folder ", root, ": ", ErrorText(folder.GetError())});
  }
  return folder;
}

}  // namespace

THostFiles::THostFiles(const std::string& root)
    : fRoot(OpenRoot(root)), fIsThisMachine(IsRootFolder(fRoot.Get())) {}

TDescriptor THostFiles::Open(const std::string& path, int flags) const {
  flags |= O_CLOEXEC;
  if (fIsThisMachine) return TDescriptor(::open(path.c_str(), flags));
  TDescriptor file = OpenInRoot(fRoot.Get(), path, flags);
  // Older sandboxes return EPERM for an unknown system call.
  if (file.GetError() != ENOSYS && file.GetError() != EPERM) return file;
  return OpenWithoutLinks(fRoot.Get(), path, flags);
}

TText THostFiles::Read(const std::string& path, std::size_t maxSize) const {
  const TDescriptor file = Open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file.IsOpen()) return MissingFile(path, ErrorText(file.GetError()));
  if (!IsRegularFile(file.Get())) return MissingFile(path, "not a regular file");
  TText reading = ReadToEnd(file.Get(), path, maxSize);
  if (reading && reading->size() > maxSize) {
    return MissingFile(path, "more than " + std::to_string(maxSize >> 10U) + " KiB");
  }
  return reading;
}

TText THostFiles::ReadLine(const std::string& path) const {
  TText file = Read(path);
  if (!file) return file;
  std::string line = PrintableText(file->substr(0, file->find('\n')));
  if (line.empty()) return MissingFile(path, "empty");
  return line;
}

bool THostFiles::IsFolder(const std::string& path) const {
  return Open(path, O_PATH | O_DIRECTORY).IsOpen();
}

std::vector<std::string> THostFiles::List(const std::string& path) const {
  TDescriptor folder = Open(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
  if (!folder.IsOpen()) return {};
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(folder.Get()), ::closedir);
  if (!entries) return {};
  (void)folder.Release();  // owned by the DIR from here on
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(entries.get())) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

TReading<TSpace> THostFiles::ReadSpace(const std::string& path) const {
  if (!fIsThisMachine) return Missing("not asked: not mounted on this machine");
  const TDescriptor place = Open(path, O_PATH);
  if (!place.IsOpen()) return MissingFile(path, ErrorText(place.GetError()));
  if (!MayBeMountPoint(place.Get())) return Missing("hidden below another mount");
  struct statvfs status {};
  if (::fstatvfs(place.Get(), &status) != 0) {
    return MissingFile(path, ErrorText(errno));
  }
  return TSpace{status.f_blocks * status.f_frsize, status.f_bavail * status.f_frsize,
                status.f_files, status.f_ffree};
}

}  // namespace NVORNQDX20
