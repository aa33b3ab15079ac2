// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/json_lines.h>

#include "support/class_builder.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TClassSnapshot ClassWith(std::vector<TPropertySnapshot> properties) {
  TClassSnapshot cimClass;
  cimClass.fName = "C";
  cimClass.fProperties = std::move(properties);
  return cimClass;
}

std::string LineOf(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                   const TCollectionRecord& record = {},
                   const NDescribe::TMissingReasons& reasons = {}) {
  std::vector<std::size_t> all;
  for (std::size_t i = cimClass.fProperties.size(); i > 0; --i) all.push_back(i - 1);
  return TJSONLines(record, "root/x", cimClass, reasons, all).LineOf(instance);
}

TEST(JSONLines, SayEverythingOfAnInstance) {
  TClassSnapshot cimClass = ClassWith({{"Name", "string", true, false, nullptr},
                                       {"Size", "uint64", false, false, nullptr},
                                       {"Speeds", "sint64[]", false, false, nullptr}});
  cimClass.fProperties[1].fUnit = "byte";
  TCollectionRecord record;
  record.fHostName = "db\"7";
  record.fTime.Set("20040315143000.999999+060");
  EXPECT_EQ(LineOf(cimClass, {"C.Name=\"a\"", {"a", nullptr, {"1", nullptr}}}, record,
                   {{{"C", "a", "Size"}, "no \"disk\""}, {{"C", "b", "Speeds"}, "other"}}),
            R"({"host":"db\"7","time":"2004-03-15T13:30:00Z","namespace":"root/x","class":"C",)"
            R"("path":"C.Name=\"a\"","properties":{"Speeds":[1,null],"Size":null,"Name":"a"},)"
            R"("types":{"Speeds":"sint64[]","Size":"uint64","Name":"string"},)"
            R"("units":{"Size":"byte"},"absent":{"Size":"no \"disk\""}})"
            "\n");
  EXPECT_EQ(LineOf(ClassWith({}), {"C", {}}),
            R"({"host":null,"time":null,"namespace":"root/x","class":"C","path":"C",)"
            R"("properties":{},"types":{},"units":{},"absent":{}})"
            "\n");
}

TEST(JSONLines, HaveNumbersWhereADoubleIsExact) {
  struct TRow {
    const char* fType;
    TJSON fValue;
    const char* fText;
  };
  const TRow rows[] = {
      {"uint64", "0", "0"},
      {"uint64", "9007199254740991", "9007199254740991"},
      {"uint64", "9007199254740992", "\"9007199254740992\""},
      {"uint64", "18446744073709551615", "\"18446744073709551615\""},
      {"sint64", "-9007199254740991", "-9007199254740991"},
      {"sint64", "-9007199254740992", "\"-9007199254740992\""},
      {"sint64[]", {"-1", "9007199254740993", nullptr}, "[-1,\"9007199254740993\",null]"},
      {"uint64[]", TJSON::array(), "[]"},
      {"string", "12", "\"12\""},
      {"real64", "NaN", "\"NaN\""},
      {"uint32", 7, "7"}};
  for (const auto& [type, value, text] : rows) {
    const std::string line =
        LineOf(ClassWith({{"P", type, false, false, nullptr}}), {"C", {value}});
    EXPECT_NE(line.find(std::string("\"properties\":{\"P\":") + text + "},"), std::string::npos)
        << line;
  }
}

TEST(JSONLines, StayOneLineWhateverTheTextsAre) {
  const std::string hostile = "a\n\r\t\v\x1b[31m\x7f\xc2\x85\xe2\x80\xa8\xe2\x80\xaeg\"\\\xff";
  TCollectionRecord record;
  record.fHostName = hostile;
  const std::string line =
      LineOf(ClassWith({{hostile, "string", false, false, nullptr}}), {hostile, {hostile}}, record);
  EXPECT_EQ(line.find_first_of("\n\r\t\v\x1b\x7f"), line.size() - 1);
  const auto json = TJSON::parse(line);
  const std::string kept = hostile.substr(0, hostile.size() - 1) + "\xef\xbf\xbd";
  EXPECT_EQ(json["host"], kept);
  EXPECT_EQ(json["path"], kept);
  EXPECT_EQ(json["properties"][kept], kept);
  for (const char* const raw : {"\xc2\x85", "\xe2\x80\xa8", "\xe2\x80\xae"}) {
    EXPECT_EQ(line.find(raw), std::string::npos);
  }
}

TEST(JSONLines, HaveOnlyTimesThatExist) {
  TCIMDateTime longYear(60000, 1, 1, 0, 0, 0, 0, 0);
  const std::pair<TCIMDateTime, TJSON> rows[] = {
      {TCIMDateTime(), nullptr},
      {TCIMDateTime(1, 2, 3, 4, 5), nullptr},  // an interval
      {longYear, nullptr},
      {TCIMDateTime("20040229233000.000000-060"), "2004-03-01T00:30:00Z"}};
  for (const auto& [time, expected] : rows) {
    TCollectionRecord record;
    record.fTime = time;
    EXPECT_EQ(TJSON::parse(LineOf(ClassWith({}), {"C", {}}, record))["time"], expected);
  }
}

TEST(JSONLines, AreThoseOfAllClassesOfANamespace) {
  const TNamespace ns = MakeNamespace();
  AddDerived(ns, "B", AddClass(ns, "C", {{"Id", 0}}), {{"Size", 3UL}});
  AddClass(ns, "A", {{"Id", 0}});
  for (const int id : {2, 1}) AddInstance(ns, id == 2 ? "B" : "C", {{"Id", id}});
  std::string paths;
  WriteJSONLines({}, *ns, [&paths](const std::string& line) {
    paths += TJSON::parse(line)["path"].get<std::string>() + ";";
  });
  EXPECT_EQ(paths, "B.Id=\"2\";C.Id=\"1\";");
}

}  // namespace
}  // namespace NVORNQDX20
