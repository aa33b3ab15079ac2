// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/files.h>

#include <qdxcore/logger.h>
#include <qdxdescribe/text.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "kept_files.h"
#include "rooted_path.h"

namespace NVORNQDX20::NDescribe {
namespace {

bool MeansAbsent(int error) { return error == ENOENT || error == ENOTDIR; }

/// Returns whether a folder that was opened with O_NOFOLLOW can be a link to one.
bool MayBeLink(const TDescriptor& folder) {
  return folder.GetError() == ELOOP || folder.GetError() == ENOTDIR;
}

TDescriptor NotOpened(int error) {
  errno = error;
  return TDescriptor(-1);
}

/// Returns whether it is a name in a folder, or the folder itself, and not its parent.
bool IsEntry(std::string_view name) { return !name.empty() && name != ".."; }

TReason ReasonOf(int error) {
  return {ErrorText(error), MeansAbsent(error) ? TReason::kAbsence : TReason::kError};
}

/// What is known of the size of a file before it is read.
struct TSize {
  std::size_t fExpected = 0;  ///< By stat(): most files of the kernel have another one.
  bool fIsCertain = false;
};

/// Stops after the maximum size, so that the caller notices a file that is too long.
TReading<std::string> ReadToEnd(int file, TSize size, std::size_t maxSize) {
  std::array<char, 16384> buffer;  // not initialised: most files have some bytes
  std::string text;
  if (size.fExpected > buffer.size()) text.reserve(std::min(size.fExpected, maxSize + 1));
  while (text.size() <= maxSize) {
    // No more, since some registers that a file of the kernel shows are slow to read.
    const std::size_t wanted = std::min(buffer.size() - 1, maxSize - text.size()) + 1;
    const ssize_t count = ::read(file, buffer.data(), wanted);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Missing(ReasonOf(errno));
    if (count == 0) break;
    text.append(buffer.data(), static_cast<std::size_t>(count));
    const bool isShort = static_cast<std::size_t>(count) < wanted;
    if (size.fIsCertain && isShort && text.size() == size.fExpected) break;
  }
  return text;
}

/// Returns why the contents cannot be read; empty for a regular file, whose size is then known.
TReason ObstacleTo(const TDescriptor& file, TSize& size) {
  struct stat status {};
  if (!file.IsOpen()) return ReasonOf(file.GetError());
  if (::fstat(file.Get(), &status) != 0) return ReasonOf(errno);
  size.fExpected = static_cast<std::size_t>(status.st_size);
  if (S_ISREG(status.st_mode)) return {};
  return {"not a regular file", TReason::kError};
}

[[noreturn]] void FailToOpenRoot(const std::string& root, int error) {
  LogErrorAndThrow(error == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileNotFound,
                   {"root folder ", root, ": ", ErrorText(error)});
}

TDescriptor OpenRoot(const std::string& root) {
  TDescriptor folder(::open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.IsOpen()) FailToOpenRoot(root, folder.GetError());
  return folder;
}

bool IsRootOfMachine(const TDescriptor& folder, const std::string& name) {
  struct stat given {};
  struct stat root {};
  if (::fstat(folder.Get(), &given) != 0 || ::stat("/", &root) != 0) FailToOpenRoot(name, errno);
  return given.st_dev == root.st_dev && given.st_ino == root.st_ino;
}

}  // namespace

class TFiles::TRoot {
 public:
  explicit TRoot(const std::string& root)
      : fFolder(OpenRoot(root)), fIsThisMachine(IsRootOfMachine(fFolder, root)) {}

  bool IsThisMachine() const { return fIsThisMachine; }

  TKeptFiles& GetKeptFiles() const { return fKept; }

  TDescriptor Open(const std::string& path, int flags) const {
    flags |= O_CLOEXEC;
    return fIsThisMachine ? TDescriptor(::open(path.c_str(), flags))
                          : OpenInRoot(fFolder.Get(), path, flags);
  }

  /// Opens a folder to list it.
  TDescriptor OpenFolder(const std::string& path) const {
    const int flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK;
    const TFolder* const known = fIsThisMachine ? nullptr : FindFolder(path + '/');
    if (known != nullptr && known->fError == 0) {
      TDescriptor folder(::openat(known->fDescriptor.Get(), ".", flags | O_CLOEXEC));
      // Unlike its name in its parent, its "." is not found without the right to search it.
      if (folder.GetError() != EACCES) return folder;
    }
    const TPlace place = FindPlace(path);
    if (place.fFolder >= 0) {
      TDescriptor folder(::openat(place.fFolder, place.fName, flags | O_NOFOLLOW | O_CLOEXEC));
      if (!MayBeLink(folder)) return folder;
    }
    return place.fError != 0 ? NotOpened(place.fError) : Open(path, flags);
  }

  /// Returns 0 if the path names something, else the errno.
  int Probe(const std::string& path) const {
    if (fIsThisMachine) {
      // Unlike stat() it asks no server for what only has to be there.
      return ::faccessat(AT_FDCWD, path.c_str(), F_OK, AT_EACCESS) == 0 ? 0 : errno;
    }
    struct stat status {};
    const TPlace place = FindPlace(path);
    if (place.fError != 0) return place.fError;
    if (place.fFolder >= 0) {
      if (::fstatat(place.fFolder, place.fName, &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
      if (!S_ISLNK(status.st_mode)) return 0;
      // Most links of sysfs lead to a folder, and what is in there is asked for next.
      const TFolder* const target = FolderAt(path + '/', EKind::kLink);
      if (target != nullptr && target->fError != ENOTDIR) return target->fError;
    }
    return Open(path, O_PATH).GetError();
  }

  /// Returns the target of a symbolic link; empty, with errno set, on failure.
  std::string ReadLink(const std::string& path) const {
    if (fIsThisMachine) return TargetOf(AT_FDCWD, path.c_str());
    const TPlace place = FindPlace(path);
    if (place.fFolder >= 0) return TargetOf(place.fFolder, place.fName);
    errno = place.fError;
    if (place.fError != 0) return {};
    const TDescriptor link = Open(path, O_PATH | O_NOFOLLOW);
    errno = link.GetError();
    return link.IsOpen() ? TargetOf(link.Get()) : std::string();
  }

  /// Sets the obstacle to what stands in the way of reading, or to an empty text. To open a device
  /// can start it, so the type of a file in an image is looked at first. What took its place since
  /// then is found by its size.
  TDescriptor OpenToRead(const std::string& path, TReason& obstacle, TSize& size) const {
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY;
    const TPlace place = FindPlace(path);
    if (place.fError != 0) {
      obstacle = ReasonOf(place.fError);
      return {};
    }
    if (place.fFolder >= 0) {
      struct stat status {};
      if (::fstatat(place.fFolder, place.fName, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        obstacle = ReasonOf(errno);
        return {};
      }
      if (S_ISREG(status.st_mode)) {
        TDescriptor file(::openat(place.fFolder, place.fName, flags | O_NOFOLLOW | O_CLOEXEC));
        if (!file.IsOpen()) obstacle = ReasonOf(file.GetError());
        size = {static_cast<std::size_t>(status.st_size), true};
        return file;
      }
    }
    TDescriptor file = Open(path, fIsThisMachine ? flags : O_PATH);
    obstacle = ObstacleTo(file, size);
    if (fIsThisMachine || !obstacle.empty()) return file;
    const std::string self = "/proc/self/fd/" + std::to_string(file.Get());
    file = TDescriptor(::open(self.c_str(), flags | O_CLOEXEC));
    // Where /proc is not mounted, the path is opened again.
    if (file.GetError() == ENOENT) file = Open(path, flags);
    obstacle = ObstacleTo(file, size);
    return file;
  }

 private:
  enum class EKind { kFolder, kLink };

  /// A folder, or the errno by which there is none.
  struct TFolder {
    std::string fPath;  // ends in a slash
    TDescriptor fDescriptor;
    int fError = 0;
    std::size_t fLastUse = 0;
  };
  /// A name in a folder. If there is no such folder, the errno; if neither is set, the whole path
  /// is to be resolved.
  struct TPlace {
    int fFolder = -1;
    const char* fName = nullptr;
    int fError = 0;
  };

  /// Most files are read beside others: in an image, to resolve the path of each below the root
  /// takes most of the time. The path must live as long as the result.
  TPlace FindPlace(const std::string& path) const {
    const std::size_t slash = path.rfind('/');
    if (fIsThisMachine || slash == path.npos) return {};
    const char* const name = path.c_str() + slash + 1;
    if (!IsEntry(name)) return {};
    const std::string_view folderPath(path.data(), slash + 1);
    const TFolder* const folder = FolderAt(folderPath, EKind::kFolder);
    if (folder == nullptr) return {};
    return {folder->fDescriptor.Get(), name, folder->fError};
  }

  /// The path ends in a slash; the kind is the likely one. Returns null if the folder is there, or
  /// may be there, and cannot be opened. Valid until the next Remember().
  const TFolder* FolderAt(std::string_view path, EKind kind) const {
    if (const TFolder* const found = FindFolder(path)) return found;
    TDescriptor opened =
        kind == EKind::kLink ? Open(std::string(path), O_PATH | O_DIRECTORY) : OpenToSearch(path);
    const int error = opened.GetError();
    if (error != 0 && !MeansAbsent(error)) return nullptr;
    return Remember({std::string(path), std::move(opened), error, ++fUses});
  }

  /// Returns null for a folder in which nothing was looked for lately. Valid until the next
  /// Remember().
  const TFolder* FindFolder(std::string_view path) const {
    const auto found = std::find_if(fFolders.begin(), fFolders.end(),
                                    [path](const TFolder& each) { return each.fPath == path; });
    if (found == fFolders.end()) return nullptr;
    found->fLastUse = ++fUses;
    return &*found;
  }

  /// Replaces the folder that was not used for the longest time.
  const TFolder* Remember(TFolder folder) const {
    const auto oldest = std::min_element(
        fFolders.begin(), fFolders.end(),
        [](const TFolder& one, const TFolder& other) { return one.fLastUse < other.fLastUse; });
    *oldest = std::move(folder);
    return &*oldest;
  }

  /// Opens a folder whose path ends in a slash, in its parent if that is known.
  TDescriptor OpenToSearch(std::string_view path) const {
    const std::string_view bare = path.substr(0, path.size() - 1);
    const std::size_t slash = bare.rfind('/');
    const TFolder* const parent =
        slash == bare.npos ? nullptr : FindFolder(bare.substr(0, slash + 1));
    if (parent != nullptr && parent->fError != 0) return NotOpened(parent->fError);
    const int flags = O_PATH | O_DIRECTORY;
    if (parent != nullptr && IsEntry(bare.substr(slash + 1))) {
      const std::string name(bare.substr(slash + 1));
      TDescriptor folder(
          ::openat(parent->fDescriptor.Get(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC));
      if (!MayBeLink(folder)) return folder;
    }
    return Open(std::string(path), flags);
  }

  TDescriptor fFolder;
  bool fIsThisMachine;
  mutable TKeptFiles fKept;
  mutable std::array<TFolder, 16> fFolders;  // the last ones in which files were looked for
  mutable std::size_t fUses = 0;
};

TFiles::TFiles(const TRequest& request) : fRoot(std::make_shared<TRoot>(request.fRoot)) {}

/// Reads some bytes more than the maximum size if the file has more.
TReading<std::string> TFiles::ReadBytes(const std::string& path, std::size_t maxSize) const {
  const std::string fullPath = PathOf(path);
  const auto kept = fRoot->GetKeptFiles().Find(fullPath);
  if (kept && kept->size() <= maxSize) return std::string(*kept);
  TReason obstacle;
  TSize size;
  const TDescriptor file = fRoot->OpenToRead(fullPath, obstacle, size);
  if (!obstacle.empty()) return MissingFrom(path, obstacle);
  TReading<std::string> reading = ReadToEnd(file.Get(), size, maxSize);
  const bool isAsExpected = reading && reading->size() == size.fExpected;
  if (size.fIsCertain && !isAsExpected) obstacle = ObstacleTo(file, size);
  if (!obstacle.empty()) return MissingFrom(path, obstacle);
  if (!reading) return MissingFrom(path, reading.GetReason());
  if (!kept && reading->size() <= maxSize) fRoot->GetKeptFiles().Keep(fullPath, *reading);
  return reading;
}

TReading<std::string> TFiles::ReadStart(const std::string& path, std::size_t size) const {
  return ReadBytes(path, size).map([size](const std::string& text) {
    return text.substr(0, size);
  });
}

TReading<std::string> TFiles::Read(const std::string& path, std::size_t maxSize) const {
  TReading<std::string> reading = ReadBytes(path, maxSize);
  if (reading && reading->size() > maxSize) {
    const std::string limit = std::to_string(maxSize >> 10U) + " KiB";
    return MissingFrom(path, {"more than " + limit, TReason::kError});
  }
  return reading;
}

TReading<std::string> TFiles::ReadLine(const std::string& path) const {
  TReading<std::string> file = Read(path);
  if (!file) return file;
  std::string line = PrintableText(file->substr(0, file->find('\n')));
  if (line.empty()) return MissingFrom(path, "empty");
  return line;
}

TReading<bool> TFiles::ReadFlag(const std::string& path) const {
  return ReadNumber(path).and_then([&](std::uint64_t number) -> TReading<bool> {
    if (number > 1) return MissingFrom(path, {"neither 0 nor 1", TReason::kError});
    return number == 1;
  });
}

TReading<std::string> TFiles::ReadLink(const std::string& path) const {
  std::string target = fRoot->ReadLink(PathOf(path));
  if (!target.empty()) return target;
  // No error: a copy of a tree may have what a link led to in its place.
  if (errno == EINVAL) return MissingFrom(path, "not a symbolic link");
  return MissingFrom(path, ReasonOf(errno));
}

TReading<std::vector<std::string>> TFiles::List(const std::string& path) const {
  TDescriptor folder = fRoot->OpenFolder(PathOf(path));
  if (!folder.IsOpen()) return MissingFrom(path, ReasonOf(folder.GetError()));
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(folder.Get()), ::closedir);
  if (!entries) return MissingFrom(path, ReasonOf(errno));
  (void)folder.Release();  // owned by the DIR from here on
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = ::readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  if (errno != 0) return MissingFrom(path, ReasonOf(errno));
  std::sort(names.begin(), names.end());
  return names;
}

bool TFiles::IsAbsent(const std::string& path) const {
  return MeansAbsent(fRoot->Probe(PathOf(path)));
}

TReading<bool> TFiles::Exists(const std::string& path) const {
  const int error = fRoot->Probe(PathOf(path));
  if (error != 0 && !MeansAbsent(error)) return MissingFrom(path, ReasonOf(error));
  return error == 0;
}

TReading<std::string> TFiles::FirstOf(std::initializer_list<const char*> paths) const {
  if (paths.size() == 0) return Missing("no path was given");
  for (const char* path : paths) {
    const int error = fRoot->Probe(PathOf(path));
    if (error == 0) return std::string(path);
    if (!MeansAbsent(error)) return MissingFrom(path, ReasonOf(error));
  }
  return std::string(*std::prev(paths.end()));
}

TFiles TFiles::In(const std::string& folder) const {
  TFiles files = *this;
  files.fFolder = PathOf(folder);
  files.fFolder.erase(files.fFolder.find_last_not_of('/') + 1);
  return files;
}

std::string TFiles::PathOf(const std::string& path) const {
  if (path.empty()) return fFolder.empty() ? "/" : fFolder;
  if (path.front() == '/') return path;
  std::string full;  // made once: each file has one
  full.reserve(fFolder.size() + 1 + path.size());
  full.append(fFolder).append(1, '/').append(path);
  return full;
}

TMissing TFiles::MissingFrom(const std::string& path, const TReason& reason) const {
  return Missing(PathOf(path) + ": " + reason);
}

bool TFiles::IsThisMachine() const { return fRoot->IsThisMachine(); }

}  // namespace NVORNQDX20::NDescribe
