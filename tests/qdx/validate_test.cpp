// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "cimxml/documents.h"
#include "qdx/installation.h"

namespace NVORNQDX20 {
namespace {

const char* const kKey =
    "<PROPERTY NAME='Id' TYPE='string'><QUALIFIER NAME='Key' TYPE='boolean'><VALUE>TRUE</VALUE>"
    "</QUALIFIER></PROPERTY>";

std::string Id(const std::string& value) {
  return "<PROPERTY NAME='Id' TYPE='string'><VALUE>" + value + "</VALUE></PROPERTY>";
}

std::string ReferenceTo(const std::string& id) {
  return "<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='C'><VALUE.REFERENCE>" +
         Tag("INSTANCENAME", "CLASSNAME='C'", Binding("Id", "VALUETYPE='string'", id)) +
         "</VALUE.REFERENCE></PROPERTY.REFERENCE>";
}

/// A class with a key, a value and a reference, and what follows.
std::string WithObjects(const std::string& objects) {
  return "<CIM CIMVERSION='2.0' DTDVERSION='2.4'><DECLARATION><DECLGROUP>\n"
         "<QUALIFIER.DECLARATION NAME='Note' TYPE='string'><SCOPE METHOD='true'/>"
         "</QUALIFIER.DECLARATION>\n<VALUE.OBJECT>" +
         Class(kKey + std::string("<PROPERTY NAME='p' TYPE='datetime'/>"
                                  "<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='C'/>")) +
         "</VALUE.OBJECT>\n" + objects + "</DECLGROUP></DECLARATION></CIM>";
}

std::string AnInstance(const std::string& properties) {
  return "<VALUE.OBJECT>" + Tag("INSTANCE", "CLASSNAME='C'", properties) + "</VALUE.OBJECT>\n";
}

TEST(QDXValidate, NamesEachDefectAndItsObject) {
  struct TRow {
    std::string fObjects;
    int fExitCode;
    std::string fOutput;  ///< After the name of the file.
  };
  const TRow rows[] = {
      {AnInstance(Id("1") + ReferenceTo("1") + Property("datetime", "200403151430**.******+060")),
       0, ": no defects, 2 classes, 2 instances in 1 namespace\n"},
      {AnInstance(Id("1") + ReferenceTo("2")), 1,
       ":4:148: instance C.Id=\"1\": the reference leads nowhere: C.Id=\"2\"\n"},
      {AnInstance(""), 1,
       ":4:15: an instance of class \"C\": left out: an instance lacks its key, property Id of "
       "class C\n"},
      {AnInstance(Id("1") + Property("string", "x")), 1,
       ":4:100: instance C.Id=\"1\": left out: property \"p\" is declared with another type\n"},
      {AnInstance(Id("1") + Property("datetime", "00000001256000.000000:000")), 1,
       ":4:135: instance C.Id=\"1\": \"00000001256000.000000:000\" of <PROPERTY> \"p\" is no "
       "date-time\n"},
      {"<VALUE.OBJECT><CLASS NAME='D'><QUALIFIER NAME='Note' TYPE='string'/></CLASS>"
       "</VALUE.OBJECT>\n",
       1, ":4:31: class \"D\": qualifier \"Note\" is outside of its declared scope\n"},
      {"<VALUE.OBJECT><KLASS/></VALUE.OBJECT>\n", 1, ":4:15: unknown element \"KLASS\"\n"},
      {"</CIM>", 1, ":4:3: mismatched tag\n"}};
  const TInstallation installation;
  for (const TRow& row : rows) {
    const TDocumentFile file(WithObjects(row.fObjects));
    const TProgramRun run = installation.Run({"validate", file.Path()});
    const std::string sum = row.fExitCode == 0 ? "" : "1 defect in " + file.Path() + "\n";
    EXPECT_EQ(run.fOutput, file.Path() + row.fOutput + sum) << run.fErrors;
    EXPECT_EQ(run.fExitCode, row.fExitCode);
    EXPECT_EQ(run.fErrors, "");
  }
}

TEST(QDXValidate, ReportsAllDefectsOfAllFiles) {
  std::string objects;
  for (int i = 0; i < 50; ++i) objects += AnInstance(Id("1"));
  const TDocumentFile file(WithObjects(objects)), other("<html/>");
  const TInstallation installation;
  const TProgramRun run = installation.Run({"validate", other.Path(), file.Path(), "--json"});
  EXPECT_EQ(run.fExitCode, 4);
  EXPECT_EQ(run.fErrors.find("qdx: reading document " + other.Path() + ": line 1, column 1: "), 0U)
      << run.fErrors;
  const auto defects = nlohmann::json::parse(run.fOutput);
  ASSERT_EQ(defects.size(), 49U);
  EXPECT_EQ(defects[48]["line"], 53);
  EXPECT_EQ(defects[48]["file"], file.Path());
  EXPECT_EQ(defects[48]["message"], "left out: another instance has the same keys");
  const std::string twice = "\"$0\" validate '" + file.Path() + "' - <'" + file.Path() + "'";
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "\n49 defects in -\n",
                      installation.RunScript(twice).fOutput);
  EXPECT_EQ(installation.Run({"validate", "-", "-"}).fExitCode, 2);
  EXPECT_EQ(installation.Run({"validate"}).fExitCode, 2);
}

}  // namespace
}  // namespace NVORNQDX20
