// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

/// The command with the sample provider, and a document of what it has.
class QDXShow : public ::testing::Test {
 protected:
  QDXShow() {
    fInstallation.AddDocumentPlugins();
    fInstallation.AddPlugin(TESTS "sample_provider.so", "libsample.nsp.so");
    fInstallation.Run({"collect", "--provider", "sample", "-o", fDocument});
  }

  const TInstallation fInstallation;
  const TTempDir fFolder;
  const std::string fDocument = (fFolder.Path() / "sample.xml").string();
};

TEST_F(QDXShow, GivesJSON) {
  const auto run = fInstallation.Run({"show", fDocument, "Sample_Many.Number=\"1\"", "--json"});
  const auto expected = nlohmann::ordered_json::parse(R"({"namespaces": [{
      "namespace": "root/sample", "provider": null, "classes": [{
          "class": "Sample_Many", "instanceCount": 1, "types": {"Number": {"type": "uint32"},
          "Text": {"type": "string"}, "UpTime": {"type": "uint32"}}, "instances": [{
              "path": "Sample_Many.Number=\"1\"",
              "properties": {"Number": 1, "Text": "xxx", "UpTime": 0}, "absent": {}}]}]}]})");
  EXPECT_EQ(run.fOutput, expected.dump(2) + "\n");
}

TEST_F(QDXShow, CutsATreeAtTheDepth) {
  const std::string path = "Sample_Many.Number=\"1\"";
  const std::string levels[] = {"\n", "  Sample_Many  (1 instance)\n", "    " + path + "\n",
                                "      Number  1\n      Text    xxx\n      UpTime  0\n"};
  std::string tree;
  for (int i = 0; i < 4; ++i) {
    tree += levels[i];
    const std::string depth = "--depth=" + std::to_string(i);
    EXPECT_EQ(fInstallation.Run({"show", fDocument, path, "--all", depth}).fOutput,
              "root/sample" + tree);
    EXPECT_EQ(fInstallation.Run({"show", "--provider=sample", "--all", depth, path}).fOutput,
              "root/sample  (provider sample)" + tree);
  }
  EXPECT_EQ(fInstallation.Run({"show", "--depth=0", fDocument, "Sample_Many"}).fOutput,
            "root/sample\n");
}

TEST_F(QDXShow, KeepsWhatWasReadBeforeAFailure) {
  const TProgramRun run = fInstallation.Run({"show", "root/spoiled:Sample_Many", "--depth=2"});
  EXPECT_EQ(run.fOutput,
            "root/spoiled  (provider spoiled)\n  Sample_Many  (1 instance)\n"
            "    Sample_Many.Number=\"1\"\n");
  EXPECT_EQ(run.fExitCode, 3);
}

TEST_F(QDXShow, GivesTheReasonOfTheInstanceThatLacksAValue) {
  fInstallation.AddLinuxProvider();
  for (const char* device : {"sg0", "sg1"}) {
    fFolder.Write(std::string("sys/class/scsi_generic/") + device + "/device/type", "0\n");
  }
  fFolder.Write("sys/class/scsi_generic/sg0/device/vendor", "VORN\n");
  const std::string shown =
      fInstallation.Run({"show", "--root", fFolder.Path().string(), "VORNSG_SCSIDevice"}).fOutput;
  const std::string reason = "VendorID    -  (/sys/class/scsi_generic/sg1/device/vendor: ";
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, reason, shown);
  EXPECT_EQ(shown.find("VendorID    -"), shown.find(reason)) << shown;
  EXPECT_PRED_FORMAT2(::testing::IsNotSubstring, "ComputerSystem", shown);
}

TEST_F(QDXShow, GivesTheReasonWhyAClassLacksInstances) {
  fInstallation.AddLinuxProvider();
  fFolder.Write("sys/class/net/a/type/no_file", "");
  fFolder.Write("sys/class/net/b/type", "1\n");
  const std::string root = fFolder.Path().string();
  const std::string reason = "/sys/class/net/a/type: not a regular file";
  const std::string shown =
      fInstallation.Run({"show", "--root", root, "VORNSG_EthernetPort"}).fOutput;
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "VORNSG_EthernetPort  (1 instance)", shown);
  EXPECT_EQ(shown.substr(shown.rfind("    -  (")),
            "    -  (" + reason + ")\n(left out: 3 keys; --all shows them)\n");
  const auto json = nlohmann::json::parse(
      fInstallation.Run({"show", "--root", root, "VORNSG_EthernetPort", "--json"}).fOutput);
  EXPECT_EQ(json["namespaces"][0]["classes"][0]["absent"], reason);
}

/// A machine with two thermometers.
class QDXShowMachine : public ::testing::Test {
 protected:
  QDXShowMachine() {
    fInstallation.AddLinuxProvider();
    fFolder.Write("proc/sys/kernel/hostname", "srv1\n");
    const std::string chip = "sys/class/hwmon/hwmon0/";
    fFolder.Write(chip + "name", "chip\n");
    fFolder.Write(chip + "temp1_input", "41500\n");
    fFolder.Write(chip + "temp1_label", "CPU, \"hot\"\n");
    fFolder.Write(chip + "temp2_input", "30000\n");
  }

  TProgramRun Show(std::vector<std::string> words) const {
    words.insert(words.begin(), {"show", "--root", fFolder.Path().string()});
    return fInstallation.Run(words);
  }

  const TInstallation fInstallation;
  const TTempDir fFolder;
};

TEST_F(QDXShowMachine, IsForPeople) {
  const std::string shown = Show({"numericSENSOR"}).fOutput;
  EXPECT_PRED_FORMAT2(::testing::IsSubstring,
                      "\n    NumericSensor hwmon0/chip/temp1\n      Name             ", shown);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "  41.5 \u00b0C\n", shown);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "  2 (Temperature)\n", shown);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "\n(left out: 6 keys; --all shows them)\n", shown);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "  41500\n",
                      Show({"NumericSensor", "--raw"}).fOutput);
}

TEST_F(QDXShowMachine, PicksAndFilters) {
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"--properties", "currentreading, DeviceID,deviceid", "--csv"},
       "currentreading,DeviceID\r\n41500,hwmon0/chip/temp1\r\n30000,hwmon0/chip/temp2\r\n"},
      {{"--properties=ElementName", "--csv", "--where", "Name==TEMP1"},
       "ElementName\r\n\"CPU, \"\"hot\"\"\"\r\n"},
      {{"--properties", "Name,CurrentReading", "--table", "--where=CurrentReading>=30000"},
       "root/cimv2  (provider linux)\n  VORNSG_NumericSensor  (2 instances)\n"
       "    Name   CurrentReading\n    temp1  41.5 \u00b0C\n    temp2  30 \u00b0C\n"},
      {{"--properties", "Name", "--csv", "--where", "CurrentReading<=30C"}, "Name\r\ntemp2\r\n"},
      {{"--properties", "Name", "--csv", "--where", "SensorType=temperature", "--where",
        "Name!=temp2"},
       "Name\r\ntemp1\r\n"},
      {{"--properties", "Name", "--csv", "--where", " ElementName ~ hot"}, "Name\r\ntemp1\r\n"},
      {{"--properties", "Name", "--csv", "--where", "ElementName="}, "Name\r\ntemp2\r\n"},
      {{"--properties", "Name", "--where", "Name=x"},
       "root/cimv2  (provider linux)\n  VORNSG_NumericSensor  (0 of 2 instances)\n"}};
  for (auto [words, output] : rows) {
    words.insert(words.begin(), "NumericSensor");
    EXPECT_EQ(Show(words).fOutput, output) << words.back();
  }
}

TEST_F(QDXShowMachine, FindsAnInstanceBySomeOfItsKeys) {
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"NumericSensor.DeviceID=\"hwmon0/chip/temp2\""}, "Name\r\ntemp2\r\n"},
      {{"VORNSG_LogicalDevice.SystemName=\"srv1\",DeviceID=\"hwmon0/chip/temp1\""},
       "Name\r\ntemp1\r\n"},
      {{"NumericSensor.SystemName=\"srv1\""}, ""},
      {{"NumericSensor.SystemName=\"srv2\""}, ""}};
  for (auto [words, output] : rows) {
    words.insert(words.end(), {"--properties", "Name", "--csv"});
    EXPECT_EQ(Show(words).fOutput, output) << words.front();
  }
  EXPECT_PRED_FORMAT2(
      ::testing::IsSubstring,
      ": 2 instances have these values; the keys are SystemCreationClassName, SystemName, "
      "CreationClassName, DeviceID\n",
      Show({"NumericSensor.SystemName=\"srv1\""}).fErrors);
}

TEST_F(QDXShowMachine, CountsWhatItLeavesOut) {
  const std::string shown = Show({}).fOutput;
  const std::string last = shown.substr(shown.rfind('\n', shown.size() - 2) + 1);
  EXPECT_EQ(last.substr(0, 11), "(left out: ");
  for (const char* const kind : {" missing values", " keys", " associations", " explanations",
                                 " classes without instances; --all shows them)"}) {
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, kind, last);
  }
  EXPECT_PRED_FORMAT2(::testing::IsNotSubstring, "VORNSG_UnavailableValue", shown);
  EXPECT_PRED_FORMAT2(::testing::IsNotSubstring, "VORNSG_ComputerSystem  (",
                      Show({"--properties", "CurrentReading"}).fOutput);
  const std::string all = Show({"--all"}).fOutput;
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "\n  VORNSG_UnavailableValue  (", all);
  EXPECT_PRED_FORMAT2(::testing::IsNotSubstring, "(left out", all);
}

TEST_F(QDXShowMachine, UnderstandsNamesOfClasses) {
  const std::tuple<std::vector<std::string>, int, std::string> rows[] = {
      {{"NumericSensr"},
       4,
       "looking for NumericSensr: no such class, instance or file; did you mean "
       "'VORNSG_NumericSensor'?\n"},
      {{"CIM_NumericSensr", "--without", "disks"},
       4,
       "looking for CIM_NumericSensr: no such class, instance or file; did you mean "
       "'VORNSG_NumericSensor'? part disks is left out\n"},
      {{"VORNSG_OperatingSystem.LastBootUpTime=\"junk\""},
       4,
       "looking for VORNSG_OperatingSystem.LastBootUpTime=\"junk\": no date-time\n"},
      {{"disk", "--without", "disks"},
       4,
       "looking for disk: no such class, instance or file; part disks is left out\n"},
      {{"disk", "--without", "disks,network"},
       4,
       "looking for disk: no such class, instance or "
       "file; parts disks, network are left out\n"},
      {{"s"}, 4, "looking for s: several classes are called so: VORNSG_"},
      {{"disk", "--where", "Sixe>1"},
       4,
       "looking for property Sixe: no class that is shown has it; did you mean 'Size'?\n"},
      {{"disk", "--properties", "Nothing"},
       4,
       "looking for property Nothing: no class that is shown has it; 'qdx show CLASS --schema' "
       "lists those of a class\n"},
      {{"disk", "--properties", "a,,b"}, 2, "option '--properties' needs names"},
      {{"disk", "--where", "=3"}, 2, "option '--where' needs a property"},
      {{"sensors", "--where", "CurrentReading>hot"},
       2,
       "option '--where' compares the number CurrentReading with 'hot'"},
      {{"disk", "--csv", "--json"}, 2, "option '--json' cannot be used with '--csv'"},
      {{"--csv"}, 2, "option '--csv' needs a class or an object path"}};
  for (const auto& [words, exitCode, error] : rows) {
    const TProgramRun run = Show(words);
    EXPECT_EQ(run.fExitCode, exitCode) << run.fErrors;
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, "qdx: " + error, run.fErrors);
  }
}

TEST_F(QDXShow, TellsAnAuthorOfTheMistake) {
  const auto run = fInstallation.RunScript("QDX_SAMPLE_MISTAKE=1 \"$0\" show --provider sample");
  EXPECT_EQ(run.fErrors,
            "qdx: opening root/sample of provider sample: class Sample_Many has no property "
            "\"Txet\"\n");
}

TEST_F(QDXShow, SaysWhatItCannotShow) {
  const std::string text = fFolder.Write("text", "no document").string();
  const std::tuple<std::vector<std::string>, int, std::string> rows[] = {
      {{"Sample_None"}, 4, "looking for Sample_None: not found, but a provider failed\n"},
      {{fDocument, "root/qdx:Sample_Many"},
       4,
       "looking for root/qdx:Sample_Many: no such class or instance; 'qdx show " + fDocument},
      {{fDocument, "Many.Number=\"4000000000\""},
       4,
       "looking for Many.Number=\"4000000000\": Sample_Many has no such instance; 'qdx show " +
           fDocument + " Sample_Many --depth 2' lists those that it has\n"},
      {{fDocument, "Sample_Many.Number=b"},
       4,
       "looking for Sample_Many.Number=b: Reference missing opening '\"'; in the shell"},
      {{"none.xml"}, 4, "reading document none.xml: No such file or directory\n"},
      {{text}, 4, "reading document " + text + ": line 1, column 1: "},
      {{fDocument, "--depth=4"}, 2, "option '--depth' needs a number from 0 to 3"},
      {{fDocument, "--root", "/"}, 2, "option '--root' cannot be used with a file"},
      {{"--provider", "cimxml"}, 5, "showing this machine: it has no namespaces\n"}};
  for (auto [words, exitCode, error] : rows) {
    words.insert(words.begin(), "show");
    const TProgramRun run = fInstallation.Run(words);
    EXPECT_EQ(run.fExitCode, exitCode) << run.fErrors;
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, "qdx: " + error, run.fErrors);
  }
}

}  // namespace
