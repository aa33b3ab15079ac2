// SPDX-License-Identifier: Apache-2.0
#include "worker.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kLongestText = 4096;
constexpr std::chrono::milliseconds kPollInterval{10};

[[noreturn]] void RunAndExit(const std::function<int(int)>& action, int end) noexcept {
  ::_exit(action(end));  // _exit: atexit handlers belong to the parent
}

}  // namespace

TWorker::TWorker(const std::function<int(int)>& action) {
  std::signal(SIGCHLD, SIG_DFL);  // if it is ignored, waitpid returns no status
  TPipe pipe = OpenPipe();
  if (!pipe.fReadEnd.IsOpen()) return;
  const pid_t parent = ::getpid();
  fProcess = ::fork();
  if (fProcess == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::setpgid(0, 0);
    if (::getppid() != parent) ::_exit(1);
    RunAndExit(action, pipe.fWriteEnd.Get());
  }
  if (fProcess > 0) ::setpgid(fProcess, fProcess);  // both call setpgid, to avoid a race
  fReadEnd = std::move(pipe.fReadEnd);
  ::fcntl(fReadEnd.Get(), F_SETFL, O_NONBLOCK);
}

TWorker::~TWorker() {
  if (fProcess > 0 && !fHasEnded) KillGroup();
}

bool TWorker::WaitUntil(std::chrono::steady_clock::time_point deadline) {
  while (!HasEnded()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    // A closed pipe does not mean that the child has ended, nor an open one that it runs: it may
    // have closed its end, or passed it to another process.
    pollfd end = {fReadEnd.Get(), POLLIN, 0};
    if (::poll(&end, 1, static_cast<int>(kPollInterval.count())) > 0 &&
        (end.revents & POLLIN) == 0) {
      ::usleep(1000);
    }
    ReadAvailable();
  }
  ReadAvailable();
  return true;
}

bool TWorker::HasEnded() {
  if (fHasEnded) return true;
  siginfo_t end = {};
  ::waitid(P_PID, static_cast<id_t>(fProcess), &end, WEXITED | WNOHANG | WNOWAIT);
  if (end.si_pid == fProcess) KillGroup();
  return fHasEnded;
}

/// Kills the group before waitpid, after which another group may get its number.
void TWorker::KillGroup() {
  ::kill(-fProcess, SIGKILL);
  ::waitpid(fProcess, &fStatus, 0);
  fHasEnded = true;
}

void TWorker::ReadAvailable() {
  char buffer[1024];
  const ssize_t size = ::read(fReadEnd.Get(), buffer, sizeof(buffer));
  if (size <= 0) return;
  fText.append(buffer, std::min(static_cast<std::size_t>(size), kLongestText - fText.size()));
}

std::string TWorker::BytesTransferred() const {
  std::ifstream file("/proc/" + std::to_string(fProcess) + "/io");
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace NVORNQDX20
