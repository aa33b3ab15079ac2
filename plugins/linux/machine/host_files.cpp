// SPDX-License-Identifier: Apache-2.0
#include "host_files.h"

#include <qdxcore/logger.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <array>
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

/// Stops after the maximum size, so that the caller notices a file that is too long.
TText ReadToEnd(int file, const std::string& path, std::size_t maxSize) {
  std::array<char, 16384> buffer;  // not initialised: most files have some bytes
  std::string text;
  while (text.size() <= maxSize) {
    const ssize_t count = ::read(file, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return MissingFile(path, ErrorText(errno));
    if (count == 0) break;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
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

/// To open a device can start it, so the type of a file in an image is looked at first.
TDescriptor THostFiles::OpenToRead(const std::string& path) const {
  const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY;
  if (fIsThisMachine) return Open(path, flags);
  TDescriptor place = Open(path, O_PATH);
  if (!place.IsOpen() || !IsRegularFile(place.Get())) return place;
  const std::string self = "/proc/self/fd/" + std::to_string(place.Get());
  TDescriptor file(::open(self.c_str(), flags | O_CLOEXEC));
  // Where /proc is not mounted, the path is opened again.
  return file.GetError() == ENOENT ? Open(path, flags) : std::move(file);
}

TText THostFiles::Read(const std::string& path, std::size_t maxSize) const {
  const TDescriptor file = OpenToRead(path);
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

TText THostFiles::ReadFirst(std::initializer_list<const char*> paths, std::size_t maxSize) const {
  TText file;
  for (const char* path : paths) {
    file = Read(path, maxSize);
    if (file || !IsAbsent(path)) break;
  }
  return file;
}

bool THostFiles::IsAbsent(const std::string& path) const {
  const int error = Open(path, O_PATH).GetError();
  return error == ENOENT || error == ENOTDIR;
}

TReading<std::vector<std::string>> THostFiles::List(const std::string& path) const {
  TDescriptor folder = Open(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
  if (!folder.IsOpen()) return MissingFile(path, ErrorText(folder.GetError()));
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(folder.Get()), ::closedir);
  if (!entries) return MissingFile(path, ErrorText(errno));
  (void)folder.Release();  // owned by the DIR from here on
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = ::readdir(entries.get())) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  if (errno != 0) return MissingFile(path, ErrorText(errno));
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
