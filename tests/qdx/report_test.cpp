// SPDX-License-Identifier: Apache-2.0
#include "qdx/installation.h"

namespace NVORNQDX20 {
namespace {

class QDXReport : public ::testing::Test {
 protected:
  QDXReport() {
    fQDX.AddLinuxProvider();
    fQDX.AddDocumentPlugins();
    fQDX.AddPlugin(QDX_HTML_WRITER, "libhtml.nsc.so");
    fFolder.Write("machine/etc/hostname", "<host>\n");
    fFolder.Write("machine/proc/sys/kernel/hostname", "<host>\n");
  }
  std::string PathOf(const std::string& name) const { return fFolder.Path() / name; }
  static bool IsPage(const std::string& text) {
    return text.rfind("<!DOCTYPE html>", 0) == 0 &&
           text.find("<h1 tabindex=\"-1\">&lt;host&gt;</h1>") != std::string::npos &&
           text.rfind("</html>\n") == text.size() - 8;
  }

  const TInstallation fQDX;
  const TTempDir fFolder;
};

TEST_F(QDXReport, DescribesMachinesAndDocuments) {
  const std::string page = PathOf("page.html");
  const auto written = fQDX.Run({"report", "--root", PathOf("machine"), "-o", page});
  EXPECT_EQ(written.fExitCode, 0) << written.fErrors;
  EXPECT_EQ(written.fOutput, page + "\n");
  EXPECT_TRUE(IsPage(ReadWholeFile(page)));
  EXPECT_EQ(std::filesystem::status(page).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  const std::string document = PathOf("document.xml");
  fQDX.Run({"collect", "--root", PathOf("machine"), "-o", document});
  EXPECT_TRUE(IsPage(fQDX.Run({"report", document, "-o", "-"}).fOutput));
  const std::string compressed = PathOf("page.html.gz");
  EXPECT_TRUE(IsPage(fQDX.RunScript("\"$0\" report " + document + " -o " + compressed +
                                    " >&2 && gzip -dc " + compressed)
                         .fOutput));
  EXPECT_TRUE(
      IsPage(fQDX.RunScript("\"$0\" report - -o /dev/stdout <" + document + " | cat").fOutput));
  // The plug-in gets the namespaces one by one.
  const std::string collected = PathOf("collected.html");
  const auto run =
      fQDX.Run({"collect", "--root", PathOf("machine"), "--consumer", "html", "-o", collected});
  EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
  const std::string text = ReadWholeFile(collected);
  EXPECT_TRUE(IsPage(text));
  EXPECT_NE(text.find("\"namespaces\":[\"root/cimv2\",\"root/qdx\"]"), std::string::npos);
}

TEST_F(QDXReport, ShowsFaultsAndWhatItHardlyKnows) {
  for (const std::string name : {"0", "1"}) {
    fFolder.Write("machine/sys/block/sd" + std::string(name == "0" ? "a" : "b") + "/size/no_file",
                  "");
    fFolder.Write("machine/sys/block/md" + name + "/dev", "9:0\n");
    fFolder.Write("machine/sys/block/md" + name + "/md/level", "raid6\n");
    fFolder.Write("machine/sys/block/md" + name + "/md/array_state", "clean\n");
    fFolder.Write("machine/sys/block/md" + name + "/md/degraded", name == "0" ? "0\n" : "2\n");
  }
  fFolder.Write("machine/sys/block/md1/size", "7814037168\n");
  fFolder.Write("machine/sys/devices/system/edac/mc/mc0/dimm0/size", "4096\n");
  fFolder.Write("machine/sys/devices/system/edac/mc/mc0/dimm0/dimm_ue_count", "1\n");
  fFolder.Write("machine/sys/class/fc_host/host0/port_state", "Online\n");
  const std::string page = fQDX.Run({"report", "--root", PathOf("machine"), "-o", "-"}).fOutput;
  const char* const expected[] = {
      "4 GiB <strong class=\"bad\">1 uncorrected error</strong></p>", "</a>: 2 \u00d7 disk ",
      "<p>md0: raid6, clean <strong class=\"bad\"></strong></p>",
      "md1: raid6 4 TB, clean <strong class=\"bad\">lacks 2 disks<", "\">host0</a></span>"};
  for (const char* const each : expected) EXPECT_NE(page.find(each), std::string::npos) << each;
}

TEST_F(QDXReport, HasDifferences) {
  const std::string a = PathOf("a.xml");
  const std::string b = PathOf("b.xml");
  fQDX.Run({"collect", "--root", PathOf("machine"), "-o", a});
  fFolder.Write("machine/etc/os-release", "ID=debian\nPRETTY_NAME='<b>new</b>'\n");
  fQDX.Run({"collect", "--root", PathOf("machine"), "-o", b});
  const auto run = fQDX.Run({"diff", a, b, "--html", PathOf("page.html")});
  EXPECT_EQ(run.fExitCode, 1) << run.fErrors;
  EXPECT_EQ(run.fOutput, PathOf("page.html") + "\n");
  const std::string page = ReadWholeFile(PathOf("page.html"));
  EXPECT_NE(page.find("&lt;b&gt;new&lt;/b&gt;"), std::string::npos);
  const auto same = fQDX.Run({"diff", a, a, "--html", "-"});
  EXPECT_EQ(same.fExitCode, 0) << same.fErrors;
  EXPECT_NE(same.fOutput.find("<p>no differences</p>"), std::string::npos);
}

TEST_F(QDXReport, SaysWhatIsWrong) {
  struct TRow {
    std::vector<std::string> fWords;
    int fExitCode;
    std::string fError;
  };
  const std::string machine = PathOf("machine");
  std::filesystem::create_symlink("/dev/full", PathOf("full.gz"));
  const TRow rows[] = {
      {{"report"}, 2, "report needs option '--output'"},
      {{"report", "x.xml", "--root", machine, "-o", "-"},
       2,
       "option '--root' cannot be used with a file"},
      {{"report", PathOf("none.xml"), "-o", PathOf("page.html")}, 4, "No such file or directory"},
      {{"report", PathOf("machine/etc/hostname"), "-o", PathOf("page.html")},
       4,
       "reading document"},
      {{"report", "--root", machine, "-o", PathOf("none/page.html")},
       4,
       "its folder does not exist"},
      {{"report", "--root", machine, "-o", machine}, 4, "Is a directory"},
      {{"report", "--root", machine, "-o", PathOf("full.gz")}, 4, "full.gz: No space left on"},
      {{"report", "--root", machine, "-o", "/dev/full"}, 4, "No space left on device"},
      {{"diff", "a", "b", "--html", "-", "--json"},
       2,
       "option '--json' cannot be used with '--html'"},
      {{"collect", "--root", machine, "--consumer", "html", "-o", "/dev/full"},
       4,
       "No space left on device"}};
  for (const TRow& row : rows) {
    const auto run = fQDX.Run(row.fWords);
    EXPECT_EQ(run.fExitCode, row.fExitCode) << run.fErrors;
    EXPECT_NE(run.fErrors.find(row.fError), std::string::npos) << run.fErrors;
  }
  EXPECT_FALSE(std::filesystem::exists(PathOf("page.html")));
}

}  // namespace
}  // namespace NVORNQDX20
