// SPDX-License-Identifier: Apache-2.0
// Runs child processes and captures their output.
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>
#include <qdxsystem/descriptor.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

using TArgv = std::vector<char*>;

/// The exit status of a child whose program cannot be started.
constexpr int kNotStarted = 1;

[[noreturn]] void Fail(std::string_view what) {
  LogErrorAndThrow(kQDXStatusFail, {"ERROR: SpawnProcess - ", what});
}

/// Blocks all signals in the calling thread for its lifetime.
class TSignalBlock {
 public:
  TSignalBlock() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &fMask);
  }
  ~TSignalBlock() { ::pthread_sigmask(SIG_SETMASK, &fMask, nullptr); }
  TSignalBlock(const TSignalBlock&) = delete;
  TSignalBlock& operator=(const TSignalBlock&) = delete;

  const sigset_t& MaskBefore() const { return fMask; }

 private:
  sigset_t fMask;
};

/// The stack of a child that shares the memory of its parent.
class TStack {
 public:
  /// execvp puts a path, and for a script without "#!" a second argument vector, on this stack.
  explicit TStack(std::size_t argumentCount)
      : fSize(kFixedSize + argumentCount * sizeof(char*)),
        fBottom(::mmap(nullptr, fSize, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0)) {}
  ~TStack() {
    if (IsThere()) ::munmap(fBottom, fSize);
  }
  TStack(const TStack&) = delete;
  TStack& operator=(const TStack&) = delete;

  bool IsThere() const { return fBottom != MAP_FAILED; }
  void* Top() const { return static_cast<char*>(fBottom) + (fSize & ~kAlignment); }

 private:
  static constexpr std::size_t kFixedSize = 65536;
  static constexpr std::size_t kAlignment = 15;

  const std::size_t fSize;
  void* const fBottom;
};

struct TChildTask {
  const TArgv& fArgv;
  const TPipe& fPipe;
  const sigset_t& fMask;
};

/// A handler in the child would run in the parent's memory; the new program has no handlers anyway.
void ResetHandlers() {
  for (int signal = 1; signal < NSIG; ++signal) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) != 0) continue;
    if (action.sa_handler == SIG_DFL || action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = SIG_DFL;
    ::sigaction(signal, &action, nullptr);
  }
}

/// Runs in the child, which may only touch its own stack and descriptors. Returns, with the child's
/// exit status, only if the program cannot be started.
int RunChild(void* argument) {
  const auto& task = *static_cast<const TChildTask*>(argument);
  ResetHandlers();
  ::sigprocmask(SIG_SETMASK, &task.fMask, nullptr);
  const int writeEnd = task.fPipe.fWriteEnd.Get();
  if (::dup2(writeEnd, STDOUT_FILENO) < 0 || ::dup2(writeEnd, STDERR_FILENO) < 0) {
    return kNotStarted;
  }
  // Closes the child's standard input; an error is ignored, since the caller may have none. By
  // syscall, not close(): an interposed close() would change its records in the shared memory.
  ::syscall(SYS_close, STDIN_FILENO);
  ::execvp(task.fArgv[0], task.fArgv.data());  // the pipe's descriptors are close-on-exec
  return kNotStarted;
}

/// Starts the child with clone(CLONE_VM | CLONE_VFORK): fork() would copy the page tables, 32 ms
/// for a process of 1 GB. The parent waits until the child has started its program. posix_spawnp()
/// does the same, but does not run scripts without "#!" and reports a failed fork like a failed
/// exec.
pid_t StartChild(const TArgv& argv, const TPipe& pipe) {
  const TStack stack(argv.size());
  if (!stack.IsThere()) return -1;
  const TSignalBlock block;
  TChildTask task{argv, pipe, block.MaskBefore()};
  return ::clone(RunChild, stack.Top(), CLONE_VM | CLONE_VFORK | SIGCHLD, &task);
}

TArgv MakeArgv(std::string& command, std::vector<std::string>& arguments) {
  TArgv argv{command.data()};
  argv.reserve(arguments.size() + 2);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  return argv;
}

int WaitFor(pid_t child) {
  int status = 0;
  pid_t result = 0;
  do {
    result = ::waitpid(child, &status, 0);
  } while (result < 0 && errno == EINTR);
  if (result < 0) Fail("waitpid call failed");
  if (!WIFEXITED(status)) Fail("child terminated abnormally");
  return WEXITSTATUS(status);
}

void RunInShell(const std::string& command) {
  [[maybe_unused]] const int ignored = std::system(command.c_str());
}

}  // namespace

std::string TOSSpecific::SpawnProcess(std::string command) { return SpawnProcess(command, {}); }

std::string TOSSpecific::SpawnProcess(std::string command, std::vector<std::string> arguments) {
  std::string output;
  SpawnProcess(command, arguments, output);
  return output;
}

std::int32_t TOSSpecific::SpawnProcess(std::string command, std::vector<std::string> arguments,
                                       std::string& output) {
  LogMessage(ILogger::kLogDebug, {"SpawnProcess: process ", command});
  const TArgv argv = MakeArgv(command, arguments);
  TPipe pipe = OpenPipe();
  if (!pipe.fReadEnd.IsOpen()) Fail("pipe call failed");
  const pid_t child = StartChild(argv, pipe);
  if (child < 0) Fail("fork call failed");

  // Read to the end before waiting: the child may print more than a pipe holds.
  if (!pipe.fWriteEnd.Close()) Fail("close pipe call failed");
  output = GetFileContents(pipe.fReadEnd.Get());
  if (!pipe.fReadEnd.Close()) Fail("close pipe call failed");
  return WaitFor(child);
}

std::string TOSSpecific::CaptureFile(std::string path) {
  TDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) {
    LogErrorAndThrow(kQDXStatusFileNotFound, {"ERROR: CaptureFile failed to open: ", path});
  }
  // Left open on purpose: that is the contract of this operation.
  return GetFileContents(file.Release());
}

void TOSSpecific::LaunchTextEditor(std::string file) { RunInShell("vi " + file); }

void TOSSpecific::LaunchCommandShell() { RunInShell("sh"); }

bool TOSSpecific::IsAdmin() { return ::getuid() == 0; }

}  // namespace NVORNQDX20
