// SPDX-License-Identifier: Apache-2.0
#include "plugin_trial.h"

#include <qdxcore/logger.h>
#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/failure.h"
#include "crash_note.h"

namespace NVORNQDX20 {
namespace {

constexpr std::chrono::seconds kTimeout{10};
constexpr std::size_t kLongestText = 300;

/// An unlikely status, so that a plug-in's own exit() is not taken for success.
constexpr int kSucceeded = 113;

/// Set in the child process only.
const TLastError* gLastError = nullptr;

[[noreturn]] void PrintReasonAndAbort() {
  if (gLastError->Get().empty()) __gnu_cxx::__verbose_terminate_handler();
  std::fputs(gLastError->Get().c_str(), stderr);
  std::abort();
}

/// Standard output and the log are discarded, since they repeat when the library is loaded for use;
/// standard error goes to the parent.
void RedirectOutput(int end) {
  ::fcntl(end, F_SETFL, O_NONBLOCK);  // a full pipe must not stop the child
  const TDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  ::dup2(nowhere.Get(), STDOUT_FILENO);
  ::dup2(end, STDERR_FILENO);
  TLogger::Initialize();  // writes no file
  StopReportingCrashes();
}

std::string DescribeStatus(int status) {
  if (WIFEXITED(status)) return "ended that with status " + std::to_string(WEXITSTATUS(status));
  const char* const name = ::sigabbrev_np(WTERMSIG(status));  // real-time signals have none
  return "ended that with signal " + (name == nullptr ? std::to_string(WTERMSIG(status)) : name);
}

std::string OnOneLine(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  if (text.size() > kLongestText) text.replace(kLongestText, std::string::npos, "...");
  return text.empty() ? text : ": " + text;
}

}  // namespace

TPluginTrial::TPluginTrial(const std::function<void()>& load)
    : fDeadline(std::chrono::steady_clock::now() + kTimeout), fWorker([&load](int end) {
        RedirectOutput(end);
        const TLastError lastError;
        gLastError = &lastError;
        std::set_terminate(PrintReasonAndAbort);
        (void)Try(load);
        return kSucceeded;
      }) {}

void TPluginTrial::RequireSuccess() {
  if (!fWorker.IsRunning()) return;
  const bool ended = fWorker.WaitUntil(fDeadline);
  const int status = fWorker.GetStatus();
  if (ended && WIFEXITED(status) && WEXITSTATUS(status) == kSucceeded) return;
  const std::string how =
      ended ? DescribeStatus(status) + OnOneLine(fWorker.GetText()) : "did not come back";
  throw TExplainedException(kQDXStatusInvalidPlugin,
                            "it was tried in a process of its own and " + how);
}

}  // namespace NVORNQDX20
