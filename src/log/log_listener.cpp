// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>

namespace NVORNQDX20 {

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

void TLogListener::TellAll(ILogger::EQDXLogSeverity severity, const std::string& message) {
  for (const TLogListener* listener = fgNewest; listener != nullptr; listener = listener->fOlder) {
    if (severity <= listener->fLevel) listener->fCallback(severity, message);
  }
}

}  // namespace NVORNQDX20
