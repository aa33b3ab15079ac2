// SPDX-License-Identifier: Apache-2.0
// Writes messages to the log, and passes them to its listeners.
#include <qdxcore/logger.h>

namespace NVORNQDX20 {
namespace {

std::string Joined(std::initializer_list<std::string_view> parts) {
  std::string joined;
  std::size_t length = 0;
  for (const std::string_view part : parts) length += part.size();
  joined.reserve(length);
  for (const std::string_view part : parts) joined += part;
  return joined;
}

}  // namespace

void LogMessage(ILogger::EQDXLogSeverity severity, std::initializer_list<std::string_view> parts) {
  TLogger* const logger = TLogger::GetInstance();
  if (logger == nullptr) return;
  const bool isAdmitted =
      severity == ILogger::kLogRecordOnly || severity <= logger->TLogger::GetLogThreshold();
  if (isAdmitted || TLogListener::AnyHears(severity)) {
    logger->OutputLogEntry(severity, Joined(parts));
  }
}

void LogErrorAndThrow(EQDXStatusCode code, std::initializer_list<std::string_view> parts) {
  LogMessage(ILogger::kLogError, parts);
  throw TExplainedException(code, Joined(parts));
}

TLogListener* TLogListener::fgNewest = nullptr;

TLogListener::TLogListener(ILogger::EQDXLogSeverity level, const TCallback& callback)
    : fLevel(level), fCallback(callback), fOlder(fgNewest) {
  fgNewest = this;
}

TLogListener::~TLogListener() {
  TLogListener** link = &fgNewest;
  while (*link != this) link = &(*link)->fOlder;
  *link = fOlder;
}

bool TLogListener::AnyHears(ILogger::EQDXLogSeverity severity) {
  const TLogListener* listener = fgNewest;
  while (listener != nullptr && severity > listener->fLevel) listener = listener->fOlder;
  return listener != nullptr;
}

void TLogListener::TellAll(ILogger::EQDXLogSeverity severity, const std::string& message) {
  for (const TLogListener* listener = fgNewest; listener != nullptr; listener = listener->fOlder) {
    if (severity <= listener->fLevel) listener->fCallback(severity, message);
  }
}

}  // namespace NVORNQDX20
