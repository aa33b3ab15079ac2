// SPDX-License-Identifier: Apache-2.0
#include <cli/output.h>

#include <cli/failure.h>

#include <csignal>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "qdx/cli/standard_output.h"

namespace NVORNQDX20 {
namespace {

TEST(Output, IsMadeFitForATerminalOnly) {
  for (const auto& [kind, text] : {std::pair{TStandardOutput::kPipe, "a\x1b\n"},
                                   std::pair{TStandardOutput::kTerminal, "a?\n"}}) {
    const TStandardOutput output(kind);
    WriteFileName("a\x1b");
    EXPECT_EQ(output.Read(), text);
  }
}

TEST(Output, HasNoCharactersInJSONThatATerminalObeys) {
  const TStandardOutput output(TStandardOutput::kPipe);
  WriteJSON({{"a", "\u009b\u202e\u007f\u00e9"}});
  EXPECT_EQ(output.Read(), "{\n  \"a\": \"\\u009b\\u202e\\u007f\u00e9\"\n}\n");
}

TEST(Output, FailsSilentlyOnceItsReaderHasGone) {
  std::signal(SIGPIPE, SIG_IGN);
  TStandardOutput output(TStandardOutput::kPipe);
  EXPECT_TRUE(OutputHasReader());
  output.CloseReadEnd();
  EXPECT_FALSE(OutputHasReader());
  try {
    WriteOutput("text");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const TCommandFailure& failure) {
    EXPECT_STREQ(failure.what(), "");
    EXPECT_EQ(failure.GetExitCode(), kExitBadInput);
  }
}

}  // namespace
}  // namespace NVORNQDX20
