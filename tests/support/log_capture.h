// SPDX-License-Identifier: Apache-2.0
/// A core logger for the length of a test, whose history the test reads.
#ifndef TESTS_SUPPORT_LOG_CAPTURE_H_
#define TESTS_SUPPORT_LOG_CAPTURE_H_

#include <qdxcore/logger.h>

#include <memory>

class TLogCapture {
 public:
  explicit TLogCapture(
      NVORNQDX20::ILogger::EQDXLogSeverity threshold = NVORNQDX20::ILogger::kLogVerbose)
      : fLogger((NVORNQDX20::TLogger::Initialize(), NVORNQDX20::TLogger::GetInstance())) {
    fLogger->SetLogThreshold(threshold);
  }

  /// The messages so far, each behind its severity's number and a blank: "0 Failed opening x".
  std::vector<std::string> Messages() const {
    std::vector<std::string> messages;
    for (const auto& entry : fLogger->GetLog()) {
      messages.push_back(std::to_string(entry.fSeverity) + " " + entry.fMessage);
    }
    return messages;
  }

 private:
  std::unique_ptr<NVORNQDX20::TLogger> fLogger;
};

#endif  // TESTS_SUPPORT_LOG_CAPTURE_H_
