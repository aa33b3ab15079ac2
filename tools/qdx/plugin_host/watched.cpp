// SPDX-License-Identifier: Apache-2.0
#include "watched.h"

#include <qdxsystem/error_text.h>

#include <cerrno>
#include <new>

#include <sys/wait.h>

#include "cli/failure.h"
#include "worker.h"

namespace NVORNQDX20 {
namespace {

using TClock = std::chrono::steady_clock;

/// Not an EExitCode: the only failure that the child does not print.
constexpr int kOutOfMemory = 113;

int ExitCodeOf(const std::function<void()>& work) {
  try {
    work();
    return kExitDone;
  } catch (const TCommandFailure& failure) {
    failure.Print();
    return failure.GetExitCode();
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
}

/// Waits, and returns whether the child ended before the timeout. Without a byte count there is no
/// timeout, since progress cannot be seen.
bool WaitForEnd(TWorker& worker, std::chrono::seconds timeout) {
  std::string count;
  auto moved = TClock::now();
  while (!worker.WaitUntil(TClock::now() + std::chrono::milliseconds(500))) {
    std::string now = worker.BytesTransferred();
    if (now.empty() || now != count) {
      count.swap(now);
      moved = TClock::now();
    } else if (TClock::now() - moved >= timeout) {
      return false;
    }
  }
  return true;
}

}  // namespace

void RunWatched(const std::string& action, std::chrono::seconds timeout,
                const std::function<void()>& work) {
  const auto fail = [&](EQDXStatusCode status, const std::string& why) {
    throw TCommandFailure(kExitTransferFailed, action, {status, why});
  };
  TWorker worker([&work](int) { return ExitCodeOf(work); });
  if (!worker.IsRunning()) fail(kQDXStatusFail, ErrorText(errno));
  if (!WaitForEnd(worker, timeout)) {
    fail(kQDXStatusConnectionFailed,
         "no progress for " + std::to_string(timeout.count()) + " seconds; --timeout allows more");
  }
  const int status = worker.GetStatus();
  if (!WIFEXITED(status)) fail(kQDXStatusFail, "a signal ended it");
  if (WEXITSTATUS(status) == kOutOfMemory) fail(kQDXStatusOutOfMemory, "out of memory");
  const auto code = static_cast<EExitCode>(WEXITSTATUS(status));
  if (code != kExitDone) throw TCommandFailure(code);
}

}  // namespace NVORNQDX20
