// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include <csignal>

#include <unistd.h>

#include <gtest/gtest.h>

#include "qdx/installation.h"

namespace {

using ::testing::IsSubstring;

TEST(QDXBadPlugins, AreRefusedBeforeTheyCanDoHarm) {
  const std::string good = ReadWholeFile(TESTS "test_provider.so");
  const auto changed = [&good](std::size_t position, char byte) {
    return std::string(good).replace(position, 1, 1, byte);
  };
  // The header of the segment with the notes, a number 4 and flags 4; 34 is in its size.
  const std::size_t notes = good.substr(0, 1000).rfind(std::string("\4\0\0\0\4\0\0\0", 8));
  const std::string flags = "; 'pkg-config --cflags qdxcore' prints the flags that it needs";
  const std::vector<std::vector<std::string>> files = {
      // service, contents, why
      {"annotated", changed(notes + 34, 32), "it has more than 1048576 bytes of notes"},
      {"cut", good.substr(0, 5000), "it is cut off"},
      {"debug", ReadWholeFile(TESTS "debug_provider.so"), "it was built with _GLIBCXX_DEBUG"},
      {"empty", "", "it is cut off"},
      {"future", ReadWholeFile(TESTS "future_provider.so"),
       "it was built against version 7.1.0 of the interfaces, another major version "
       "than " QDXCORE_VERSION "; build it again with the headers that are installed"},
      {"mips", changed(18, 8), "it is built for another kind of machine"},
      {"segmented", changed(57, 2), "it has more than 256 segments"},
      {"text", "no more than text", "it is not a library"},
      {"unstamped", changed(good.find("QDXcore"), 'P'),
       "it carries no build stamp: no source file of it includes <qdxcore/interfaces.h>"},
      {"without_handler", ReadWholeFile(TESTS "handlerless_provider.so"),
       "it was built without BOOST_ENABLE_ASSERT_HANDLER" + flags},
      {"without_plain_counts", ReadWholeFile(TESTS "counting_provider.so"),
       "it was built without BOOST_SP_DISABLE_THREADS" + flags}};

  const TInstallation installation;
  installation.AddLinuxProvider();
  std::string lines;
  const auto expect = [&](const std::string& service, const std::string& why) {
    std::string name = "lib" + service + ".nsp.so";
    lines += "qdx: loading provider " + (installation.Folder() / name).string() + ": " + why + "\n";
    return name;
  };
  for (const auto& file : files) {
    installation.AddBrokenPlugin(expect(file[0], file[2]), file[1]);
  }
  const std::filesystem::path folder = installation.Folder();
  create_directory(folder / expect("x_folder", "it is not a file"));
  create_symlink("nowhere", folder / expect("x_link", "it is a link that leads nowhere"));
  installation.AddBrokenPlugin("libaside.nsp.so.old");
  const TProgramRun run = installation.Run({"plugins"});
  EXPECT_EQ(run.fErrors, lines);
  EXPECT_EQ(run.fExitCode, 3);
}

TEST(QDXBadPlugins, AreNotLoadedByRootIfOthersCanWriteThem) {
  const TInstallation installation;
  installation.AddLinuxProvider();
  const std::filesystem::path folder = installation.Folder();
  permissions(folder, std::filesystem::perms::others_write, std::filesystem::perm_options::add);
  const TProgramRun run = installation.Run({"identity", "--json"});
  const bool isRoot = ::geteuid() == 0;
  EXPECT_EQ(run.fExitCode, isRoot ? 5 : 0);
  EXPECT_EQ(run.fErrors.substr(0, run.fErrors.find('\n') + 1),
            isRoot ? "qdx: loading provider " + (folder / "liblinux.nsp.so").string() +
                         ": root does not load it: everybody may write to folder " +
                         folder.string() + "; 'chmod o-w' takes that right away\n"
                   : "");
  installation.AddBrokenPlugin("libcurl.so");
  const TProgramRun upload = installation.RunScript("\"$0\" upload \"$0\" x");
  EXPECT_PRED_FORMAT2(IsSubstring,
                      isRoot ? "root does not load " + (folder / "libcurl.so").string() + ": every"
                             : "libcurl.so: file too short",
                      upload.fErrors);
}

TEST(QDXBadPlugins, MayFailOnceTheyAreLoaded) {
  const TInstallation installation;
  installation.AddLinuxProvider();
  installation.AddPlugin(TESTS "incomplete_provider.so", "liba.nsp.so");
  installation.AddPlugin(TESTS "shy_provider.so", "libb.nsp.so");
  installation.AddPlugin(TESTS "throwing_provider.so", "libc.nsp.so");
  const std::pair<std::string, std::string> rows[] = {
      {"plugins", "listing the namespaces of provider bad: it failed and gave no reason"},
      {"identity", "opening root/cimv2 of provider bad: the table is locked"}};
  for (const auto& [verb, line] : rows) {
    const TProgramRun run = installation.Run({verb});
    EXPECT_PRED_FORMAT2(IsSubstring, "/liba.nsp.so: undefined symbol: ", run.fErrors);
    const std::string unnamed = "/libb.nsp.so: it registers no provider under a name of its own\n";
    EXPECT_PRED_FORMAT2(IsSubstring, unnamed + "qdx: " + line + "\n", run.fErrors);
    EXPECT_NE(run.fOutput, "");
    EXPECT_EQ(run.fExitCode, 3);
  }
}

TEST(QDXBadPlugins, DoNotMatterUnlessTheyAreNamed) {
  const TInstallation installation;
  const std::string reader = (installation.Folder() / "libcimxml.nsp.so").string();
  installation.AddBrokenPlugin("libcimxml.nsp.so",
                               ReadWholeFile(TESTS "test_provider.so").substr(0, 5000));
  installation.AddLinuxProvider();
  EXPECT_EQ(installation.Run({"show", "--provider", "linux", "--depth", "0"}).fErrors, "");
  const TProgramRun none = installation.Run({"show", "--provider", "cimxml"});
  EXPECT_PRED_FORMAT2(IsSubstring, reader + ": it is cut off\nqdx: looking for", none.fErrors);
  EXPECT_EQ(none.fExitCode, 4);
}

}  // namespace
