// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

/// The command, with the provider "linux", and a tree that stands in for a server.
class QDXIdentity : public ::testing::Test {
 protected:
  QDXIdentity() {
    fInstallation.AddLinuxProvider();
    WriteDMI("product_name", "Loftnode -[47111AB]-");
    fTree.Write("proc/sys/kernel/hostname", "srv1\n");
    fTree.Write("proc/sys/kernel/ostype", "Linux\n");
    fTree.Write("etc/os-release", "NAME='Server OS'\nVERSION_ID=9.3\n");
    for (const std::string name : {"0", "1"}) {
      fTree.Write("sys/devices/system/memory/memory" + name + "/state", "online\n");
    }
    fTree.Write("sys/devices/system/memory/block_size_bytes", "60000000\n");
    for (const std::string name : {"sda", "sdb", "sdc"}) {
      fTree.Write("sys/block/" + name + "/device/model", "Disk\n");
      fTree.Write("sys/block/" + name + "/size", name == "sdb" ? "7501476528\n" : "937703088\n");
    }
    fTree.Write("proc/cpuinfo",
                "processor\t: 0\nphysical id\t: 0\nmodel name\t: Xeon 8\ncpu cores\t: 1\n\n"
                "processor\t: 1\nphysical id\t: 0\nmodel name\t: Xeon 8\ncpu cores\t: 1\n");
  }
  void WriteDMI(const std::string& name, const std::string& text) const {
    fTree.Write("sys/class/dmi/id/" + name, text + "\n");
  }
  TProgramRun Run(std::vector<std::string> options) const {
    options.insert(options.end(), {"identity", "--root", fTree.Path().string()});
    return fInstallation.Run(options);
  }
  const TInstallation fInstallation;
  const TTempDir fTree;
};

TEST_F(QDXIdentity, IsPrintedForPeople) {
  WriteDMI("product_serial", "None");
  const TProgramRun run = Run({});
  EXPECT_EQ(run.fOutput,
            "System name       srv1\n"
            "Manufacturer      -  (/sys/class/dmi/id/sys_vendor: No such file or directory)\n"
            "Product name      Loftnode -[47111AB]-\n"
            "Machine type      4711\n"
            "Model             1AB\n"
            "Serial number     -  (/sys/class/dmi/id/product_serial: placeholder text 'None')\n"
            "Operating system  Server OS\n"
            "Version           9.3\n"
            "OS type           36 (LINUX)\n"
            "Processors        1 x Xeon 8 (1 core, 2 threads)\n"
            "Memory            3 GiB\n"
            "Disks             3 (2 x 480.1 GB, 3.84 TB)\n"
            "QDX version       " QDXCORE_VERSION "\n");
  EXPECT_EQ(run.fErrors, "");
  EXPECT_EQ(run.fExitCode, 0);
}

TEST_F(QDXIdentity, IsPrintedAsJSON) {
  WriteDMI("product_name", "Loftnode -[4711]-");
  WriteDMI("product_serial", "AB-123456");
  WriteDMI("sys_vendor", "VORN");
  WriteDMI("product_family", "Lofts");
  for (const std::string name : {"sdd", "sde"}) {  // whose sizes cannot be read
    fTree.Write("sys/block/" + name + "/device/model", "Disk\n");
    fTree.Write("sys/block/" + name + "/size/no_file", "");
  }
  nlohmann::json expected = nlohmann::json::parse(R"json({
      "systemName": "srv1", "productName": "Loftnode -[4711]-", "machineType": "4711",
      "model": null, "serialNumber": "AB-123456", "operatingSystem": "Server OS",
      "version": "9.3", "osType": 36,
      "notes": {"serialNumber": "not seven letters or digits",
                "disks": "/sys/block/sdd/size: not a regular file and 1 more"},
      "manufacturer": "VORN", "family": "Lofts", "sku": null, "memory": "3 GiB",
      "processors": "1 x Xeon 8 (1 core, 2 threads)", "disks": "5 (2 x 480.1 GB, 3.84 TB)",
      "absent": {"model": "not in the product name",
                 "sku": "/sys/class/dmi/id/product_sku: No such file or directory"}})json");
  expected["qdxVersion"] = QDXCORE_VERSION;
  const TProgramRun run = Run({"--json"});
  EXPECT_EQ(nlohmann::json::parse(run.fOutput), expected);
  EXPECT_EQ(run.fExitCode, 3);
  EXPECT_EQ(run.fErrors, "qdx: Disks: /sys/block/sdd/size: not a regular file and 1 more\n");
}

/// "DRACHMA" is no type DRAC with model HMA.
TEST_F(QDXIdentity, TakesTypeAndModelFromBracketsOnly) {
  WriteDMI("product_name", "DRACHMA");
  WriteDMI("product_sku", "S-1");
  const std::string output = Run({}).fOutput;
  EXPECT_EQ(output.find("Machine type"), std::string::npos);
  EXPECT_NE(output.find("\nSKU               S-1\n"), std::string::npos) << output;
  const auto document = nlohmann::json::parse(Run({"--json"}).fOutput);
  EXPECT_EQ(document["machineType"], nullptr);
  EXPECT_EQ(document["absent"]["machineType"], "not in the product name");
}

TEST_F(QDXIdentity, NeedsARootOfWhichSomethingIsKnown) {
  const TTempDir empty;
  const std::string folder = empty.Path().string(), file = fTree.Write("file", "").string();
  const std::tuple<std::string, int, std::string> rows[] = {
      {folder, 5, "describing the machine below " + folder + ": all values are missing"},
      {file, 4, "reading root folder " + file + ": not a folder\n"},
      {"/no\033[31m\xff\xc2\x9b", 4,
       "reading root folder /no?[31m??: No such file or directory\n"}};
  for (const auto& [root, exitCode, error] : rows) {
    const TProgramRun run = fInstallation.Run({"identity", "--root", root});
    EXPECT_EQ(run.fExitCode, exitCode);
    EXPECT_EQ(run.fErrors.find("qdx: " + error), 0U) << run.fErrors;
  }
}

TEST_F(QDXIdentity, WritesALog) {
  const TTempDir folder;  // outside of the tree
  const std::string log = (folder.Path() / "log").string();
  const std::string line = "TCIMSchemaHelper- Detected MTM 47111AB\n";
  ASSERT_EQ(Run({"--log", log}).fExitCode, 0);
  EXPECT_EQ(ReadWholeFile(log).find(line), std::string::npos);
  EXPECT_NE(ReadWholeFile(log).find("VORNSG_OperatingSystem"), std::string::npos);
  EXPECT_EQ(ReadWholeFile(log).find("VORNSG_FileSystem"), std::string::npos);  // not asked for
  ASSERT_EQ(Run({"--log=" + log, "--log-level", "debug"}).fExitCode, 0);
  EXPECT_NE(ReadWholeFile(log).find(line), std::string::npos);
  EXPECT_NE(ReadWholeFile(log).find("-- QDX Log Closed"), std::string::npos);
}

}  // namespace
