// SPDX-License-Identifier: Apache-2.0
/// What workers of providers and of consumers share: log entries as messages, and reasons.
#ifndef LIB_PLUGIN_HOST_WORKER_LOG_H_
#define LIB_PLUGIN_HOST_WORKER_LOG_H_

#include <qdxcore/logger.h>
#include <qdxplugin_host/message.h>

#include <cstdint>
#include <string>
#include <vector>

namespace NVORNQDX20::NPluginHost {

/// The kind of a log entry: the text; the severity. Other kinds come after it.
inline constexpr std::uint8_t kLogEntry = 1;
inline constexpr std::uint8_t kFirstFreeKind = 2;

inline constexpr const char* kEndedEarly = "it ended with status 0 before it was done";

/// In a worker, sends what is logged during its lifetime, since only the command writes the log; a
/// library that ends the process by an exception says what it logged last.
class TWorkerLog {
 public:
  /// Sends entries of severity `shown`, and more severe ones, whatever the command's threshold is.
  TWorkerLog(const TSender& sender, ILogger::EQDXLogSeverity shown);
  TWorkerLog(const TWorkerLog&) = delete;
  TWorkerLog& operator=(const TWorkerLog&) = delete;

 private:
  const TLogListener fListener;
};

/// In the command, logs an entry of a worker. A warning is added to `warnings`.
void ReceiveLogEntry(const TMessage& message, std::vector<std::string>& warnings);

/// Returns kQDXStatusFail for a number that is no failure.
EQDXStatusCode StatusOf(std::int64_t number);

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_WORKER_LOG_H_
