// SPDX-License-Identifier: Apache-2.0
#include "supervisor.h"

#include <qdxsystem/child_process.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <new>
#include <string>
#include <utility>

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include "process_tree.h"

namespace NVORNQDX20::NPluginHost {
namespace {

using TClock = std::chrono::steady_clock;

/// Longer than the kernel needs to end a process that can be ended; and any number of them.
constexpr std::chrono::milliseconds kPatience{700};
constexpr std::chrono::milliseconds kLongPatience{5000};

/// Closes everything but the ends and what the job needs: also the lifelines of other workers.
void KeepOnly(const TSupervisorEnds& ends, std::vector<int> kept) {
  for (const TDescriptor* end : {&ends.fLifeline, &ends.fReport, &ends.fSocket, &ends.fOutput}) {
    kept.push_back(end->Get());
  }
  CloseOthers(std::move(kept));
}

/// A stream that is closed would be replaced by the next file that a plug-in opens.
void ReplaceStandardStreams(const TSupervisorEnds& ends) {
  const TDescriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  const TPipe empty = nothing.IsOpen() ? TPipe{} : OpenPipe();
  ::dup2(nothing.IsOpen() ? nothing.Get() : empty.fReadEnd.Get(), STDIN_FILENO);
  ::dup2(ends.fOutput.Get(), STDOUT_FILENO);
  ::dup2(ends.fOutput.Get(), STDERR_FILENO);
}

bool TakeOn(const TUser& user) {
  return ::setgroups(user.fGroups.size(), user.fGroups.data()) == 0 && ::setgid(user.fGroup) == 0 &&
         ::setuid(user.fID) == 0;
}

void RestoreSignals() {
  for (int signal = 1; signal <= SIGRTMAX; ++signal) {
    struct sigaction action {};
    // A handler of a crash is a sanitizer's, which reports more.
    const bool isKept = ::sigaction(signal, nullptr, &action) != 0 ||
                        action.sa_handler == SIG_DFL ||
                        (action.sa_handler != SIG_IGN &&
                         (signal == SIGSEGV || signal == SIGBUS || signal == SIGFPE));
    if (!isKept) std::signal(signal, SIG_DFL);
  }
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void Work(pid_t supervisor, TSupervisorEnds& ends, const TWorkerLimits& limits,
                       rlim_t addressSpace, const std::function<void(TSender&)>& work) {
  ::setpgid(0, 0);
  for (TDescriptor* end : {&ends.fLifeline, &ends.fReport, &ends.fOutput}) (void)end->Close();
  RestoreSignals();
  SetLimit(RLIMIT_CORE, 0);
  SetLimit(RLIMIT_FSIZE, limits.fDelivery);
  if (limits.fMemory != 0) SetLimit(RLIMIT_AS, addressSpace + limits.fMemory);
  if (limits.fUser && !TakeOn(*limits.fUser)) ::_exit(kCannotTakeOnUser);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // after the change of user, which resets it
  if (::getppid() != supervisor) ::_exit(kWorkReturned);
  TSender sender(ends.fSocket.Get());
  try {
    work(sender);
  } catch (const std::bad_alloc&) {
    ::_exit(kOutOfMemory);
  }
  std::exit(kWorkReturned);  // destructors of plug-ins run here, too
}

/// A worker, as its supervisor sees it.
class TChild {
 public:
  explicit TChild(pid_t process) : fProcess(process) {}

  bool HasEnded() const { return fStatus >= 0; }
  int GetStatus() const { return fStatus; }
  long GetPeakMemory() const { return fUsage.ru_maxrss; }

  /// Waits for all processes that have ended. Returns false if none is left.
  bool WaitForEnded() {
    int status = 0;
    rusage usage{};
    for (;;) {
      const pid_t ended = ::wait4(-1, &status, WNOHANG, &usage);
      if (ended <= 0) return ended == 0;
      // A worker that lets itself be traced stops instead.
      if (ended != fProcess || (!WIFEXITED(status) && !WIFSIGNALED(status))) continue;
      fStatus = status;
      fUsage = usage;
    }
  }

  /// Returns what remains: nothing, unless the kernel does not end a process.
  std::string KillAll() {
    if (!WaitForEnded()) return {};  // as usual
    const auto start = TClock::now();
    do {  // orphans become children of this process
      const std::vector<pid_t> all = Descendants();
      for (const pid_t process : all) ::kill(process, SIGKILL);
      if (all.empty()) ::kill(-fProcess, SIGKILL);  // without /proc only the group is known
      const auto time = TClock::now() - start;
      if (time > kPatience) {
        const auto stuck = std::find_if(all.begin(), all.end(), IsUninterruptible);
        if (stuck != all.end()) return DescribeStuck(*stuck);
        if (all.empty()) return "processes that cannot be found without /proc";
        if (time > kLongPatience) return DescribeStuck(all.front());
      }
      ::usleep(500);
    } while (WaitForEnded());
    return {};
  }

 private:
  const pid_t fProcess;
  int fStatus = -1;
  rusage fUsage{};
};

/// Returns once the worker has ended, or the lifeline. SIGCHLD is blocked.
void WaitForEnd(TChild& worker, int lifeline) {
  sigset_t children;
  ::sigemptyset(&children);
  ::sigaddset(&children, SIGCHLD);
  const int signals = ::signalfd(-1, &children, SFD_NONBLOCK | SFD_CLOEXEC);
  signalfd_siginfo signal{};
  pollfd ends[] = {{lifeline, 0, 0}, {signals, POLLIN, 0}};
  while (worker.WaitForEnded() && !worker.HasEnded() && (ends[0].revents & POLLHUP) == 0) {
    ::poll(ends, 2, -1);
    while (::read(signals, &signal, sizeof signal) > 0) {
    }
  }
}

void Send(const TReport& report, int end) {
  // The command may have ended.
  (void)WriteAll(end, {reinterpret_cast<const char*>(&report), sizeof report});
}

}  // namespace

void Supervise(TSupervisorEnds& ends, const TWorkerLimits& limits, rlim_t addressSpace,
               const TWorkerJob& job) noexcept {
  KeepOnly(ends, job.fDescriptors);
  ReplaceStandardStreams(ends);
  ::setsid();  // no terminal, and no signals from one
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  // Handlers are the command's, and a plug-in may send signals to its parent.
  sigset_t all;
  ::sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, nullptr);
  std::signal(SIGCHLD, SIG_DFL);  // if it is ignored, there is no status
  const pid_t supervisor = ::getpid();
  const pid_t process = ::fork();
  if (process == 0) Work(supervisor, ends, limits, addressSpace, job.fWork);
  TReport report;
  if (process < 0) {
    report.fError = errno;
    Send(report, ends.fReport.Get());
    ::_exit(0);
  }
  TChild worker(process);
  // The worker's ends shall close when it ends.
  for (TDescriptor* end : {&ends.fSocket, &ends.fOutput}) (void)end->Close();
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) ::close(stream);
  WaitForEnd(worker, ends.fLifeline.Get());
  const std::string remaining = worker.KillAll();
  remaining.copy(report.fRemaining, sizeof report.fRemaining - 1);
  report.fStatus = worker.GetStatus();
  report.fPeakMemory = worker.GetPeakMemory();
  Send(report, ends.fReport.Get());
  ::_exit(0);
}

}  // namespace NVORNQDX20::NPluginHost
