// SPDX-License-Identifier: Apache-2.0
#include "new_file.h"

#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"

namespace NVORNQDX20 {
namespace {

/// The path that the signal handler removes. Before the file is created and after it is renamed, no
/// such file exists.
char gPath[PATH_MAX];

extern "C" void RemoveAndEnd(int signal) {
  ::unlink(gPath);
  ::raise(signal);  // again, now with the default action
}

/// An ignored signal, as under nohup, stays ignored.
void RemoveOnSignals() {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU}) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = RemoveAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
  }
}

[[noreturn]] void FailToWrite(const std::string& shownAs, const std::string& why) {
  throw TCommandFailure(kExitBadInput, "writing " + shownAs, {kQDXStatusFileSystemError, why});
}

std::string WhyNotCreated(int error) {
  if (error == ENOENT) return "its folder does not exist";
  if (error == EACCES) return "no permission to create a file in its folder";
  return ErrorText(error);
}

/// Writes the new directory entry to the disk, so that it survives a power failure. Errors are
/// ignored, for example in a folder without read permission: the file is in place anyway.
void SyncFolderOf(const std::string& path) {
  const std::string folder = std::filesystem::absolute(path).parent_path().string();
  const TDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.IsOpen()) ::fsync(descriptor.Get());
}

}  // namespace

std::filesystem::path FileToReplace(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  auto target = std::filesystem::canonical(path, error);
  if (!error) return target;
  throw TCommandFailure(kExitBadInput, "following link " + path.string(),
                        {kQDXStatusFileSystemError, ErrorText(error.value())});
}

void RefuseToReplace(const std::string& output, const std::vector<std::string>& inputs) {
  std::error_code ignored;
  // A file can have the name that means a standard stream.
  if (output == "-" || !std::filesystem::is_regular_file(output, ignored)) return;
  for (const std::string& input : inputs) {
    if (std::filesystem::equivalent(output, input == "-" ? "/dev/stdin" : input, ignored)) {
      FailToWrite(output, "this command also reads it");
    }
  }
}

TNewFile::TNewFile(const std::string& folder, const std::string& suffix,
                   const std::string& shownAs) {
  const std::string pattern = folder + "/.qdx-XXXXXX" + suffix;
  if (pattern.size() >= sizeof(gPath)) FailToWrite(shownAs, ErrorText(ENAMETOOLONG));
  RemoveOnSignals();
  fPath = pattern;  // the name will have the same size: no memory is needed once the file exists
  // mkostemp fills in the handler's path, so that a signal never leaves a file behind.
  *std::copy(pattern.begin(), pattern.end(), gPath) = '\0';
  fDescriptor = TDescriptor(::mkostemps(gPath, static_cast<int>(suffix.size()), O_CLOEXEC));
  if (!fDescriptor.IsOpen()) FailToWrite(shownAs, WhyNotCreated(fDescriptor.GetError()));
  fPath = gPath;
}

TNewFile::~TNewFile() {
  ::unlink(fPath.c_str());  // fails harmlessly if the file was published
}

void TNewFile::Publish(const std::string& path) {
  WriteToDisk(path);
  if (::rename(fPath.c_str(), path.c_str()) != 0) FailToWrite(path, ErrorText(errno));
  SyncFolderOf(path);
}

bool TNewFile::PublishIfNew(const std::string& path) {
  WriteToDisk(path);
  if (::renameat2(AT_FDCWD, fPath.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) != 0) {
    // Old kernels and network file systems lack the flag; old sandboxes refuse unknown calls.
    if (errno == EINVAL || errno == ENOSYS || errno == EPERM) return Link(path);
    if (errno == EEXIST) return false;
    FailToWrite(path, ErrorText(errno));
  }
  SyncFolderOf(path);
  return true;
}

void TNewFile::WriteToDisk(const std::string& path) {
  struct stat own {};
  struct stat named {};
  if (::fstat(fDescriptor.Get(), &own) != 0 || ::lstat(fPath.c_str(), &named) != 0 ||
      own.st_dev != named.st_dev || own.st_ino != named.st_ino) {
    throw TCommandFailure(
        kExitNothingCollected, "writing " + path,
        {kQDXStatusFileSystemError, "the plug-in that wrote the file has removed or replaced it"});
  }
  ::fchmod(fDescriptor.Get(), 0600);
  if (::fsync(fDescriptor.Get()) != 0) FailToWrite(path, ErrorText(errno));
}

bool TNewFile::Link(const std::string& path) {
  if (::link(fPath.c_str(), path.c_str()) != 0) {
    if (errno == EEXIST) return false;
    FailToWrite(path, "the folder does not support names that replace nothing (" +
                          ErrorText(errno) + "); --output names a file that may be replaced");
  }
  ::unlink(fPath.c_str());
  SyncFolderOf(path);
  return true;
}

}  // namespace NVORNQDX20
