// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include "qdx/installation.h"

namespace {

struct TUsage {
  std::vector<std::string> fWords;
  std::string fText;
};

TEST(QDXUsage, ExplainsAMistakeInOneLine) {
  const TUsage rows[] = {{{}, "no verb is given"},
                         {{"help", "frob"}, "unknown verb 'frob'"},
                         {{"help", "identity", "x"}, "unexpected argument 'x'"},
                         {{"upload", "file"}, "upload needs an argument: NAME"},
                         {{"identity", "--json=yes"}, "option '--json' takes no value"},
                         {{"plugins", "--root", "/"}, "plugins has no option '--root'"},
                         {{"plugins", "--log-level", "all"}, "unknown log level 'all'"}};
  const TInstallation installation;
  for (const TUsage& row : rows) {
    const TProgramRun run = installation.Run(row.fWords);
    EXPECT_EQ(run.fExitCode, 2) << row.fText;
    EXPECT_EQ(run.fErrors, "qdx: " + row.fText + ". Try 'qdx --help'.\n");
    EXPECT_EQ(run.fOutput, "");
  }
}

TEST(QDXUsage, HelpsAndTellsItsVersion) {
  const TUsage rows[] = {{{"--help"}, "  identity  Shows the identity"},
                         {{"help", "identity"}, "  --root DIR         Describe"},
                         {{"--help", "plugins"}, "Usage: qdx plugins [OPTION]...\n"},
                         {{"identity", "--version"}, "qdx " QDXCORE_VERSION "\n"}};
  const TInstallation installation;
  for (const TUsage& row : rows) {
    const TProgramRun run = installation.Run(row.fWords);
    EXPECT_EQ(run.fExitCode, 0) << row.fText;
    EXPECT_NE(run.fOutput.find(row.fText), std::string::npos) << run.fOutput;
    EXPECT_EQ(run.fErrors, "");
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
