// SPDX-License-Identifier: Apache-2.0
#include <cli/log_file.h>

#include <fcntl.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "support/log_capture.h"
#include "support/temp_dir.h"

namespace NVORNQDX20 {
namespace {

TEST(LogFile, HasTheLinesOfAllProcessesThatHoldIt) {
  const TLogCapture logger;
  const TTempDir folder;
  const std::string file = folder.Write("log", "old\n"), other = folder.Write("other", "");
  const int descriptor = ::dup(STDIN_FILENO);  // the log's number
  ::close(descriptor);
  TLogFile log(file, ILogger::kLogDebug, {other});
  for (const int severity : {0, 1, 2, 3, 4, 100}) {
    LogMessage(static_cast<ILogger::EQDXLogSeverity>(severity), {"text"});
  }
  if (::fork() == 0) {
    LogMessage(ILogger::kLogError, {"child"});
    ::close(descriptor);
    LogMessage(ILogger::kLogError, {"closed"});
    ::dup2(::open(other.c_str(), O_WRONLY), descriptor);
    LogMessage(ILogger::kLogError, {"reused"});
    ::_exit(0);
  }
  ::wait(nullptr);
  EXPECT_TRUE(log.Close());
  EXPECT_EQ(ReadWholeFile(file),
            "-- QDX Log Opened ----------------------------\n"
            "PRQ_[Error] text\nPRQ_[Warning] text\nPRQ_[Status] text\nPRQ_[Debug] text\n"
            "PRQ_[Error] child\n"
            "-- QDX Log Closed ----------------------------\n");
  EXPECT_EQ(ReadWholeFile(other), "");
}

}  // namespace
}  // namespace NVORNQDX20
