// SPDX-License-Identifier: Apache-2.0
#include "rooted_path.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <filesystem>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace NVORNQDX20::NDescribe {
namespace {

/// openat2 fails with EAGAIN if anything was renamed or mounted while it resolved a "..".
constexpr int kMaxAttempts = 32;

TDescriptor OpenByKernel(int root, const std::string& path, int flags) {
  open_how how{};
  how.flags = static_cast<decltype(how.flags)>(flags);
  how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
  for (int attempt = 1;; ++attempt) {
    TDescriptor file(
        static_cast<int>(::syscall(SYS_openat2, root, path.c_str(), &how, sizeof how)));
    if (file.GetError() != EAGAIN || attempt == kMaxAttempts) return file;
  }
}

/// Finds a file as openat2 does, for kernels and sandboxes without that call: one component at a
/// time, and no link nor ".." leads out of the root.
class TWalk {
 public:
  TWalk(int root, const std::string& path) {
    fFolders.emplace_back(::openat(root, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    Push(path);
  }

  TDescriptor Open(int flags) {
    while (fError == 0 && fFolders.back().IsOpen() && !fRest.empty()) {
      const std::string name = std::move(fRest.back());
      fRest.pop_back();
      if (name == "..") {
        if (fFolders.size() > 1) fFolders.pop_back();
      } else if (name != "." && !Enter(name, flags)) {
        return TDescriptor(::openat(fFolders.back().Get(), name.c_str(), flags | O_NOFOLLOW));
      }
    }
    if (fError == 0 && fFolders.back().IsOpen()) {
      return TDescriptor(::openat(fFolders.back().Get(), ".", flags));
    }
    errno = fError != 0 ? fError : fFolders.back().GetError();
    return TDescriptor(-1);
  }

 private:
  /// Puts the components of a path in front of the rest.
  void Push(const std::string& path) {
    if (path.front() == '/') fFolders.erase(fFolders.begin() + 1, fFolders.end());
    const auto end = static_cast<std::ptrdiff_t>(fRest.size());
    for (const auto& component : std::filesystem::path(path).relative_path()) {
      // An empty one ends a path that names a folder.
      fRest.insert(fRest.begin() + end, component.empty() ? "." : component.string());
    }
  }

  /// Returns false for the last component if it is no link to follow.
  bool Enter(const std::string& name, int flags) {
    TDescriptor file(
        ::openat(fFolders.back().Get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0) {
      fError = file.IsOpen() ? errno : file.GetError();
    } else if (S_ISLNK(status.st_mode) && (!fRest.empty() || (flags & O_NOFOLLOW) == 0)) {
      Follow(file.Get());
    } else if (fRest.empty()) {
      return false;
    } else if (!S_ISDIR(status.st_mode)) {
      fError = ENOTDIR;
    } else {
      fFolders.push_back(std::move(file));
    }
    return true;
  }

  void Follow(int link) {
    constexpr int kMaxLinks = 40;
    const std::string target = TargetOf(link);
    if (target.empty()) {
      fError = errno;
    } else if (++fLinks > kMaxLinks) {
      fError = ELOOP;
    } else {
      Push(target);
    }
  }

  std::vector<TDescriptor> fFolders;  // from the root to the current one
  std::vector<std::string> fRest;     // the next component is the last one
  int fLinks = 0;
  int fError = 0;
};

}  // namespace

TDescriptor OpenInRoot(int root, const std::string& path, int flags) {
  TDescriptor file = OpenByKernel(root, path, flags);
  // Older sandboxes return EPERM for an unknown system call.
  if (file.GetError() != ENOSYS && file.GetError() != EPERM) return file;
  return TWalk(root, path).Open(flags);
}

std::string TargetOf(int folder, const char* name) {
  std::array<char, PATH_MAX> target;
  const ssize_t size = ::readlinkat(folder, name, target.data(), target.size());
  if (size <= 0) return {};
  return std::string(target.data(), static_cast<std::size_t>(size));
}

std::string TargetOf(int link) {
  std::string target = TargetOf(link, "");
  // readlinkat says that there is no such file if the descriptor is of something else.
  if (target.empty() && errno == ENOENT) errno = EINVAL;
  return target;
}

}  // namespace NVORNQDX20::NDescribe
