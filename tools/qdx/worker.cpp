// SPDX-License-Identifier: Apache-2.0
#include "worker.h"

#include <csignal>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

using TClock = std::chrono::steady_clock;

constexpr std::size_t kLongestText = 4096;

[[noreturn]] void RunAndExit(const std::function<int(int)>& action, int end) noexcept {
  ::_exit(action(end));  // what exit would clean up is the parent's
}

}  // namespace

TWorker::TWorker(const std::function<int(int)>& action) {
  std::signal(SIGCHLD, SIG_DFL);  // ignored, it would hide how the process ended
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return;
  const pid_t parent = ::getpid();
  fProcess = ::fork();
  if (fProcess == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(1);
    RunAndExit(action, ends[1]);
  }
  ::close(ends[1]);  // now only the process has it open: the pipe ends when that does
  fEnd = ends[0];
}

TWorker::~TWorker() {
  if (fProcess > 0) ::kill(fProcess, SIGKILL);
  if (fProcess > 0) ::waitpid(fProcess, nullptr, 0);
  if (fEnd >= 0) ::close(fEnd);
}

bool TWorker::EndsWithin(std::chrono::milliseconds time) {
  const auto deadline = TClock::now() + time;
  while (true) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - TClock::now());
    pollfd end = {fEnd, POLLIN, 0};
    const int ready = ::poll(&end, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
    if (ready == 0) return false;
    if (ready > 0 && HasEnded()) return true;  // less than 0: interrupted
  }
}

/// Reads what is there; at the end of it the process is gone.
bool TWorker::HasEnded() {
  char buffer[1024];
  const ssize_t size = ::read(fEnd, buffer, sizeof(buffer));
  if (size <= 0) return true;
  fText.append(buffer, static_cast<std::size_t>(size));
  if (fText.size() > kLongestText) fText.resize(kLongestText);
  return false;
}

std::string TWorker::CountOfBytes() const {
  std::ifstream file("/proc/" + std::to_string(fProcess) + "/io");
  return {std::istreambuf_iterator<char>(file), {}};
}

int TWorker::TakeStatus() {
  int status = 0;
  ::waitpid(fProcess, &status, 0);
  fProcess = -1;
  return status;
}

}  // namespace NVORNQDX20
