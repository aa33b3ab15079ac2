// SPDX-License-Identifier: Apache-2.0
// Files and child processes, beside the same system calls without the library.
#include <qdxcore/os_specific.h>

#include "support/temp_dir.h"

#include <memory>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "operation.h"

extern char** environ;

namespace NBench {
namespace {

using TOS = NVORNQDX20::TOSSpecific;

constexpr std::size_t kMegabyte = 1048576;
constexpr std::size_t kBlockSize = 32768;

/// A folder with a file of 64 megabytes; on a disk, this would measure its write-back.
std::shared_ptr<TTempDir> BigFile() {
  auto folder = std::make_shared<TTempDir>();
  folder->Write("source", std::string(64 * kMegabyte, 'x'));
  return folder;
}

void CopyWithABareLoop(const std::string& source, const std::string& destination) {
  const int from = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
  const int to = ::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  const auto buffer = std::make_unique<char[]>(kBlockSize);
  ssize_t count = 0;
  while ((count = ::read(from, buffer.get(), kBlockSize)) > 0) {
    if (::write(to, buffer.get(), static_cast<std::size_t>(count)) != count) break;
  }
  ::close(from);
  ::close(to);
}

template <typename TCopy>
TLoop CopyAFile(TCopy copy) {
  return Repeat([folder = BigFile(), copy] {
    const std::string destination = folder->Path() / "destination";
    copy(folder->Path() / "source", destination);
    ::unlink(destination.c_str());
  });
}

void SpawnBare() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return;
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  ::posix_spawn_file_actions_addclose(&actions, STDIN_FILENO);
  std::string name = "true";
  char* argv[] = {name.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawnp(&child, name.c_str(), &actions, nullptr, argv, environ) != 0) return;
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  char buffer[4096];
  while (::read(ends[0], buffer, sizeof buffer) > 0) {
  }
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
}

/// A file in memory of 25 megabytes, closed with the last copy.
std::shared_ptr<const int> ContentsToRead() {
  const int file = ::memfd_create("bench", MFD_CLOEXEC);
  const std::string contents(25 * kMegabyte, 'x');
  if (::write(file, contents.data(), contents.size()) < 0) ::ftruncate(file, 25 * kMegabyte);
  return std::shared_ptr<const int>(new int(file), [](const int* open) {
    ::close(*open);
    delete open;
  });
}

TLoop ReadWithTheLibrary() {
  return Repeat([file = ContentsToRead()] {
    ::lseek(*file, 0, SEEK_SET);
    return TOS::GetFileContents(*file);
  });
}

TLoop ReadWithABareLoop() {
  return Repeat([file = ContentsToRead(), buffer = std::string(kBlockSize, '\0')]() mutable {
    ::lseek(*file, 0, SEEK_SET);
    std::string contents;
    ssize_t count = 0;
    while ((count = ::read(*file, buffer.data(), buffer.size())) > 0) {
      contents.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return contents;
  });
}

}  // namespace

TOperations SystemOperations() {
  TOperations all = {
      {"copy a file of 64 MB",
       [] { return CopyAFile([](const auto& from, const auto& to) { TOS::FileCopy(from, to); }); },
       "a bare loop", [] { return CopyAFile(CopyWithABareLoop); }},
      {"spawn a process", [] { return Repeat([] { return TOS::SpawnProcess("true"); }); },
       "posix_spawn", [] { return Repeat(SpawnBare); }},
      {"read 25 MB", ReadWithTheLibrary, "a bare loop", ReadWithABareLoop}};
  for (TOperation& operation : all) operation.fCountedRuns = 0;  // mostly the system's work
  return all;
}

}  // namespace NBench
