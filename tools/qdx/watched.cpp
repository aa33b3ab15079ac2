// SPDX-License-Identifier: Apache-2.0
#include "watched.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "failure.h"

namespace NVORNQDX20 {
namespace {

using TClock = std::chrono::steady_clock;

[[noreturn]] void RunAndExit(const std::function<void()>& action) noexcept {
  int code = kExitDone;
  try {
    action();
  } catch (const TCommandFailure& failure) {
    PrintError(failure.what());
    code = failure.GetExitCode();
  }
  ::_exit(code);  // what exit would clean up is the parent's
}

/// The process that runs an action; it never outlasts this object.
class TWorker {
 public:
  explicit TWorker(const std::function<void()>& action) {
    std::signal(SIGCHLD, SIG_DFL);  // ignored, it would hide how the process ended
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    const pid_t parent = ::getpid();
    fProcess = ::fork();
    if (fProcess == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (::getppid() != parent) ::_exit(kExitTransferFailed);
      RunAndExit(action);
    }
    ::close(ends[1]);  // now only the process has it open: the pipe ends when that does
    fEnd = ends[0];
  }
  ~TWorker() {
    if (fProcess > 0) ::kill(fProcess, SIGKILL);
    if (fProcess > 0) ::waitpid(fProcess, nullptr, 0);
    if (fEnd >= 0) ::close(fEnd);
  }
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  bool IsRunning() const { return fProcess > 0; }

  bool EndsWithin(std::chrono::milliseconds time) const {
    pollfd end = {fEnd, 0, 0};
    return ::poll(&end, 1, static_cast<int>(time.count())) > 0;
  }

  /// Changes with every byte that it reads from or writes to a file; empty if the system does not
  /// tell.
  std::string CountOfBytes() const {
    std::ifstream file("/proc/" + std::to_string(fProcess) + "/io");
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// What waitpid says, once it has ended.
  int TakeStatus() {
    int status = 0;
    ::waitpid(fProcess, &status, 0);
    fProcess = -1;
    return status;
  }

 private:
  pid_t fProcess = -1;
  int fEnd = -1;
};

/// Whether it ended by itself. Where nothing tells how far it is, it has all the time it wants.
bool EndsByItself(const TWorker& worker, std::chrono::seconds patience) {
  std::string count;
  auto moved = TClock::now();
  while (!worker.EndsWithin(std::chrono::milliseconds(500))) {
    std::string now = worker.CountOfBytes();
    if (now.empty() || now != count) {
      count.swap(now);
      moved = TClock::now();
    } else if (TClock::now() - moved >= patience) {
      return false;
    }
  }
  return true;
}

}  // namespace

void RunWatched(const std::string& tried, const std::string& on, std::chrono::seconds patience,
                const std::function<void()>& action) {
  const auto fail = [&](EQDXStatusCode status, const std::string& why) {
    throw TCommandFailure(kExitTransferFailed, FailureLine(tried, on, {status, why}));
  };
  TWorker worker(action);
  if (!worker.IsRunning()) fail(kQDXStatusFail, std::generic_category().message(errno));
  if (!EndsByItself(worker, patience)) {
    fail(kQDXStatusConnectionFailed,
         "nothing moved for " + std::to_string(patience.count()) + " seconds");
  }
  const int status = worker.TakeStatus();
  if (!WIFEXITED(status)) fail(kQDXStatusFail, "a signal ended it");
  const auto code = static_cast<EExitCode>(WEXITSTATUS(status));
  if (code != kExitDone) throw TCommandFailure(code, "");
}

}  // namespace NVORNQDX20
