// SPDX-License-Identifier: Apache-2.0
#include <cli/log_file.h>

#include <fcntl.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace NVORNQDX20 {
namespace {

void RunInChild(void (*work)()) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
}

TEST(LogFile, HasTheLinesOfAllProcessesThatHoldIt) {
  const TLogCapture logger(ILogger::kLogVerbose);
  const TTempDir folder;
  const std::string file = folder.Write("log", "old\n").string();
  static std::string other;
  other = folder.Write("other", "").string();
  static int descriptor;
  descriptor = ::dup(STDIN_FILENO);  // the next one's number
  ::close(descriptor);
  {
    TLogFile log(file, ILogger::kLogDebug, {other, "none"});
    for (const int severity : {0, 1, 2, 3, 4, 100}) {
      LogMessage(static_cast<ILogger::EQDXLogSeverity>(severity), {"text"});
    }
    RunInChild([] { LogMessage(ILogger::kLogError, {"child"}); });
    RunInChild([] {
      ::close(descriptor);
      LogMessage(ILogger::kLogError, {"closed"});
      ::dup2(::open(other.c_str(), O_WRONLY), descriptor);
      LogMessage(ILogger::kLogError, {"reused"});
    });
    EXPECT_TRUE(log.Close());
  }
  LogMessage(ILogger::kLogError, {"later"});
  EXPECT_EQ(ReadWholeFile(file),
            "-- QDX Log Opened ----------------------------\n"
            "PRQ_[Error] text\nPRQ_[Warning] text\nPRQ_[Status] text\nPRQ_[Debug] text\n"
            "PRQ_[Error] child\n"
            "-- QDX Log Closed ----------------------------\n");
  EXPECT_EQ(ReadWholeFile(other), "");
}

}  // namespace
}  // namespace NVORNQDX20
