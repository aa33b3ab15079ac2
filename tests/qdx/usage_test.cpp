// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include "qdx/installation.h"

namespace {

TEST(QDXUsage, IsExplainedInOneLineOrOnRequest) {
  const struct {
    std::vector<std::string> fWords;
    std::string fText;  ///< Within the output, or all of the error but for its end.
    int fExitCode = 2;
  } rows[] = {{{}, "no verb is given"},
              {{"help", "frob"}, "unknown verb 'frob'"},
              {{"help", "identity", "x"}, "unexpected argument 'x'"},
              {{"upload", "file"}, "upload needs an argument: NAME"},
              {{"plugins", "--root", "/"}, "plugins has no option '--root'"},
              {{"plugins", "--log-level", "all"}, "unknown log level 'all'"},
              {{"--help"}, "  identity  Shows the identity", 0},
              {{"help", "identity"}, "  --root DIR         Describe", 0},
              {{"--help", "plugins"}, "Usage: qdx plugins [OPTION]...\n", 0},
              {{"identity", "--version"}, "qdx " QDXCORE_VERSION "\n", 0}};
  const TInstallation installation;
  for (const auto& [words, text, exitCode] : rows) {
    const TProgramRun run = installation.Run(words);
    EXPECT_EQ(run.fExitCode, exitCode) << text;
    EXPECT_EQ(run.fErrors, exitCode == 0 ? "" : "qdx: " + text + ". Try 'qdx --help'.\n");
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, exitCode == 0 ? text : "", run.fOutput);
    EXPECT_EQ(run.fOutput.empty(), exitCode != 0);
  }
}

TEST(QDXOutput, IsMissedWhereItCannotBeWritten) {
  const TInstallation installation;
  const TProgramRun full = installation.RunScript("\"$0\" --version >/dev/full");
  EXPECT_EQ(full.fExitCode, 4);
  EXPECT_EQ(full.fErrors, "qdx: writing standard output: No space left on device\n");
  // The log must not take the place of a descriptor that is closed.
  EXPECT_EQ(installation.RunScript("\"$0\" plugins --log /dev/null >&-").fExitCode, 4);
}

}  // namespace
