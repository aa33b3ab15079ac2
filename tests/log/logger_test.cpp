// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

using namespace NVORNQDX20;

using TSeverity = ILogger::EQDXLogSeverity;
using TMessages = std::vector<std::string>;

const std::string kOpened = "-- QDX Log Opened ----------------------------\n";
const std::string kClosed = "-- QDX Log Closed ----------------------------\n";

class Logger : public ::testing::Test {
 protected:
  void SetUp() override {
    EXPECT_EQ(TLogger::GetInstance(), nullptr);
    EXPECT_EQ(TLogger::Initialize(), kQDXStatusOK);
    fLogger.reset(TLogger::GetInstance());
  }

  TMessages History() const {
    TMessages messages;
    for (const auto& entry : fLogger->GetLog()) messages.push_back(entry.fMessage);
    return messages;
  }

  const TTempDir fDir;
  const std::string fFile = (fDir.Path() / "log").string();
  std::unique_ptr<TLogger> fLogger;
};

TEST_F(Logger, AdmitsByThreshold) {
  fDir.Write("log", "of an earlier run, much longer than what comes now ........................");
  fLogger->SetLogFilename(fFile);
  for (const int severity : {0, 1, 2, 3, 4, 100}) {
    fLogger->OutputLogEntry(static_cast<TSeverity>(severity), std::to_string(severity));
  }
  EXPECT_EQ(History(), (TMessages{"0", "1", "2", "100"}));
  EXPECT_FALSE(fLogger->GetLog().front().fTime.IsNull());

  fLogger->ClearLog();
  fLogger->SetLogThreshold(ILogger::kLogVerbose);
  fLogger->OutputLogEntry(ILogger::kLogVerbose, "two\nlines");
  fLogger->OutputLogEntry(ILogger::kLogDebug, "kept");
  fLogger->SetLogThreshold(ILogger::kLogError);
  fLogger->OutputLogEntry(ILogger::kLogRecordOnly, "kept too");
  EXPECT_EQ(History(), (TMessages{"kept", "kept too"}));
  const std::string lines =
      "PRQ_[Error] 0\nPRQ_[Warning] 1\nPRQ_[Status] 2\nPRQ_[Verbose] two\nlines\nPRQ_[Debug] "
      "kept\n";
  EXPECT_EQ(ReadWholeFile(fFile), kOpened + lines);
  // A child does not inherit the file.
  EXPECT_NE(std::system(("ls -l /proc/self/fd | grep -q '" + fFile + "'").c_str()), 0);
  fLogger.reset();
  EXPECT_EQ(ReadWholeFile(fFile), kOpened + lines + kClosed);
  EXPECT_EQ(TLogger::GetInstance(), nullptr);
}

TEST_F(Logger, WritesMessagesOfAnyLength) {
  fLogger->SetLogFilename(fFile);
  std::string lines = kOpened;
  for (const std::size_t length : {0U, 498U, 499U, 500U, 501U, 512U, 9000U, 70000U}) {
    std::string message(length, 'x');
    if (length > 0) message.front() = '\0';
    fLogger->OutputLogEntry(ILogger::kLogError, message);
    lines += "PRQ_[Error] " + message + "\n";
    EXPECT_EQ(History().back(), message);
    EXPECT_EQ(ReadWholeFile(fFile), lines) << length;  // each line at once
  }
}

TEST_F(Logger, RefusesSeveritiesThatHaveNoLabel) {
  fLogger->SetLogThreshold(static_cast<TSeverity>(10));
  EXPECT_QDX_STATUS(fLogger->OutputLogEntry(static_cast<TSeverity>(5), "five"), kQDXStatusFail);
  fLogger->OutputLogEntry(static_cast<TSeverity>(11), "not admitted");
  EXPECT_QDX_STATUS(fLogger->OutputLogEntry(static_cast<TSeverity>(-1), "kept"), kQDXStatusFail);
  EXPECT_EQ(History(), TMessages{"kept"});
}

TEST_F(Logger, LosesLinesAfterASecondFileButKeepsTheHistory) {
  fLogger->SetLogFilename(fFile);
  errno = EACCES;  // of an earlier call
  EXPECT_QDX_STATUS(fLogger->SetLogFilename(fFile + "2"), kQDXStatusFileSystemError);
  fLogger->OutputLogEntry(ILogger::kLogError, "lost");
  EXPECT_EQ(History(), TMessages{"lost"});
  fLogger.reset();
  EXPECT_EQ(ReadWholeFile(fFile), kOpened);
  EXPECT_FALSE(std::filesystem::exists(fFile + "2"));
}

TEST_F(Logger, RefusesPipesAndCanOpenAFileAfterwards) {
  const std::string pipe = fFile + ".pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_QDX_STATUS(fLogger->SetLogFilename(pipe), kQDXStatusFileSystemError);
  fLogger->OutputLogEntry(ILogger::kLogError, "lost");
  char byte = 0;
  EXPECT_EQ(::read(reader, &byte, 1), 0);  // closed, and nothing written
  ::close(reader);
  fLogger->SetLogFilename(fFile);
  fLogger->OutputLogEntry(ILogger::kLogError, "written");
  EXPECT_EQ(History(), (TMessages{"lost", "written"}));
  EXPECT_EQ(ReadWholeFile(fFile), kOpened + "PRQ_[Error] written\n");
}

TEST_F(Logger, LosesLinesOfAFullDiskButKeepsTheHistory) {
  fLogger->SetLogFilename("/dev/full");
  for (const std::size_t length : {5U, 9000U, 5U}) {
    fLogger->OutputLogEntry(ILogger::kLogError, std::string(length, 'x'));
  }
  EXPECT_EQ(History().size(), 3U);
}

TEST_F(Logger, SaysWhyItsFileCannotBeOpened) {
  EXPECT_QDX_STATUS(fLogger->SetLogFilename(fFile + "/none"), kQDXStatusFileSystemError);
  if (::geteuid() != 0 || ::seteuid(65534) != 0) {
    GTEST_SKIP() << "needs root, to become somebody else";
  }
  const std::string status = StatusThrownBy([&] { fLogger->SetLogFilename(fFile); });
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_EQ(status, "kQDXStatusAccessDenied");
}

TEST_F(Logger, TellsListenersWhateverTheThreshold) {
  fLogger->SetLogThreshold(ILogger::kLogError);
  TMessages outer, inner;
  const auto into = [](TMessages& messages) {
    return [&messages](TSeverity, const std::string& message) { messages.push_back(message); };
  };
  const TLogListener outerListener(ILogger::kLogError, into(outer));
  {
    const TLogListener innerListener(ILogger::kLogWarning, into(inner));
    fLogger->OutputLogEntry(ILogger::kLogWarning, "called");
    LogMessage(ILogger::kLogWarning, {"jo", "ined"});
    LogMessage(ILogger::kLogStatus, {"status"});
    try {
      LogErrorAndThrow(kQDXStatusNotFound, {"a ", "reason"});
    } catch (const TExplainedException& e) {
      EXPECT_EQ(e.GetReason() + e.what(), "a reasonkQDXStatusNotFound");
    }
  }
  LogMessage(ILogger::kLogError, {"last"});
  EXPECT_EQ(inner, (TMessages{"called", "joined", "a reason"}));
  EXPECT_EQ(outer, (TMessages{"a reason", "last"}));
  EXPECT_EQ(History(), outer);  // what was rejected is not kept
}

TEST_F(Logger, AbandonsTheOneBefore) {
  TLogger::Initialize();
  const std::unique_ptr<TLogger> second(TLogger::GetInstance());
  EXPECT_NE(second, fLogger);
  fLogger.reset();  // not the one of the process: that stays
  EXPECT_EQ(TLogger::GetInstance(), second.get());
}
