// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "qdx/installation.h"

namespace {

using ::testing::IsNotSubstring;
using ::testing::IsSubstring;

/// The command with the document plug-ins and the provider "linux", and a tree for a server.
class QDXRedact : public ::testing::Test {
 protected:
  QDXRedact() {
    fInstallation.AddDocumentPlugins();
    fInstallation.AddLinuxProvider();
    fTree.Write("proc/sys/kernel/hostname", "wotan\n");
    fTree.Write("proc/cmdline", "BOOT_IMAGE=/vmlinuz root=/dev/mapper/wotan--vg-root pw=geheim7\n");
    fTree.Write("proc/mounts", "10.77.3.4:/wotan /home/carlotta nfs rw,addr=10.77.3.4 0 0\n");
    fTree.Write("sys/class/dmi/id/product_serial", "KQX7341\n");
    fTree.Write("sys/class/net/eth0/address", "52:54:00:a1:b2:c3\n");
    fTree.Write("sys/class/net/eth0/type", "1\n");
    fTree.Write(
        "etc/passwd",
        "root:x:0:0:root:/root:/bin/sh\nbert:x:1000:1000:Bert Maier,,:/home/bert:/bin/sh\n");
    fFolder.Write("key", "0123456789abcdef");
    fFolder.Write("short", "0123");
    fFolder.Write("weak", "00000000000000000000000000000000");
    EXPECT_EQ(RunScript("\"$0\" collect --root \"$1\" --with users -o plain.xml").fExitCode, 0);
  }
  /// A script in the folder of the documents; "$1" is the tree.
  TProgramRun RunScript(const std::string& script) const {
    return fInstallation.RunScript("cd '" + fFolder.Path().string() + "' || exit 99; set -- '" +
                                   fTree.Path().string() + "'\n" + script);
  }
  std::string Read(const std::string& name) const { return ReadWholeFile(fFolder.Path() / name); }

  const TInstallation fInstallation;
  const TTempDir fTree;
  const TTempDir fFolder;
};

TEST_F(QDXRedact, LeavesNoSecretInTheDocument) {
  ASSERT_EQ(RunScript("\"$0\" redact plain.xml -o redacted.xml").fExitCode, 0);
  ASSERT_EQ(RunScript("\"$0\" collect --root \"$1\" --with users --redact -o other.xml").fExitCode,
            0);
  const std::string plain = Read("plain.xml");
  for (const char* const secret : {"wotan", "KQX7341", "10.77.3.4", "525400A1B2C3", "carlotta",
                                   "geheim7", ">bert<", "Maier"}) {
    EXPECT_PRED_FORMAT2(IsSubstring, secret, plain);
    EXPECT_PRED_FORMAT2(IsNotSubstring, secret, Read("redacted.xml"));
    EXPECT_PRED_FORMAT2(IsNotSubstring, secret, Read("other.xml"));
  }
  EXPECT_EQ(RunScript("\"$0\" validate redacted.xml").fExitCode, 0);
  EXPECT_PRED_FORMAT2(IsSubstring, "<VALUE>root</VALUE>", Read("redacted.xml"));
}

TEST_F(QDXRedact, ComparesLikeThePlainDocuments) {
  const std::string redact = "\"$0\" redact --key key ";
  ASSERT_EQ(
      RunScript(redact + "plain.xml -o a.xml && " + redact + "plain.xml -o b.xml.gz").fExitCode, 0);
  EXPECT_EQ(RunScript("\"$0\" diff a.xml b.xml.gz").fExitCode, 0);
  fTree.Write("sys/class/dmi/id/product_serial", "KQX9999\n");
  ASSERT_EQ(
      RunScript("\"$0\" collect --root \"$1\" --with users --redact --key key -o b.xml").fExitCode,
      0);
  const TProgramRun changed = RunScript("\"$0\" diff a.xml b.xml");
  EXPECT_EQ(changed.fExitCode, 1);
  EXPECT_PRED_FORMAT2(IsSubstring, "~ SerialNumber  serial-", changed.fOutput);
  EXPECT_EQ(std::count(changed.fOutput.begin(), changed.fOutput.end(), '~'), 2) << changed.fOutput;
}

TEST_F(QDXRedact, NamesTheFileByThePseudonym) {
  const TProgramRun run = RunScript("\"$0\" collect --root \"$1\" --redact");
  EXPECT_EQ(run.fExitCode, 0);
  EXPECT_EQ(run.fOutput.substr(0, 5), "host-");
  const TProgramRun kept = RunScript("\"$0\" collect --root \"$1\" --redact --keep host-name");
  EXPECT_EQ(kept.fOutput.substr(0, 6), "wotan-");
}

struct TRefused {
  const char* fName;
  const char* fScript;
  int fExitCode;
  const char* fMessage;
};
class QDXRedactRefuses : public QDXRedact, public ::testing::WithParamInterface<TRefused> {};

TEST_P(QDXRedactRefuses, InOneLine) {
  fFolder.Write("foreign.xml",
                "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHPATH>"
                "<VALUE.OBJECTWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>"
                "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH>"
                "</NAMESPACEPATH><INSTANCENAME CLASSNAME=\"CIM_Chip\"><KEYBINDING NAME=\"Tag\">"
                "<KEYVALUE VALUETYPE=\"string\">1</KEYVALUE></KEYBINDING></INSTANCENAME>"
                "</INSTANCEPATH><INSTANCE CLASSNAME=\"CIM_Chip\"><PROPERTY NAME=\"Tag\" "
                "TYPE=\"string\"><VALUE>1</VALUE></PROPERTY><PROPERTY NAME=\"SerialNumber\" "
                "TYPE=\"string\"><VALUE>KQX7341</VALUE></PROPERTY></INSTANCE>"
                "</VALUE.OBJECTWITHPATH></DECLGROUP.WITHPATH></DECLARATION></CIM>");
  const TProgramRun run = RunScript("\"$0\" " + std::string(GetParam().fScript));
  EXPECT_EQ(run.fExitCode, GetParam().fExitCode);
  EXPECT_PRED_FORMAT2(IsSubstring, GetParam().fMessage, run.fErrors);
}
INSTANTIATE_TEST_SUITE_P(
    Runs, QDXRedactRefuses,
    ::testing::Values(
        TRefused{"NoOutput", "redact plain.xml", 2, "redact needs option '--output'"},
        TRefused{"NoFile", "redact -o x.xml", 2, "FILE"},
        TRefused{"UnknownKind", "redact plain.xml -o x.xml --keep love", 2,
                 "unknown kind of secret 'love', none of serial, host-name, address, "},
        TRefused{"KeyWithoutRedact", "collect --root \"$1\" --key key -o x.xml", 2,
                 "option '--key' needs option '--redact'"},
        TRefused{"MissingKey", "redact plain.xml -o x.xml --key none", 4,
                 "reading key none: No such file or directory"},
        TRefused{"ShortKey", "redact plain.xml -o x.xml --key short", 4, "fewer than 16 bytes"},
        TRefused{"WeakKey", "redact plain.xml -o x.xml --key weak", 4, "8 different bytes"},
        TRefused{"EndlessKey", "redact plain.xml -o x.xml --key /dev/zero", 4,
                 "more than 4096 bytes"},
        TRefused{"FolderAsKey", "redact plain.xml -o x.xml --key .", 4, "Is a directory"},
        TRefused{"MissingDocument", "redact none.xml -o x.xml", 4, "none.xml"},
        TRefused{"NoDocument", "redact key -o x.xml", 4, "key"},
        TRefused{"Folder", "redact plain.xml -o .", 4, "."},
        TRefused{"FullDisk", "redact plain.xml -o /dev/full", 4, "/dev/full"},
        TRefused{"WithoutQualifiers", "redact foreign.xml -o x.xml", 4,
                 "namespace root does not tell which values are secret; --guess"},
        TRefused{"Guessed", "redact foreign.xml -o - --guess | grep -c KQX7341", 1, ""}),
    [](const auto& each) { return std::string(each.param.fName); });

}  // namespace
