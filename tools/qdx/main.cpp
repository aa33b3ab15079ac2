// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>

#include <unistd.h>

#include "cli/failure.h"
#include "plugin_host/crash_note.h"
#include "plugin_host/surroundings.h"
#include "verbs/command.h"

namespace NVORNQDX20 {
namespace {

/// Destructors of JSON values allocate: when memory runs out there, the exception cannot be caught.
[[noreturn]] void EndWithoutMemory() {
  try {
    if (const std::exception_ptr pending = std::current_exception())
      std::rethrow_exception(pending);
  } catch (const std::bad_alloc&) {
    std::fputs("qdx: out of memory\n", stderr);
    ::_exit(kExitNothingCollected);
  } catch (...) {  // NOLINT(bugprone-empty-catch): like any other
  }
  std::abort();
}

EExitCode RunGuarded(const std::vector<std::string>& words) {
  try {
    return RunCommand(words);
  } catch (const TCommandFailure& failure) {
    failure.Print();
    return failure.GetExitCode();
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (...) {  // plug-ins may throw anything
    PrintFailure("unexpected failure", *Try([] { throw; }));
    return kExitNothingCollected;
  }
}

EExitCode RunWithLog(const std::vector<std::string>& words) {
  TLogger::Initialize();
  const std::unique_ptr<TLogger> logger(TLogger::GetInstance());  // closes the log at the end
  return RunGuarded(words);
}

}  // namespace
}  // namespace NVORNQDX20

int main(int argc, char** argv) {
  using namespace NVORNQDX20;
  OccupyStandardDescriptors();
  // A closed pipe and the file size limit shall be failed writes, not end the process.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  std::set_terminate(EndWithoutMemory);
  ReportCrashes();
  const EExitCode code = RunWithLog({argv + (argc > 0 ? 1 : 0), argv + argc});
  ReportNoEnd();
  return code;
}
