// SPDX-License-Identifier: Apache-2.0
#include "worker_log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

namespace NVORNQDX20::NPluginHost {
namespace {

/// More say nothing to an operator, and would fill the memory of the command.
constexpr int kMaxLogEntries = 1000;

std::string& LastError() {
  static std::string text;
  return text;
}

/// The reason that was logged says more than the name of the exception.
[[noreturn]] void PrintReasonAndAbort() {
  if (LastError().empty()) __gnu_cxx::__verbose_terminate_handler();
  std::fputs(LastError().c_str(), stderr);
  std::abort();
}

/// Makes a new logger, which has no file, with the threshold of the command's, or `least`. It is
/// never deleted: plug-ins may log to the very end.
ILogger::EQDXLogSeverity ReplaceLogger(ILogger::EQDXLogSeverity least) {
  TLogger* const ofCommand = TLogger::GetInstance();
  const auto threshold =
      std::max(ofCommand == nullptr ? ILogger::kLogStatus : ofCommand->GetLogThreshold(), least);
  TLogger::Initialize();
  TLogger::GetInstance()->SetLogThreshold(threshold);
  return threshold;
}

}  // namespace

TWorkerLog::TWorkerLog(const TSender& sender, ILogger::EQDXLogSeverity shown)
    : fListener(ReplaceLogger(shown),
                [&sender, count = 0](auto severity, const std::string& text) mutable {
                  if (severity == ILogger::kLogError) LastError() = text;
                  if (++count > kMaxLogEntries) return;
                  const bool isLast = count == kMaxLogEntries;
                  sender.Send(kLogEntry, {isLast ? "further log entries were left out" : text},
                              isLast ? ILogger::kLogWarning : severity);
                }) {
  std::set_terminate(PrintReasonAndAbort);
}

void ReceiveLogEntry(const TMessage& message, std::vector<std::string>& warnings) {
  const std::int64_t severity = message.fNumber;
  const bool isEntry = message.fKind == kLogEntry && severity >= ILogger::kLogError &&
                       severity <= ILogger::kLogVerbose;
  if (!isEntry) return;  // of no known kind, so there is nothing to be lost
  if (severity == ILogger::kLogWarning) warnings.push_back(message.Text(0));
  LogMessage(static_cast<ILogger::EQDXLogSeverity>(severity), {message.Text(0)});
}

EQDXStatusCode StatusOf(std::int64_t number) {
  const bool isFailure = number > kQDXStatusOK && number < prqStatusEnd;
  return isFailure ? static_cast<EQDXStatusCode>(number) : kQDXStatusFail;
}

}  // namespace NVORNQDX20::NPluginHost
