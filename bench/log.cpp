// SPDX-License-Identifier: Apache-2.0
// Lines of the log, beside the bare system call.
#include <qdxcore/logger.h>

#include "support/temp_dir.h"

#include <memory>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "operation.h"

namespace NBench {
namespace {

using NVORNQDX20::ILogger;
using NVORNQDX20::TLogger;

const std::string kMessage = "cimxml: 3 values of the document were left out";

TLogger& OpenLog(const TTempDir& folder) {
  TLogger::Initialize();
  TLogger& log = *TLogger::GetInstance();
  log.SetLogFilename(folder.Path() / "log");
  return log;
}

/// The history is cleared now and then, for it is not the file.
TLoop Line() {
  const auto folder = std::make_shared<TTempDir>();
  TLogger& log = OpenLog(*folder);
  return Repeat([folder, &log, lines = 0]() mutable {
    log.OutputLogEntry(ILogger::kLogError, kMessage);
    if (++lines % 1000 == 0) log.ClearLog();
  });
}

TLoop LineByHand() {
  const auto folder = std::make_shared<TTempDir>();
  const int file = ::open((folder->Path() / "log").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  return Repeat([folder, file, line = "PRQ_[Error] " + kMessage + "\n"] {
    return ::write(file, line.data(), line.size());
  });
}

TLoop RejectedLine() {
  TLogger::Initialize();
  return Repeat([log = static_cast<ILogger*>(TLogger::GetInstance())]() mutable {
    Keep(log);
    log->OutputLogEntry(ILogger::kLogVerbose, kMessage);
  });
}

/// As the library itself logs.
TLoop RejectedParts() {
  TLogger::Initialize();
  return Repeat([] {
    NVORNQDX20::LogMessage(ILogger::kLogVerbose, {"cimxml: ", kMessage, " of the document"});
  });
}

TLoop Comparison() {
  return Repeat([threshold = 2]() mutable {
    Keep(threshold);
    return 4 > threshold;
  });
}

}  // namespace

TOperations LogOperations() {
  TOperations all = {
      {"rejected log line", RejectedLine, "a comparison", Comparison, 6.7},
      {"rejected log line, in parts", RejectedParts, "a comparison", Comparison, 6.7}};
  for (const auto& [zone, name] : {std::pair(kZoneSet, "TZ set"),
                                   {kZoneUnset, "TZ unset"},
                                   {kManyVariables, "500 variables"}}) {
    TOperation& line = all.emplace_back();
    line.fName = std::string("log line to a file, ") + name;
    line.fOurs = Line;
    line.fLimitName = "a bare write";
    line.fLimit = LineByHand;
    line.fAim = 1.3;
    line.fZone = zone;
  }
  return all;
}

}  // namespace NBench
