// SPDX-License-Identifier: Apache-2.0
#include "transfer_worker.h"

#include <qdxplugin_host/worker.h>

#include <csignal>
#include <fstream>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include <unistd.h>

#include "cli/failure.h"
#include "input/worker_options.h"

namespace NVORNQDX20 {
namespace {

using namespace NPluginHost;

/// The kinds of messages.
enum ETransferMessage : std::uint8_t {
  kProcess = 1,  ///< The number of the worker's process.
  kFailed,       ///< Action, reason; the status.
  kDone,         ///< The exit code.
};

void Work(const std::function<void()>& work, const std::string& action, const TSender& sender) {
  std::signal(SIGXFSZ, SIG_IGN);  // a file that is too large shall be a failed write
  sender.Send(kProcess, {}, ::getpid());
  EExitCode code = kExitDone;
  try {
    work();
  } catch (const TCommandFailure& failure) {
    code = failure.GetExitCode();
    if (const auto& why = failure.GetFailure()) {
      sender.Send(kFailed, {failure.GetAction(), why->GetReason()}, why->GetStatusCode());
    }
  } catch (const std::bad_alloc&) {
    code = kExitTransferFailed;
    sender.Send(kFailed, {action, "out of memory"}, kQDXStatusOutOfMemory);
  }
  sender.Send(kDone, {}, code);
}

}  // namespace

void RunTransfer(const std::string& action, std::chrono::seconds timeout,
                 const std::vector<int>& descriptors, const std::function<void()>& work) {
  std::int64_t process = 0;
  std::optional<EExitCode> code;
  TWorkerJob job;
  job.fName = action;
  job.fWork = [&](TSender& sender) { Work(work, action, sender); };
  job.fReceive = [&](TMessage&& message) {
    if (message.fKind == kProcess) process = message.fNumber;
    if (message.fKind == kFailed) {
      PrintFailure(message.Text(0),
                   {static_cast<EQDXStatusCode>(message.fNumber), message.Text(1)});
    }
    if (message.fKind == kDone) code = static_cast<EExitCode>(message.fNumber);
  };
  std::string reason = "it ended early";
  job.fEnd = [&reason](const TWorkerEnd& end) {
    if (!end.fIsNormal) reason = end.fReason;
  };
  // The kernel counts the bytes that a process reads and writes. Where it does not, the time is not
  // limited, since progress cannot be seen.
  job.fProgress = [&process, calls = 0]() mutable {
    std::ifstream file("/proc/" + std::to_string(process) + "/io");
    std::string counts;
    // Not by an iterator, which throws if the process has ended meanwhile.
    for (std::string line; std::getline(file, line);) counts += line;
    return counts.empty() ? std::to_string(++calls) : counts;
  };
  job.fDescriptors = descriptors;
  TWorkerLimits limits;
  limits.fTime = timeout;
  limits.fMemory = 0;  // the code is our own
  limits.fDelivery = std::numeric_limits<std::uint64_t>::max();
  RunWorkers({job}, limits, ShowWaiting());
  if (!code)
    throw TCommandFailure(kExitTransferFailed, action, {kQDXStatusConnectionFailed, reason});
  if (*code != kExitDone) throw TCommandFailure(*code);
}

}  // namespace NVORNQDX20
