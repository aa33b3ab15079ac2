// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include "qdx/installation.h"

namespace {

TEST(QDXUsage, IsExplainedInOneLineOrOnRequest) {
  const struct {
    std::vector<std::string> fWords;
    std::string fText;  ///< Within the output, or all of the error but for its end.
    int fExitCode = 2;
  } rows[] = {{{"help", "frob"}, "unknown verb 'frob'"},
              {{"help", "identity", "x"}, "unexpected argument 'x'"},
              {{"help", "help"}, "\n  help      Explains a verb.\n", 0},
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

TEST(QDXUpload, GivesUpOnAFileThatDoesNotCome) {
  const TInstallation installation;
  const TTempDir folder;
  const TProgramRun run = installation.RunScript(
      "cd '" + folder.Path().string() + "'; mkfifo p; timeout 9 \"$0\" upload p x --timeout 1");
  EXPECT_EQ(run.fExitCode, 6);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "qdx: reading p: ", run.fErrors);
}

TEST(QDXOutput, IsMissedWhereItCannotBeWritten) {
  const TInstallation installation;
  const TProgramRun full = installation.RunScript("\"$0\" --version >/dev/full");
  EXPECT_EQ(full.fExitCode, 4);
  EXPECT_EQ(full.fErrors, "qdx: writing standard output: No space left on device\n");
  // The log must not take the place of a descriptor that is closed.
  EXPECT_EQ(installation.RunScript("\"$0\" plugins --log /dev/null >&-").fExitCode, 4);
}

TEST(QDXLog, NeverReplacesWhatTheCommandReadsOrWrites) {
  const std::string other = "this command also reads or writes it otherwise\n";
  const std::string irregular = "it is not a regular file\n";
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"show a --log", "a", other},
      {"diff b a --log", "$PWD/hard", other},
      {"show - <a --log", "a", other},
      {"plugins >>a --log", "a", other},
      {"collect -o ./new --log", "new", other},
      {"redact b -o - --key a --log", "a", other},
      {"diff b b --html ./new --log", "new", other},
      {"identity --root tree --log", "tree/a", "this command also reads what is in tree\n"},
      {"identity --root ./tree/. --log", "tree/b/new", "this command also reads what is in ./tree"},
      {"plugins --log", "${0%/*}/../lib/qdx/new", "this command also reads what is in /"},
      {"download x dangling --log", "new", other},
      {"plugins --log", "link", "it is a symbolic link\n"},
      {"plugins --log", "pipe", irregular},
      {"plugins --log", ".", irregular},
      {"plugins --log", "/dev/zero", irregular},
      {"plugins --log", "no/log", "No such file or directory\n"}};
  const TInstallation installation;
  const TTempDir folder;
  const std::string start = "cd '" + folder.Path().string() + "' || exit 99; ";
  installation.RunScript(start +
                         "echo text >a; ln a hard; ln -s a link; ln -s new dangling; mkfifo pipe; "
                         "mkdir -p tree/b; ln a tree/a");
  for (const auto& [words, log, why] : rows) {
    const TProgramRun run =
        installation.RunScript(start + "timeout 9 \"$0\" " + words + " \"" + log + "\"");
    EXPECT_EQ(run.fExitCode, 4) << words;
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, ": " + why, run.fErrors) << words;
    EXPECT_EQ(ReadWholeFile(folder.Path() / "a"), "text\n") << words;
    for (const char* file : {"new", "tree/b/new"}) EXPECT_FALSE(exists(folder.Path() / file));
  }
}

TEST(QDXOutput, NeverReplacesWhatTheCommandReads) {
  const TInstallation installation;
  const TTempDir folder;
  folder.Write("a", "text\n");
  const std::string start =
      "cd '" + folder.Path().string() + "' || exit 99; ln -sf a link; \"$0\" ";
  for (const std::string words :
       {"report a -o a", "report link -o ./a", "diff b a --html link", "report - -o a <link",
        "redact b --key link -o a", "collect --redact --key a -o a"}) {
    const TProgramRun run = installation.RunScript(start + words);
    EXPECT_EQ(run.fExitCode, 4) << words;
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, ": this command also reads it\n", run.fErrors);
    EXPECT_EQ(ReadWholeFile(folder.Path() / "a"), "text\n") << words;
  }
  folder.Write("-", "text\n");  // is meant by "-" only as a key
  EXPECT_EQ(installation.RunScript(start + "redact b --key - -o ./-").fErrors,
            "qdx: writing ./-: this command also reads it\n");
  for (const std::string words : {"report - -o - <a", "diff - a <a"}) {
    EXPECT_PRED_FORMAT2(::testing::IsSubstring,
                        ": no XML document: ", installation.RunScript(start + words).fErrors);
  }
}

TEST(QDXLog, IsForItsOwnerAndSaysOnceThatItCannotBeWritten) {
  const TInstallation installation;
  installation.AddLinuxProvider();
  const std::string plugins = "cd ${0%/*}; \"$0\" plugins --log ";
  const TProgramRun run = installation.RunScript(plugins + "/dev/full");
  EXPECT_EQ(run.fErrors, "qdx: writing log /dev/full: No space left on device\n");
  EXPECT_EQ(run.fExitCode, 3);
  EXPECT_EQ(installation.RunScript(plugins + "/dev/stderr").fErrors.substr(0, 17),
            "-- QDX Log Opened");
  const std::string twice = plugins + "new >&2; " + plugins + "new >&2; stat -c %a new; cat new";
  EXPECT_EQ(installation.RunScript("umask 0; " + twice).fOutput.substr(0, 21),
            "600\n-- QDX Log Opened");
}

}  // namespace
