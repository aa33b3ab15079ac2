// SPDX-License-Identifier: Apache-2.0
#include "plugin_trial.h"

#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <system_error>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "crash_note.h"
#include "failure.h"
#include "worker.h"

namespace NVORNQDX20 {
namespace {

constexpr std::chrono::seconds kPatience{10};

/// What is written to the terminal or logged will be again when the library is loaded for good.
void TurnAside(int end) {
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(end, STDERR_FILENO);
  TRootObject::GetCoreLogger()->SetLogThreshold(static_cast<ILogger::EQDXLogSeverity>(-1));
  LeaveCrashesToOthers();
  std::set_terminate(__gnu_cxx::__verbose_terminate_handler);
}

std::string HowItEnded(int status) {
  if (WIFEXITED(status)) return "ended it with status " + std::to_string(WEXITSTATUS(status));
  return std::string("ended it with signal ") + ::sigabbrev_np(WTERMSIG(status));
}

std::string OnOneLine(std::string text) {
  text.erase(std::find_if_not(text.rbegin(), text.rend(), [](char c) { return c == '\n'; }).base(),
             text.end());
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text.empty() ? text : ": " + text;
}

}  // namespace

void TryPlugin(const std::string& file, const std::function<void()>& load) {
  const auto refuse = [&file](const std::string& why) {
    LogErrorAndThrow(kQDXStatusInvalidPlugin,
                     {file, " was tried in a process of its own and ", why});
  };
  TWorker worker([&load](int end) {
    TurnAside(end);
    Try(load);
    return 0;
  });
  if (!worker.IsRunning()) {
    LogErrorAndThrow(kQDXStatusFail,
                     {"no process to try ", file, " in: ", std::generic_category().message(errno)});
  }
  if (!worker.EndsWithin(kPatience)) refuse("did not come back");
  const int status = worker.TakeStatus();
  if (status != 0) refuse(HowItEnded(status) + OnOneLine(worker.Text()));
}

}  // namespace NVORNQDX20
