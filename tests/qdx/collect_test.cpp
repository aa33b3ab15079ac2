// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "qdx/installation.h"

namespace {

using ::testing::IsNotSubstring;
using ::testing::IsSubstring;

/// The command with the document plug-ins and the provider "linux", and a tree for a server.
class QDXCollect : public ::testing::Test {
 protected:
  QDXCollect() {
    fInstallation.AddDocumentPlugins();
    fInstallation.AddLinuxProvider();
    fTree.Write("proc/sys/kernel/hostname", "../srv 1\n");
    fTree.Write("sys/class/dmi/id/product_serial", "23A1234\n");
  }
  std::string Path(const std::string& name) const { return (fFolder.Path() / name).string(); }
  bool LeftNothing() const { return std::filesystem::is_empty(fFolder.Path()); }
  /// A script in the folder of the documents; "$1" is the tree.
  TProgramRun RunScript(const std::string& script) const {
    return fInstallation.RunScript("cd '" + fFolder.Path().string() + "' || exit 99; set -- '" +
                                   fTree.Path().string() + "'\n" + script);
  }

  const TInstallation fInstallation;
  const TTempDir fTree;
  const TTempDir fFolder;
};

TEST_F(QDXCollect, WritesWhatComparesEqualUntilTheMachineChanges) {
  const std::string a = Path("a.xml.gz"), b = Path("b.xml"), root = fTree.Path().string();
  EXPECT_EQ(fInstallation.Run({"collect", "--root", root, "-o", a}).fOutput, a + "\n");
  EXPECT_EQ(ReadWholeFile(a).substr(0, 2), "\x1f\x8b");
  ASSERT_EQ(RunScript("\"$0\" collect --root \"$1\" -o - >b.xml").fExitCode, 0);
  const TProgramRun same = fInstallation.Run({"diff", a, b});
  EXPECT_EQ(same.fExitCode, 0) << same.fOutput << same.fErrors;
  fTree.Write("sys/class/dmi/id/product_serial", "23A9999\n");
  ASSERT_EQ(fInstallation.Run({"collect", "--root", root, "--output", b}).fExitCode, 0);
  const TProgramRun changed = fInstallation.Run({"diff", a, b});
  EXPECT_EQ(changed.fExitCode, 1);
  EXPECT_PRED_FORMAT2(IsSubstring, "    ~ SerialNumber  23A1234 -> 23A9999\n", changed.fOutput);
}

TEST_F(QDXCollect, LeavesOutPartsThatDiffThenDoesNotCompare) {
  fTree.Write("sys/block/sda/device/model", "SSD\n");
  const std::string collect = "\"$0\" collect --root \"$1\" ";
  ASSERT_EQ(RunScript(collect + "-o a.xml").fExitCode, 0);
  ASSERT_EQ(
      RunScript(collect + "--only disks,buses --only network --without disks -o b.xml").fExitCode,
      0);
  const TProgramRun run = RunScript("\"$0\" diff a.xml b.xml");
  EXPECT_EQ(run.fExitCode, 0);
  EXPECT_EQ(run.fOutput, "");
  EXPECT_PRED_FORMAT2(IsSubstring, "qdx: not comparing part disks: it is left out of b.xml\n",
                      run.fErrors);
  const std::string show = RunScript("\"$0\" show b.xml").fOutput;
  EXPECT_PRED_FORMAT2(IsSubstring, "Parts           { network, buses }\n", show);
  EXPECT_PRED_FORMAT2(IsNotSubstring, "VORNSG_DiskDrive", show);
  // Nothing ties the machine to a device, whether or not a part is left out.
  EXPECT_EQ(RunScript("rm -r \"$1/sys/block\"; " + collect + "-o a.xml >a; \"$0\" diff a.xml b.xml")
                .fExitCode,
            0);
}

TEST_F(QDXCollect, DistinguishesWhatCannotBeReadFromWhatIsNotThere) {
  for (const char* device : {"sg0", "sg1"}) {
    fTree.Write(std::string("sys/class/scsi_generic/") + device + "/device/type", "0\n");
  }
  const std::filesystem::path root = fTree.Path(), devices = root / "sys/class/scsi_generic";
  ASSERT_EQ(RunScript("\"$0\" collect --root \"$1\" -o a").fExitCode, 0);
  remove_all(devices);
  ASSERT_EQ(RunScript("\"$0\" collect --root \"$1\" -o without").fExitCode, 0);
  EXPECT_EQ(RunScript("\"$0\" diff a without").fExitCode, 1);
  create_symlink("scsi_generic", devices);
  std::filesystem::remove(root / "proc/sys/kernel/hostname");
  create_directory(root / "proc/sys/kernel/hostname");
  const TProgramRun collected = RunScript("\"$0\" collect --root \"$1\" -o b");
  const std::string reason = "/sys/class/scsi_generic: Too many levels of symbolic links";
  EXPECT_PRED_FORMAT2(IsSubstring, "describing VORNSG_SCSIDevice of root/cimv2: " + reason,
                      collected.fErrors);
  EXPECT_EQ(collected.fExitCode, 3);
  EXPECT_EQ(RunScript("\"$0\" show b VORNSG_SCSIDevice").fExitCode, 3);
  for (const auto& [words, mark] : {std::pair{"diff a b", "- "}, {"diff b a", "+ "}}) {
    const TProgramRun run = RunScript(std::string("\"$0\" ") + words);
    EXPECT_EQ(run.fExitCode, 3);
    EXPECT_PRED_FORMAT2(IsSubstring, "\n? SCSIDevice /dev/sg1  (not known: " + reason + ")\n",
                        run.fOutput);
    EXPECT_PRED_FORMAT2(IsNotSubstring, mark + std::string("SCSI"), run.fOutput);
    EXPECT_PRED_FORMAT2(IsNotSubstring, mark + std::string("OperatingSystem"), run.fOutput);
    EXPECT_PRED_FORMAT2(
        IsSubstring, "  (not known: /proc/sys/kernel/hostname: not a regular file)\n", run.fOutput);
  }
}

TEST_F(QDXCollect, NamesTheDocumentAfterTheMachineForItsOwnerAlone) {
  const TProgramRun run = RunScript(
      "f=$(\"$0\" collect --root \"$1\"); echo $f; stat -c %a $f; "
      "[[ $f =~ ^_.-srv-1-[0-9]{8}T[0-9]{6}\\.xml\\.gz$ ]]");
  EXPECT_EQ(run.fExitCode, 0) << run.fOutput;
  EXPECT_PRED_FORMAT2(IsSubstring, "\n600\n", run.fOutput);
  const TProgramRun taken = RunScript(
      "now=$(date +%s); for s in 0 1 2 3 4; do "
      ": >\"_.-srv-1-$(date -d \"@$((now + s))\" +%Y%m%dT%H%M%S).xml.gz\"; done; "
      "\"$0\" collect --root \"$1\"");
  EXPECT_PRED_FORMAT2(IsSubstring, "-2.xml.gz\n", taken.fOutput);
}

TEST_F(QDXCollect, GoesOnWithoutWhatFailsAndSaysSoInTheDocument) {
  fInstallation.AddPlugin(TESTS "sample_provider.so", "libsample.nsp.so");
  fInstallation.AddPlugin(TESTS "bad_provider.so", "libbad.nsp.so");
  fInstallation.AddBrokenPlugin("liba.nsp.so");
  const std::string file = Path("x.xml"), log = Path("log");
  const TProgramRun run =
      fInstallation.Run({"collect", "-o", file, "--log", log, "--log-level", "error"});
  EXPECT_EQ(run.fExitCode, 3);
  EXPECT_EQ(std::count(run.fErrors.begin(), run.fErrors.end(), '\n'), 5);
  // In the name of the bad provider's namespace; the file has its final name already.
  const std::string replaced = " characters that XML cannot hold were replaced in " + file;
  EXPECT_PRED_FORMAT2(IsSubstring, replaced, run.fErrors);
  const std::string line =
      "opening root/sample of provider spoiled: it was already collected from provider sample";
  EXPECT_PRED_FORMAT2(IsSubstring, "\nqdx: " + line + "\n", run.fErrors);
  // Only errors were asked for. Those have the status, which the operator need not read.
  EXPECT_PRED_FORMAT2(IsNotSubstring, "[Warning]", ReadWholeFile(log));
  const std::string logged = "\nPRQ_[Error] " + line + " [kQDXStatusAlreadyExists]\n";
  EXPECT_PRED_FORMAT2(IsSubstring, logged, ReadWholeFile(log));
  const auto failures =
      fInstallation
          .Run({"show", file, "VORNSG_CollectionFailure", "--properties=Operation,Provider,Reason"})
          .fOutput;
  for (const std::string failure :
       {"loading\n      Provider   a\n      Reason     it is cut off\n",
        "opening\n      Provider   bad\n      Reason     the table is locked\n",
        "opening\n      Provider   spoiled\n      Reason     it was already collected from "
        "provider sample\n",
        "reading\n      Provider   spoiled\n      Reason     permission denied\n"}) {
    EXPECT_PRED_FORMAT2(IsSubstring, "      Operation  " + failure, failures);
  }
  // What was copied before the failure stays.
  EXPECT_EQ(fInstallation.Run({"show", file, "root/spoiled:Sample_Many", "--depth=1"}).fOutput,
            "root/spoiled\n  Sample_Many  (1 instance)\n");
}

TEST_F(QDXCollect, BeginsAnewWithoutWhatAConsumerRefuses) {
  fInstallation.AddPlugin(TESTS "sample_provider.so", "libsample.nsp.so");
  fInstallation.AddPlugin(TESTS "picky_consumer.so", "libpicky.nsc.so");
  const std::string collect = "\"$0\" collect --root \"$1\" --consumer picky --provider sample ";
  const TProgramRun run = RunScript(collect + "--provider linux -o x; s=$?; cat x; exit $s");
  EXPECT_EQ(run.fExitCode, 3);
  EXPECT_EQ(run.fOutput, "x\nroot/cimv2 of linux\nroot/qdx\n");
  EXPECT_EQ(run.fErrors,
            "qdx: shortened root/cimv2\nqdx: shortened root/sample\n"
            "qdx: writing root/sample of provider sample: consumer picky: not that one\n"
            "qdx: shortened root/qdx\n");
  EXPECT_EQ(RunScript(collect + "-o y").fExitCode, 5);
  const std::string warned = "\"$0\" collect --root \"$1\" --consumer picky --provider linux -o z";
  EXPECT_EQ(RunScript(warned).fExitCode, 3);
}

TEST_F(QDXCollect, WritesForOldReadersOnRequest) {
  const TProgramRun run = RunScript(
      "for o in '' --old-readers; do \"$0\" collect $o --root \"$1\" -o x.xml >y; "
      "grep -o 'DTDVERSION=[^>]*' x.xml; rm -f x.xml y; done");
  EXPECT_EQ(run.fOutput, "DTDVERSION=\"2.4\"\nDTDVERSION=\"2.0\"\n");
}

TEST_F(QDXCollect, WritesNothingWhereNothingIsCollected) {
  const TProgramRun empty = RunScript("mkdir e; \"$0\" collect --root e; s=$?; rmdir e; exit $s");
  EXPECT_EQ(empty.fExitCode, 5);
  EXPECT_PRED_FORMAT2(IsSubstring, "below e: all values are missing; ", empty.fErrors);
  std::filesystem::remove(fInstallation.Folder() / "liblinux.nsp.so");
  fInstallation.AddPlugin(TESTS "bad_provider.so", "libbad.nsp.so");
  EXPECT_EQ(RunScript("\"$0\" collect -o x.xml").fExitCode, 5);
  std::filesystem::remove(fInstallation.Folder() / "libcimxml.nsc.so");
  EXPECT_EQ(RunScript("\"$0\" collect -o x.xml").fExitCode, 5);
  EXPECT_TRUE(LeftNothing());
}

TEST_F(QDXCollect, LeavesWhatWasThereWhereItCannotWrite) {
  const std::pair<std::string, std::string> rows[] = {
      // With room for what the provider delivers, but not for the record as well.
      {"\"$0\" collect -o x.xml >x; n=$(stat -c %s x.xml); rm x; echo old >x.xml; "
       "ulimit -f $((n / 1024 - 1)); \"$0\" collect -o x.xml; s=$?; grep -q old * && rm x.xml; "
       "exit $s",
       "writing document x.xml: File too large\n"},
      {"ln -s no x; trap 'rm x' EXIT; \"$0\" collect -ox",
       "following link x: No such file or directory\n"},
      {"\"$0\" collect --consumer none -o x.xml", "loading consumer /"}};
  for (const auto& [script, error] : rows) {
    const TProgramRun run = RunScript(script);
    EXPECT_EQ(run.fExitCode, 4) << script;
    EXPECT_EQ(run.fErrors.find("qdx: " + error), 0U) << run.fErrors;
    EXPECT_EQ(std::count(run.fErrors.begin(), run.fErrors.end(), '\n'), 1) << run.fErrors;
    EXPECT_TRUE(LeftNothing()) << script;
  }
}

}  // namespace
