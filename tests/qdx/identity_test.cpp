// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

/// The command, with the provider "linux", and a tree that stands in for a server.
class QDXIdentity : public ::testing::Test {
 protected:
  void SetUp() override {
    fInstallation.AddLinuxProvider();
    WriteDMI("product_name", "Loftnode -[47111AB]-");
    WriteDMI("product_serial", "23A1234");
    fTree.Write("proc/sys/kernel/hostname", "srv1\n");
    fTree.Write("proc/sys/kernel/ostype", "Linux\n");
    fTree.Write("etc/os-release", "NAME='Server OS'\nVERSION_ID=9.3\n");
  }
  void WriteDMI(const std::string& name, const std::string& text) const {
    fTree.Write("sys/class/dmi/id/" + name, text + "\n");
  }
  TProgramRun Run(std::vector<std::string> options) const {
    options.insert(options.end(), {"identity", "--root", fTree.Path().string()});
    return fInstallation.Run(options);
  }
  nlohmann::json RunForJSON() const { return nlohmann::json::parse(Run({"--json"}).fOutput); }

  const TInstallation fInstallation;
  const TTempDir fTree;
};

TEST_F(QDXIdentity, IsPrintedForPeople) {
  WriteDMI("product_serial", "None");
  const TProgramRun run = Run({});
  EXPECT_EQ(run.fOutput,
            "System name       srv1\n"
            "Product name      Loftnode -[47111AB]-\n"
            "Machine type      4711\n"
            "Model             1AB\n"
            "Serial number     -  (/sys/class/dmi/id/product_serial: placeholder text 'None')\n"
            "Operating system  Server OS\n"
            "Version           9.3\n"
            "OS type           36 (LINUX)\n"
            "QDX version       " QDXCORE_VERSION "\n");
  EXPECT_EQ(run.fErrors, "");
  EXPECT_EQ(run.fExitCode, 0);
}

TEST_F(QDXIdentity, IsPrintedAsJSON) {
  WriteDMI("product_name", "Loftnode -[4711]-");
  nlohmann::json expected = nlohmann::json::parse(R"({
      "systemName": "srv1", "productName": "Loftnode -[4711]-", "machineType": "4711",
      "model": null, "serialNumber": "23A1234", "operatingSystem": "Server OS", "version": "9.3",
      "osType": 36, "notes": {},
      "absent": {"model": "the product name carries none [kQDXStatusInvalidFormat]"}})");
  expected["qdxVersion"] = QDXCORE_VERSION;
  EXPECT_EQ(RunForJSON(), expected);
}

TEST_F(QDXIdentity, ShowsASerialNumberOfAnotherForm) {
  WriteDMI("product_serial", "AB-123456");
  EXPECT_EQ(RunForJSON()["notes"]["serialNumber"], "not seven letters or digits");
  EXPECT_NE(Run({}).fOutput.find("AB-123456  (not seven letters or digits)\n"), std::string::npos);
}

TEST_F(QDXIdentity, SaysThatNothingIsKnown) {
  const TTempDir empty;
  const TProgramRun run = fInstallation.Run({"identity", "--root=" + empty.Path().string()});
  EXPECT_EQ(run.fExitCode, 5);
  EXPECT_EQ(run.fErrors, "qdx: describing the machine, " + empty.Path().string() +
                             ": nothing is known of it [kQDXStatusNotFound]\n");
}

TEST_F(QDXIdentity, RefusesARootThatIsNoFolder) {
  const std::string file = fTree.Write("file", "").string();
  for (const auto& [root, why] : std::vector<std::pair<std::string, std::string>>{
           {file, file + ": not a folder"},
           {"/no\033[31m\xff\xc2\x9b", "/no?[31m??: No such file or directory"}}) {
    const TProgramRun run = fInstallation.Run({"identity", "--root", root});
    EXPECT_EQ(run.fExitCode, 4);
    EXPECT_EQ(run.fErrors, "qdx: reading root folder, " + why + " [kQDXStatusFileNotFound]\n");
  }
}

TEST_F(QDXIdentity, WritesALog) {
  const std::string log = (fTree.Path() / "log").string();
  const std::string line = "TCIMSchemaHelper- Detected MTM 47111AB\n";
  ASSERT_EQ(Run({"--log", log}).fExitCode, 0);
  EXPECT_EQ(ReadWholeFile(log).find(line), std::string::npos);
  ASSERT_EQ(Run({"--log=" + log, "--log-level", "debug"}).fExitCode, 0);
  EXPECT_NE(ReadWholeFile(log).find(line), std::string::npos);
  EXPECT_NE(ReadWholeFile(log).find("-- QDX Log Closed"), std::string::npos);

  const TProgramRun refused = Run({"--log", "/no/log"});
  EXPECT_EQ(refused.fExitCode, 4);
  EXPECT_EQ(refused.fErrors,
            "qdx: opening log, /no/log: No such file or directory [kQDXStatusFileSystemError]\n");
}

}  // namespace
