// SPDX-License-Identifier: Apache-2.0
#include <cli/output.h>

#include <cli/failure.h>

#include <csignal>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include "qdx/cli/standard_output.h"

namespace NVORNQDX20 {
namespace {

TEST(Output, IsWhatIsWritten) {
  const TTerminal terminal;
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  {
    const TStandardOutput output(terminal.Open());
    WriteFileName("a\x1b");
  }
  {
    const TStandardOutput output(ends[1]);
    WriteFileName("a\x1b");
    WriteJSON({{"b", "\xff"}, {"a", nlohmann::ordered_json::array({1})}});
  }
  EXPECT_EQ(terminal.Read(), "a?\n");
  char text[100];
  const auto size = static_cast<std::size_t>(::read(ends[0], text, sizeof text));
  EXPECT_EQ(std::string(text, size),
            "a\x1b\n{\n  \"b\": \"\xef\xbf\xbd\",\n  \"a\": [\n    1\n  ]\n}\n");
  ::close(ends[0]);
}

/// The error line of a write that fails.
std::string FailureToWrite() {
  try {
    WriteOutput("text");
  } catch (const TCommandFailure& failure) {
    return std::to_string(failure.GetExitCode()) + failure.what();
  }
  return "nothing";
}

TEST(Output, FailsWithALineUnlessItsReaderHasGone) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  std::signal(SIGPIPE, SIG_IGN);
  {
    const TStandardOutput output(ends[1]);
    EXPECT_TRUE(OutputHasReader());
    ::close(ends[0]);
    EXPECT_FALSE(OutputHasReader());
    EXPECT_EQ(FailureToWrite(), "4");
  }
  const TStandardOutput output(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_NE(FailureToWrite().find("No space left on device"), std::string::npos);
}

}  // namespace
}  // namespace NVORNQDX20
