// SPDX-License-Identifier: Apache-2.0
// Files and child processes, each next to its limit: the same system calls without the library.
#include <qdxcore/os_specific.h>

#include "support/temp_dir.h"

#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

extern char** environ;

namespace {

using TOS = NVORNQDX20::TOSSpecific;

constexpr std::size_t kMegabyte = 1048576;
constexpr std::size_t kFileSize = 512 * kMegabyte;
constexpr std::size_t kBlockSize = 32768;

using TCopyFunction = void(const std::string&, const std::string&);

void CopyWithTheLibrary(const std::string& source, const std::string& destination) {
  TOS::FileCopy(source, destination);
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

/// If TMPDIR is on a disk, this measures its write-back; /dev/shm gives stable results.
void MeasureCopy(benchmark::State& state, TCopyFunction* copy) {
  const TTempDir dir;
  const std::string source = dir.Write("source", std::string(kFileSize, 'x'));
  const std::string destination = dir.Path() / "destination";
  for (auto _ : state) {
    copy(source, destination);
    state.PauseTiming();
    ::unlink(destination.c_str());
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(kFileSize) * state.iterations());
}
BENCHMARK_CAPTURE(MeasureCopy, FileCopy, CopyWithTheLibrary)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MeasureCopy, LimitBareLoop, CopyWithABareLoop)->Unit(benchmark::kMillisecond);

/// Memory in use, like that of a large process that starts a child.
class TBallast {
 public:
  explicit TBallast(std::int64_t megabytes)
      : fSize(static_cast<std::size_t>(megabytes) * kMegabyte),
        fMemory(
            ::mmap(nullptr, fSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    ::madvise(fMemory, fSize, MADV_NOHUGEPAGE);
    std::memset(fMemory, 1, fSize);
  }
  ~TBallast() { ::munmap(fMemory, fSize); }
  TBallast(const TBallast&) = delete;
  TBallast& operator=(const TBallast&) = delete;

 private:
  const std::size_t fSize;
  void* const fMemory;
};

void SpawnWithTheLibrary() { benchmark::DoNotOptimize(TOS::SpawnProcess("true")); }

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

void MeasureSpawn(benchmark::State& state, void (*spawn)()) {
  const TBallast ballast(state.range(0));
  for (auto _ : state) spawn();
}
BENCHMARK_CAPTURE(MeasureSpawn, SpawnProcess, SpawnWithTheLibrary)
    ->Arg(10)
    ->Arg(1024)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(MeasureSpawn, LimitPosixSpawn, SpawnBare)
    ->Arg(10)
    ->Arg(1024)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

std::string ReadBare(int descriptor) {
  char buffer[4096];
  ssize_t count = 0;
  while ((count = ::read(descriptor, buffer, sizeof buffer)) > 0) benchmark::DoNotOptimize(buffer);
  return {};
}

/// Reads what another thread writes; the argument is the number of megabytes.
void MeasureReading(benchmark::State& state, std::string (*read)(int)) {
  const std::string block(kMegabyte, 'x');
  for (auto _ : state) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    std::thread writer([&] {
      for (std::int64_t i = 0; i < state.range(0); ++i) {
        if (::write(ends[1], block.data(), block.size()) < 0) break;
      }
      ::close(ends[1]);
    });
    benchmark::DoNotOptimize(read(ends[0]));
    writer.join();
    ::close(ends[0]);
  }
  state.SetBytesProcessed(state.range(0) * state.iterations() *
                          static_cast<std::int64_t>(kMegabyte));
}
BENCHMARK_CAPTURE(MeasureReading, GetFileContents,
                  [](int end) { return TOS::GetFileContents(end); })
    ->Arg(25)
    ->Arg(100)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MeasureReading, LimitBareLoop, ReadBare)
    ->Arg(25)
    ->Arg(100)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
