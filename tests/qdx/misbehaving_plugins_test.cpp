// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <csignal>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

#include "qdx/installation.h"

namespace {

using ::testing::IsSubstring;

/// Returns whether a process of this installation runs, or one that a plug-in has left.
bool IsAnyLeft(const TInstallation& installation) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream file(entry.path() / "cmdline");
    std::string command;
    std::getline(file, command);  // fails without an exception if the process has ended
    const bool isOrphan = command == std::string("sleep\0004711\0", 11);
    if (isOrphan || command.find(installation.Folder().parent_path().parent_path()) == 0) {
      return true;
    }
  }
  return false;
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
  TProgramRun Collect(const std::string& file, const std::string& timeout = "3") const {
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
      "hang",  "busy",  "segv",  "abort", "exit",   "_exit",  "quick", "foreign", "one",  "stack",
      "alloc", "twice", "close", "print", "orphan", "setsid", "forks", "block",   "stop", "change"};
  std::vector<std::string> named = {"list_endless", "a_linux"};
  std::vector<std::string> complete;  // what harms nobody in a process of its own
  for (const std::string& place : places) {
    for (const std::string& what : mistakes) {
      const std::string service = place + "_" + what;
      Add(service);
      const bool isLast = place == "end" && (what == "close" ||
                                             what.find("it") == what.size() - 2 || what == "quick");
      const bool isHarmless = what == "orphan" || what == "setsid" || what == "change";
      (isLast || isHarmless ? complete : named).push_back(service);
    }
  }
  Add("list_endless");
  Add("a_linux");
  const TProgramRun run = Collect("together");
  EXPECT_EQ(run.fExitCode, 3);
  for (const std::string& service : named) {
    EXPECT_NE(run.fErrors.find(service), std::string::npos) << service;
  }
  EXPECT_PRED_FORMAT2(
      IsSubstring, "qdx: opening root/open_abort of provider open_abort: it crashed (ABRT) after ",
      run.fErrors);
  EXPECT_FALSE(IsAnyLeft(fInstallation));
  const std::string differences =
      fInstallation.Run({"diff", fFolder.Path() / "alone", fFolder.Path() / "together"}).fOutput;
  EXPECT_EQ(differences.find("root/cimv2"), std::string::npos) << differences;
  for (const std::string& service : complete) {
    EXPECT_EQ(run.fErrors.find(service), std::string::npos) << service;
    EXPECT_PRED_FORMAT2(IsSubstring, "\n+ A.Key=\"1\"\n", differences) << service;
    EXPECT_PRED_FORMAT2(IsSubstring, "+ namespace root/" + service + "\n", differences);
  }
}

TEST_F(QDXMisbehavingPlugins, LeaveNoFileIfTheyAreConsumers) {
  fInstallation.AddPlugin(TESTS "misbehaving_consumer.so", "libmisbehaving.nsc.so");
  for (const std::string what : {"hang", "segv", "_exit", "close", "alloc", "stop", "one"}) {
    const TProgramRun run = fInstallation.RunScript(
        "cd '" + fFolder.Path().string() + "'; export QDX_MISBEHAVE=" + what +
        "; \"$0\" collect --consumer misbehaving --timeout 1 -o x; s=$?; ls; exit $s");
    EXPECT_EQ(run.fExitCode, 5) << what << run.fErrors;
    EXPECT_EQ(run.fOutput, "") << what;
    EXPECT_PRED_FORMAT2(IsSubstring, "consumer misbehaving: ", run.fErrors);
  }
  EXPECT_FALSE(IsAnyLeft(fInstallation));
}

TEST_F(QDXMisbehavingPlugins, EndWithTheCommand) {
  for (const std::string what : {"hang", "forks", "block"}) Add("open_" + what);
  const TProgramRun run = fInstallation.RunScript("timeout -s KILL 1 \"$0\" collect -o /dev/null");
  EXPECT_EQ(run.fExitCode, -SIGKILL);  // the shell has become timeout
  for (int i = 0; i < 100 && IsAnyLeft(fInstallation); ++i) ::usleep(10'000);
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
      "SHELL=/bin/sh script -qec \"'$0' collect --timeout 2 -o /dev/null\" /dev/null </dev/null");
  EXPECT_PRED_FORMAT2(IsSubstring, "\rwaiting for provider open_hang (1 s)", seen.fOutput);
  const TProgramRun narrow = fInstallation.RunScript(
      "SHELL=/bin/sh script -qec \"stty cols 20; '$0' collect --timeout 2 -o /dev/null\" /dev/null "
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
