// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

#include "cimxml/documents.h"
#include "qdx/installation.h"

namespace NVORNQDX20 {
namespace {

/// The command with the document plug-ins, and documents of the test's own.
class QDXDiff : public ::testing::Test {
 protected:
  QDXDiff() { fInstallation.AddDocumentPlugins(); }

  std::string File(const TNamespace& ns, const std::string& name) const {
    const std::string file = (fFolder.Path() / name).string();
    Write(file, {ns});
    return file;
  }

  const TInstallation fInstallation;
  const TTempDir fFolder;
};

TEST_F(QDXDiff, NamesWhatDiffers) {
  const TCIMValue text(TCIMValue::TCIMType::kCIMTypeString, 0);
  const TNamespace a = MakeNamespace(), b = MakeNamespace();
  AddClass(a, "Disk", {{"Id", text}}, {{"Size", text}, {"UpTime", text}});
  AddClass(a, "Note", {}, {{"Text", text}});
  AddClass(a, "Old", {{"Id", text}});
  AddInstance(a, "Disk", {{"Id", "1"}, {"Size", "5"}, {"UpTime", "7"}});
  AddInstance(a, "Note", {{"Text", "x"}});
  AddInstance(a, "Old", {{"Id", "o"}});

  AddClass(b, "Disk", {{"Id", text}}, {{"Size", text}, {"Type", text}, {"UpTime", 1U}});
  AddDerived(b, "Note", AddClass(b, "Base", {}, {{"Text", text}}), {});
  for (const char* id : {"3", "1"}) AddInstance(b, "Disk", {{"Id", id}});
  for (int i = 0; i < 2; ++i) AddInstance(b, "Note", {{"Text", "x"}});

  const std::string fileA = File(a, "a.xml"), fileB = File(b, "b.xml");
  const TProgramRun run = fInstallation.Run({"diff", fileA, fileB});
  EXPECT_EQ(run.fExitCode, 1) << run.fErrors;
  EXPECT_EQ(run.fOutput,
            "test\n"
            "+ class Base\n"
            "~ class Disk\n"
            "    + Type    string\n"
            "    ~ UpTime  string -> uint32 = 1\n"
            "~ class Note\n"
            "    ~ (superclass)  - -> Base\n"
            "- class Old\n"
            "~ Disk 1\n"
            "    ~ Size  5 -> -\n"
            "+ Disk 3\n"
            "+ Note Text=\"x\"\n"
            "- Old o\n");
  EXPECT_EQ(fInstallation.Run({"diff", fileA, fileB, "--summary"}).fOutput,
            "1 changed, 2 added, 1 removed in 4 devices; 5 differences of declarations\n");
  EXPECT_EQ(fInstallation.Run({"diff", fileA, fileA, "--summary"}).fOutput, "no differences\n");
  const TProgramRun ignoring = fInstallation.Run(
      {"diff", fileA, fileB, "--ignore=note", "--ignore", "OLD", "--ignore=base", "--ignore=dusk",
       "--ignore=disk.id", "--ignore=disk.type", "--ignore=disk.uptime", "--raw"});
  EXPECT_EQ(ignoring.fOutput, "test\n~ Disk.Id=\"1\"\n    ~ Size  5 -> -\n+ Disk.Id=\"3\"\n");
  EXPECT_EQ(ignoring.fErrors,
            "qdx: ignoring dusk has no effect: neither document has it\n"
            "qdx: ignoring disk.id has no effect: instances are matched by this key\n");
  for (const char* const wrong : {".x", "x.", "x.y.z"}) {
    EXPECT_EQ(fInstallation.Run({"diff", fileA, fileB, "--ignore", wrong}).fExitCode, 2) << wrong;
  }
  const std::string json = fInstallation.Run({"diff", fileB, fileA, "--json", "--all"}).fOutput;
  auto differences = nlohmann::json::parse(json)["differences"];
  EXPECT_EQ(differences[3]["path"], "Disk.Id=\"1\"");
  EXPECT_EQ(differences[3]["property"], "Size");
  EXPECT_EQ(differences[3]["old"], nullptr);
  EXPECT_EQ(differences[3]["new"], "5");
  EXPECT_EQ(differences[4]["property"], "UpTime");
}

TEST_F(QDXDiff, ShowsDevicesWithTheirPartsAndConsequences) {
  const auto make = [](const char* machine, const char* size, std::vector<const char*> partitions) {
    const TNamespace ns = MakeNamespace();
    const std::string ofMachine = std::string("\",SystemName=\"") + machine + "\"";
    for (const char* name : {"X_DiskDrive", "X_DiskPartition"}) {
      AddClass(ns, name, {{"DeviceID", kNoText}, {"SystemName", kNoText}},
               {{"Size", TCIMValue(TCIMValue::TCIMType::kCIMTypeUint64, 0)},
                {"Flags", TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 1)}});
    }
    AddClass(ns, "X_BasedOn",
             {{"Antecedent", NullReference(ns, "X_DiskDrive")},
              {"Dependent", NullReference(ns, "X_DiskPartition")}},
             {}, nullptr, true);
    std::vector<TCIMValue> flags = {"a", "b", "c", "d", "e", size};
    AddInstance(ns, "X_DiskDrive",
                {{"DeviceID", "sda"},
                 {"SystemName", machine},
                 {"Size", std::strtoul(size, nullptr, 10)},
                 {"Flags", TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 1, flags)}});
    for (const char* each : partitions) {
      AddInstance(ns, "X_DiskPartition", {{"DeviceID", each}, {"SystemName", machine}});
      AddInstance(ns, "X_BasedOn",
                  {{"Antecedent", ReferenceTo(ns, "X_DiskDrive.DeviceID=\"sda" + ofMachine)},
                   {"Dependent", ReferenceTo(ns, std::string("X_DiskPartition.DeviceID=\"") + each +
                                                     ofMachine)}});
    }
    return ns;
  };
  const std::string a = File(make("web1", "5", {"sda1"}), "a.xml");
  const std::string b = File(make("web2", "6", {"sda1", "sda2"}), "b.xml");
  const TProgramRun run = fInstallation.Run({"diff", a, b, "--across-hosts"});
  EXPECT_EQ(run.fOutput,
            "test\n"
            "~ DiskDrive sda\n"
            "    ~ Flags  without { 5 }, with { 6 }\n"
            "    ~ Size   5 -> 6\n"
            "    + DiskPartition sda2  (with 1 association)\n")
      << run.fErrors;
  const auto json = nlohmann::json::parse(
      fInstallation.Run({"diff", a, b, "--across-hosts", "--json"}).fOutput)["differences"];
  EXPECT_EQ(json[0]["follows"], json[3]["path"]);
  EXPECT_EQ(json[3]["device"], json[1]["path"]);
  EXPECT_EQ(
      fInstallation.Run({"diff", a, b, "--across-hosts", "--summary", "--ignore=diskpartition"})
          .fOutput,
      "1 changed in 1 device\n");
  const TProgramRun plain = fInstallation.Run({"diff", a, b, "--summary"});
  EXPECT_EQ(plain.fOutput, "3 added, 2 removed in 2 devices\n");
  EXPECT_EQ(
      plain.fErrors,
      "qdx: the machines are web1 and web2: --across-hosts lets their names count as equal\n");
}

TEST_F(QDXDiff, WarnsOfValuesThatAreLostAndRefusesWhatIsNoDocument) {
  const TDocumentFile wild(Document({Class(Property("datetime", "200403151430**.******+060"))}));
  const TProgramRun run =
      fInstallation.Run({"diff", wild.Path(), wild.Path(), "--log-level=error"});
  const std::string warning = "qdx: cimxml: 1 date-time that cannot be held was read as null ";
  EXPECT_EQ(run.fErrors.find(warning), 0U) << run.fErrors;
  const std::string script = "\"$0\" diff - '" + wild.Path() + "' <'" + wild.Path() + "'";
  EXPECT_EQ(fInstallation.RunScript(script).fExitCode, 3);
  EXPECT_EQ(fInstallation.Run({"show", wild.Path()}).fExitCode, 3);
  EXPECT_EQ(fInstallation.Run({"diff", wild.Path(), "none.xml"}).fExitCode, 4);
  EXPECT_EQ(fInstallation.Run({"diff", "-", "-"}).fExitCode, 2);
}

TEST_F(QDXDiff, ComparesTheTextsOfDateTimesThatCannotBeHeld) {
  const TDocumentFile one(WithValue("datetime", "200403151430**.******+060"));
  const TDocumentFile other(WithValue("datetime", "200403151431**.******+060"));
  EXPECT_EQ(fInstallation.Run({"diff", one.Path(), one.Path()}).fExitCode, 0);
  const TProgramRun run = fInstallation.Run({"diff", one.Path(), other.Path()});
  EXPECT_EQ(run.fExitCode, 1) << run.fErrors;
  EXPECT_NE(run.fOutput.find("200403151431**.******+060"), std::string::npos) << run.fOutput;
}

TEST_F(QDXDiff, WaitsForInputThatDoesNotBlock) {
  const std::string document = WithValue("uint8", "1");
  const TDocumentFile file(document);
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
  if (::fork() == 0) {
    ::usleep(300'000);
    ::_exit(::write(ends[1], document.data(), document.size()) < 0 ? 1 : 0);
  }
  ::close(ends[1]);
  const int before = ::dup(STDIN_FILENO);
  ::dup2(ends[0], STDIN_FILENO);
  const TProgramRun run = fInstallation.Run({"diff", "-", file.Path()});
  ::dup2(before, STDIN_FILENO);
  for (const int each : {ends[0], before}) ::close(each);
  EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
}

TEST_F(QDXDiff, OfManyPropertiesTakesTimeInProportion) {
  std::string declared;
  for (int i = 0; i < 9000; ++i) {
    declared += Tag("PROPERTY", "NAME='p" + std::to_string(i) + "' TYPE='uint8'");
  }
  TNames objects = {Class(declared)};
  objects.resize(40, Instance(""));
  const TDocumentFile file(Document(objects));
  for (const std::string format : {"", " --json"}) {
    EXPECT_EQ(fInstallation.RunScript("ulimit -t 6; \"$0\" show " + file.Path() + format).fExitCode,
              0);
  }
}

TEST_F(QDXDiff, IsIncompleteWhereInstancesWereLeftOut) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "Disk", {{"Id", ""}});
  AddInstance(ns, "Disk", {{"Id", "1"}});
  AddClass(ns, "VORNSG_UnavailableValue",
           {{"ClassName", ""}, {"Instance", ""}, {"PropertyName", ""}}, {{"Reason", ""}});
  AddInstance(ns, "VORNSG_UnavailableValue",
              {{"ClassName", "Disk"}, {"Reason", "several 1; b; c"}});
  AddInstance(ns, "VORNSG_UnavailableValue", {{"ClassName", "None"}, {"Reason", "no folder"}});
  const std::string a = File(MakeNamespace(), "a.xml"), b = File(ns, "b.xml");
  const std::tuple<std::vector<std::string>, int, std::string> rows[] = {
      {{"diff", a, b},
       3,
       "qdx: describing Disk of test in " + b + ": several 1 and 2 more reasons\n"},
      {{"show", b, "Disk"}, 3, "qdx: describing Disk of test: several 1 and 2 more reasons\n"},
      {{"show", b, "Disk.Id=\"1\""}, 0, ""}};
  for (const auto& [words, exitCode, error] : rows) {
    const TProgramRun run = fInstallation.Run(words);
    EXPECT_EQ(run.fExitCode, exitCode) << run.fOutput;
    EXPECT_EQ(run.fErrors, error);
  }
}

}  // namespace
}  // namespace NVORNQDX20
