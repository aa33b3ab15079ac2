// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

const std::string kKey = "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>TRUE</VALUE></QUALIFIER>";

/// The command with the document plug-ins, and documents of the test's own.
class QDXDiff : public ::testing::Test {
 protected:
  QDXDiff() { fInstallation.AddDocumentPlugins(); }

  static std::string Class(const std::string& name, const std::string& properties) {
    return "<VALUE.OBJECT><CLASS NAME='" + name + "'>" + properties + "</CLASS></VALUE.OBJECT>";
  }
  /// "Id" is a key.
  static std::string Property(const std::string& name, const std::string& type = "string") {
    const std::string key = name == "Id" ? kKey : "";
    return "<PROPERTY NAME='" + name + "' TYPE='" + type + "'>" + key + "</PROPERTY>";
  }
  static std::string Instance(const std::string& name,
                              const std::vector<std::pair<std::string, std::string>>& values) {
    std::string text = "<VALUE.OBJECT><INSTANCE CLASSNAME='" + name + "'>";
    for (const auto& [property, value] : values) {
      text += "<PROPERTY NAME='" + property + "' TYPE='string'>";
      text += "<VALUE>" + value + "</VALUE></PROPERTY>";
    }
    return text + "</INSTANCE></VALUE.OBJECT>";
  }
  std::string Write(const std::string& name, const std::string& objects) const {
    return fFolder.Write(
        name, "<CIM><DECLARATION><DECLGROUP>" + objects + "</DECLGROUP></DECLARATION></CIM>");
  }

  const std::string fDisk = Class("Disk", Property("Id") + Property("Size") + Property("UpTime"));
  const std::string fNote = Class("Note", Property("Text"));  // without keys
  const TInstallation fInstallation;
  const TTempDir fFolder;
};

TEST_F(QDXDiff, NamesWhatDiffers) {
  const std::string a =
      Write("a.xml", fDisk + Class("Old", Property("Id")) + fNote +
                         Instance("Disk", {{"Id", "1"}, {"Size", "5"}, {"UpTime", "7"}}) +
                         Instance("Old", {{"Id", "o"}}) + Instance("Note", {{"Text", "x"}}));
  const std::string b =
      Write("b.xml", fNote +
                         Class("Disk' SUPERCLASS='Note",
                               Property("Id") + Property("Size") + Property("UpTime", "uint32")) +
                         Instance("Disk", {{"Id", "3"}}) + Instance("Disk", {{"Id", "1"}}) +
                         Instance("Note", {{"Text", "x"}}) + Instance("Note", {{"Text", "x"}}));
  const TProgramRun run = fInstallation.Run({"diff", a, b});
  EXPECT_EQ(run.fExitCode, 1) << run.fErrors;
  EXPECT_EQ(run.fOutput,
            "root/cimv2\n"
            "~ class Disk\n"
            "    ~ (superclass)  - -> Note\n"
            "    + Text          string\n"
            "    ~ UpTime        string -> uint32\n"
            "~ Disk.Id=\"1\"\n"
            "    ~ Size  5 -> -\n"
            "+ Disk.Id=\"3\"\n"
            "+ Note Text=\"x\"\n"
            "- class Old\n"
            "- Old.Id=\"o\"\n");
  const std::string text = fInstallation.Run({"diff", b, a, "--json", "--all"}).fOutput;
  auto json = nlohmann::json::parse(text)["differences"];
  EXPECT_EQ(json[3]["path"], "Disk.Id=\"1\"");
  EXPECT_EQ(json[3]["property"].dump() + json[3]["old"].dump() + json[3]["new"].dump(),
            R"("Size"null"5")");
  EXPECT_EQ(json[4]["property"], "UpTime");
}

TEST_F(QDXDiff, WarnsOfValuesThatAreLost) {
  const std::string date =
      "<PROPERTY NAME='P' TYPE='datetime'><VALUE>200403151430**.******+060</VALUE></PROPERTY>";
  const auto wild = Write("w.xml", Class("C", date));
  const std::string warning = "qdx: cimxml: 1 date-times that cannot be held were read as null ";
  EXPECT_EQ(fInstallation.Run({"diff", wild, wild, "--log-level=error"}).fErrors.find(warning), 0U);
}

TEST_F(QDXDiff, RefusesWhatIsNoDocument) {
  const std::string a = Write("a.xml", fDisk);
  EXPECT_EQ(fInstallation.RunScript("\"$0\" diff - '" + a + "' <'" + a + "'").fExitCode, 0);
  EXPECT_EQ(fInstallation.Run({"diff", a, "none.xml"}).fExitCode, 4);
  EXPECT_EQ(fInstallation.Run({"diff", "-", "-"}).fExitCode, 2);
}

}  // namespace
