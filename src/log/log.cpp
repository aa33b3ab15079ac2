// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

namespace NVORNQDX20 {

void LogMessage(ILogger::EQDXLogSeverity severity, std::initializer_list<std::string_view> parts) {
  ILogger* const logger = TRootObject::GetCoreLogger();
  if (logger == nullptr) return;
  if (severity != ILogger::kLogRecordOnly && severity > logger->GetLogThreshold()) return;

  std::string message;
  std::size_t length = 0;
  for (const std::string_view part : parts) length += part.size();
  message.reserve(length);
  for (const std::string_view part : parts) message += part;
  logger->OutputLogEntry(severity, message);
}

void LogErrorAndThrow(EQDXStatusCode code, std::initializer_list<std::string_view> parts) {
  LogMessage(ILogger::kLogError, parts);
  throw TQDXException(code);
}

}  // namespace NVORNQDX20
