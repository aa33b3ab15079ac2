// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

#include "qdx/installation.h"

namespace {

using ::testing::IsSubstring;

/// Returns whether a process of this installation runs, or one that a plug-in has left.
bool IsAnyRunning(const TInstallation& installation) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream file(entry.path() / "cmdline");
    std::string command;
    std::getline(file, command);  // fails without an exception if the process has ended
    if (command.find(installation.Folder().parent_path().parent_path()) == 0) return true;
  }
  return false;
}

/// Waits a while, since a process that was killed may take some time to end.
bool IsAnyLeft(const TInstallation& installation) {
  for (int i = 0; i < 100 && IsAnyRunning(installation); ++i) ::usleep(10'000);
  return IsAnyRunning(installation);
}

class QDXMisbehavingPlugins : public ::testing::Test {
 protected:
  QDXMisbehavingPlugins() {
    fInstallation.AddLinuxProvider();
    fInstallation.AddDocumentPlugins();
    fTree.Write("proc/sys/kernel/hostname", "server\n");
  }
  void Add(const std::string& service) const {
    fInstallation.AddPlugin(TESTS "misbehaving_provider.so", "lib" + service + ".nsp.so");
  }
  TProgramRun Collect(const std::string& file, const std::string& timeout = "5") const {
    return fInstallation.Run(
        {"collect", "--timeout", timeout, "--root", fTree.Path(), "-o", fFolder.Path() / file});
  }

  const TInstallation fInstallation;
  const TTempDir fTree;
  const TTempDir fFolder;
};

TEST_F(QDXMisbehavingPlugins, AreNamedAndChangeNothingElse) {
  ASSERT_EQ(Collect("alone").fExitCode, 0);
  const std::string places[] = {"init", "name", "list", "open", "read", "end"};
  const std::vector<std::string> mistakes = {
      "hang",  "busy",  "segv",  "abort",  "exit",  "_exit", "quick",  "foreign",
      "one",   "stack", "alloc", "twice",  "close", "print", "orphan", "setsid",
      "forks", "block", "stop",  "change", "noise", "lost"};
  std::vector<std::string> named = {"a_linux",     "list_endless", "read_endless",
                                    "forge_cut",   "forge_empty",  "forge_linux",
                                    "forge_other", "forge_pipe",   "forge_text"};
  for (const std::string& service : named) Add(service);
  std::vector<std::string> complete;  // what harms nobody in a process of its own
  for (const std::string& place : places) {
    for (const std::string& what : mistakes) {
      const std::string service = place + "_" + what;
      Add(service);
      // It has delivered everything.
      const bool isLast = place == "end" && (what == "close" || what == "quick" ||
                                             what.find("it") == what.size() - 2);
      const bool isHarmless = what == "orphan" || what == "setsid" || what == "change";
      (isLast || isHarmless ? complete : named).push_back(service);
    }
  }
  const TProgramRun run = Collect("together");
  EXPECT_EQ(run.fExitCode, 3);
  for (const std::string& service : named) {
    EXPECT_NE(run.fErrors.find(service), std::string::npos) << service;
  }
  EXPECT_PRED_FORMAT2(
      IsSubstring, "qdx: opening root/open_abort of provider open_abort: it crashed (ABRT) after ",
      run.fErrors);
  for (const std::string line :
       {"reading the answer about root/forge_cut of provider forge_cut: it ends early, before byte "
        "13\n",
        "reading the answer of root/forge_other of provider forge_other: it delivers what it was "
        "not asked for\n",
        "open_lost: it was lost after "}) {
    EXPECT_PRED_FORMAT2(IsSubstring, line, run.fErrors);
  }
  EXPECT_FALSE(IsAnyLeft(fInstallation));
  const std::string differences =
      fInstallation.Run({"diff", fFolder.Path() / "alone", fFolder.Path() / "together"}).fOutput;
  EXPECT_EQ(differences.find("root/cimv2"), std::string::npos) << differences;
  for (const std::string& service : complete) {
    EXPECT_EQ(run.fErrors.find(service), std::string::npos) << service;
    EXPECT_PRED_FORMAT2(IsSubstring, "\n+ A 1\n", differences) << service;
    EXPECT_PRED_FORMAT2(IsSubstring, "+ namespace root/" + service + "\n", differences);
  }
}

TEST_F(QDXMisbehavingPlugins, DeliverWhatADocumentCanHold) {
  Add("odd");
  const auto x = (fFolder.Path() / "x").string();
  const TProgramRun run = Collect("x");
  EXPECT_EQ(
      run.fErrors,
      "qdx: root/odd of provider odd: 2 characters that a document cannot hold were replaced\n"
      "qdx: cimxml: 1 qualifier lost unknown bits of scope or flavor in " +
          x + ", the first: Strange\n");
  EXPECT_EQ(run.fExitCode, 3);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"show", "--raw", x, "root/odd:Odd"},
        {"show", "--raw", "root/odd:Odd"}}) {
    EXPECT_PRED_FORMAT2(IsSubstring,
                        "      Text      a\uFFFD\uFFFDb\n"
                        "      ToItself  Odd.Key=\"1\"\n"
                        "      ToLater   Later.Key=\"2\"\n"
                        "      ToOther   root/other:Foreign.Key=\"2\"\n",
                        fInstallation.Run(arguments).fOutput);
  }
}

TEST_F(QDXMisbehavingPlugins, LeaveNoFileIfTheyAreConsumers) {
  fInstallation.AddPlugin(TESTS "misbehaving_consumer.so", "libmisbehaving.nsc.so");
  fTree.Write("etc/hostname", "srv1\n");
  // All mistakes in one operation at the same time.
  const TProgramRun run = fInstallation.RunScript(
      "cd '" + fFolder.Path().string() +
      "'; for where in init create name write end; do for what in hang busy segv abort exit _exit "
      "quick foreign one stack alloc twice close print orphan setsid forks block stop change noise "
      "lost; do (d=${where}_$what; mkdir $d; cd $d; export QDX_MISBEHAVE=$d; "
      "\"$0\" collect --consumer misbehaving --timeout 5 --memory 200 --provider linux --root '" +
      fTree.Path().string() +
      "' -o x 2>&1; "
      "echo $where $what $? $(ls)) >$where-$what & done; wait; cat $where-*; done");
  std::istringstream lines(run.fOutput);
  int results = 0;
  std::string errors;
  for (std::string line; std::getline(lines, line); errors += line) {
    if (line.compare(0, 5, "qdx: ") == 0 || line == "x") continue;
    const bool isHarmless = line.find(" orphan ") != line.npos ||
                            line.find(" setsid ") != line.npos ||
                            line.find(" change ") != line.npos;
    const bool isLoading = line.compare(0, 4, "init") == 0 || line.compare(0, 6, "create") == 0;
    const std::string expected = isHarmless ? " 0 x" : isLoading ? " 4" : " 5";
    EXPECT_EQ(line.substr(line.find(' ', line.find(' ') + 1)), expected) << line << errors;
    EXPECT_TRUE(isHarmless || errors.find("misbehaving") != errors.npos) << line << errors;
    errors.clear();
    ++results;
  }
  EXPECT_EQ(results, 5 * 22);
  EXPECT_FALSE(IsAnyLeft(fInstallation));
  const TProgramRun silent = fInstallation.RunScript(
      "cd '" + fTree.Path().string() +
      "'; export QDX_MISBEHAVE=silent; for f in ./x - /dev/null; do "
      "\"$0\" collect --consumer misbehaving --provider linux -o $f; echo $?; done; ls x");
  EXPECT_EQ(silent.fOutput, "5\n5\n0\n");
  EXPECT_PRED_FORMAT2(IsSubstring, "writing document ./x: consumer misbehaving wrote nothing\n",
                      silent.fErrors);
}

TEST_F(QDXMisbehavingPlugins, EndWithTheCommand) {
  for (const std::string what : {"hang", "forks", "block"}) Add("open_" + what);
  const TProgramRun run = fInstallation.RunScript("timeout -s KILL 1 \"$0\" collect -o /dev/null");
  EXPECT_EQ(run.fExitCode, -SIGKILL);  // the shell has become timeout
  EXPECT_FALSE(IsAnyLeft(fInstallation));
}

TEST_F(QDXMisbehavingPlugins, HaveThePrivilegesOfAUser) {
  if (::getuid() != 0) GTEST_SKIP() << "needs root";
  fTree.Write("proc/loadavg", "1 2 3 4/5 6\n");
  const auto secret = fTree.Write("sys/class/dmi/id/product_serial", "23A1234\n");
  ::chmod(secret.c_str(), 0600);
  for (const auto& folder : {fTree.Path(), fInstallation.Folder().parent_path().parent_path()}) {
    ::chmod(folder.c_str(), 0755);  // readable for that user
  }
  const TProgramRun run = fInstallation.RunScript(
      "cd '" + fFolder.Path().string() + "'; \"$0\" collect --user nobody --root '" +
      fTree.Path().string() + "' -o x; \"$0\" show x VORNSG_ComputerSystem");
  EXPECT_EQ(run.fErrors, "");
  EXPECT_PRED_FORMAT2(IsSubstring, "product_serial: Permission denied", run.fOutput);
}

TEST_F(QDXMisbehavingPlugins, AreWaitedForByName) {
  Add("open_hang");
  const TProgramRun seen = fInstallation.RunScript(
      "SHELL=/bin/sh script -qec \"'$0' collect --provider open_hang --timeout 2 -o /dev/null\" "
      "/dev/null </dev/null");
  EXPECT_PRED_FORMAT2(IsSubstring, "\rwaiting for provider open_hang (1 s)", seen.fOutput);
  const TProgramRun narrow = fInstallation.RunScript(
      "SHELL=/bin/sh script -qec \"stty cols 20; '$0' collect --provider open_hang --timeout 2 -o "
      "/dev/null\" /dev/null "
      "</dev/null");
  EXPECT_PRED_FORMAT2(IsSubstring, "\rwaiting for provide\r", narrow.fOutput);
}

/// A file system whose server never answers, in a name space of its own.
TEST_F(QDXMisbehavingPlugins, MayHangOnADeadFileSystem) {
  const std::string mount =
      "mkdir dead; exec 5<>/dev/fuse && unshare -m sh -c 'mount -t fuse -o "
      "fd=5,rootmode=40000,user_id=0,group_id=0 dead dead && \"$0\" collect --timeout 1 --root "
      "dead -o x' \"$0\"";
  if (::getuid() != 0 ||
      fInstallation.RunScript("exec 5<>/dev/fuse && unshare -m true").fExitCode != 0) {
    GTEST_SKIP() << "needs root and /dev/fuse";
  }
  const TProgramRun run =
      fInstallation.RunScript("cd '" + fFolder.Path().string() + "' || exit; " + mount);
  EXPECT_EQ(run.fExitCode, 4);
  EXPECT_PRED_FORMAT2(IsSubstring, "qdx: reading root folder dead: it did not come back within 1 s",
                      run.fErrors);
}

}  // namespace
