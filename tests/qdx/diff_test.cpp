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

TEST_F(QDXDiff, MatchesInstancesWhereverTheyStand) {
  const std::string first = Instance("Disk", {{"Id", "1"}, {"Size", "5"}, {"UpTime", "7"}});
  const std::string second = Instance("Disk", {{"Id", "2"}, {"Size", "5"}});
  const std::string later = Instance("Disk", {{"UpTime", "8"}, {"Size", "5"}, {"Id", "1"}});
  const std::string x = Instance("Note", {{"Text", "x"}});
  const std::string y = Instance("Note", {{"Text", "y"}});
  const std::string a = Write("a.xml", fDisk + fNote + first + second + x + y + x);
  const std::string b = Write("b.xml", fNote + y + x + x + fDisk + second + later);
  EXPECT_EQ(fInstallation.Run({"diff", a, b}).fExitCode, 0);
  const TProgramRun all = fInstallation.Run({"diff", a, b, "--all"});
  EXPECT_EQ(all.fExitCode, 1);
  EXPECT_EQ(all.fOutput, "root/cimv2\n~ Disk.Id=\"1\"\n    ~ UpTime  7 -> 8\n");
}

TEST_F(QDXDiff, NamesWhatDiffers) {
  const std::string a =
      Write("a.xml", fDisk + Class("Old", Property("Id")) + fNote +
                         Instance("Disk", {{"Id", "1"}, {"Size", "5"}}) +
                         Instance("Disk", {{"Id", "2"}}) + Instance("Old", {{"Id", "o"}}) +
                         Instance("Note", {{"Text", "x"}}));
  const std::string b =
      Write("b.xml", Class("Disk", Property("Id") + Property("Size") +
                                       Property("UpTime", "uint32") + Property("Bus")) +
                         fNote + Instance("Disk", {{"Id", "1"}}) + Instance("Disk", {{"Id", "3"}}) +
                         Instance("Note", {{"Text", "x"}}) + Instance("Note", {{"Text", "x"}}));
  const TProgramRun run = fInstallation.Run({"diff", a, b});
  EXPECT_EQ(run.fExitCode, 1) << run.fErrors;
  EXPECT_EQ(run.fOutput,
            "root/cimv2\n"
            "~ class Disk\n"
            "    + Bus     string\n"
            "    ~ UpTime  string -> uint32\n"
            "~ Disk.Id=\"1\"\n"
            "    ~ Size  5 -> -\n"
            "- Disk.Id=\"2\"\n"
            "+ Disk.Id=\"3\"\n"
            "+ Note Text=\"x\"\n"
            "- class Old\n"
            "- Old.Id=\"o\"\n");
  const std::string text = fInstallation.Run({"diff", b, a, "--json"}).fOutput;
  auto json = nlohmann::json::parse(text)["differences"][2];
  EXPECT_EQ(json["path"], "Disk.Id=\"1\"");
  EXPECT_EQ(json["property"].dump() + json["old"].dump() + json["new"].dump(), R"("Size"null"5")");
}

TEST_F(QDXDiff, ComparesDeclarationsAndWarnsOfValuesThatAreLost) {
  const std::string base = Class("Base", "") + Class("Other", "");
  const auto derived = [&](const std::string& super, const std::string& declared) {
    return base + "<VALUE.OBJECT><CLASS NAME=\"Sub\" SUPERCLASS=\"" + super +
           "\"><PROPERTY NAME=\"P\" TYPE=\"datetime\">" + declared +
           "</PROPERTY></CLASS></VALUE.OBJECT>";
  };
  const std::string time = "<VALUE>20040315143000.000000+060</VALUE>";
  const std::string a = Write("a.xml", derived("Base", time));
  const std::string b = Write("b.xml", derived("Other", kKey));
  EXPECT_EQ(fInstallation.Run({"diff", a, b}).fOutput,
            "root/cimv2\n~ class Sub\n    ~ (superclass)  Base -> Other\n"
            "    ~ P             datetime = \"20040315143000.000000+060\" -> datetime key\n");
  const auto wild = Write("w.xml", derived("Base", "<VALUE>200403151430**.******+060</VALUE>"));
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
