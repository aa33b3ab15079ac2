// SPDX-License-Identifier: Apache-2.0
#include <qdxreport/diff_report.h>
#include <qdxreport/report.h>

#include <qdxdescribe/missing_values.h>

#include <nlohmann/json.hpp>

#include "support/class_builder.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace NVORNQDX20 {
namespace {

/// What the page has for its script.
nlohmann::json ContentsOf(const std::string& page) {
  const std::string begin = "id=\"contents\">";
  const std::size_t start = page.find(begin) + begin.size();
  return nlohmann::json::parse(page.substr(start, page.find("</script>", start) - start));
}

nlohmann::json ClassIn(const nlohmann::json& contents, const std::string& name) {
  for (const auto& each : contents["classes"]) {
    if (each["name"] == name) return each;
  }
  return {};
}

nlohmann::json ColumnOf(const nlohmann::json& cimClass, const std::string& name) {
  for (const auto& each : cimClass["columns"]) {
    if (each["name"] == name) return each;
  }
  return {};
}

TNamespace MakeMachine() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "X_Disk", {{"Id", kNoText}},
           {{"Size", TCIMValue(std::uint64_t{0})}, {"Model", kNoText}, {"Kind", kNoText}});
  for (const std::string id : {"a", "b"}) {
    AddInstance(ns, "X_Disk",
                {{"Id", TCIMValue(id)},
                 {"Size", TCIMValue(id == "a" ? std::uint64_t{1} << 60 : std::uint64_t{7})},
                 {"Model", id == "a" ? TCIMValue("\0<script>"s) : kNoText},
                 {"Kind", TCIMValue("disk"s)}});
  }
  AddClass(ns, "X_Tie",
           {{"One", NullReference(ns, "X_Disk")}, {"Two", NullReference(ns, "X_Disk")}}, {},
           nullptr, true);
  AddInstance(ns, "X_Tie",
              {{"One", ReferenceTo(ns, "X_Disk.Id=\"b\"")},
               {"Two", ReferenceTo(ns, "X_Disk.Id=\"gone\"")}});
  NDescribe::WriteMissingValues(
      *ns, {{"X_Disk", "b", "Model", NDescribe::TReason("not told", NDescribe::TReason::kError)}});
  return ns;
}

TEST(Report, HasWhatTheScriptReads) {
  const auto contents = ContentsOf(MakeReport({MakeMachine()}));
  const auto disk = ClassIn(contents, "X_Disk");
  EXPECT_EQ(disk["labels"], (nlohmann::json{"a", "b"}));
  EXPECT_EQ(ColumnOf(disk, "Kind")["same"], "disk");
  EXPECT_EQ(ColumnOf(disk, "Size")["cells"][1]["number"], 7);
  EXPECT_EQ(ColumnOf(disk, "Model")["cells"][0], "[U+0000]<script>");
  const auto missing = ColumnOf(disk, "Model")["cells"][1]["missing"];
  EXPECT_EQ(contents["texts"][missing.get<std::size_t>()], "not told");
  EXPECT_EQ(contents["missing"], (nlohmann::json{{0, "X_Disk", "b", "Model", missing, true}}));
  const auto tie = ClassIn(contents, "X_Tie");
  EXPECT_EQ(ColumnOf(tie, "One")["same"]["instance"], disk["first"].get<int>() + 1);
  EXPECT_EQ(ColumnOf(tie, "Two")["same"], "X_Disk.Id=\"gone\"");
  // The page of what is missing has these.
  EXPECT_TRUE(ClassIn(contents, NDescribe::kMissingValueClass).is_null());
}

TEST(Report, TakesTheNamespacesThatThereAre) {
  EXPECT_EQ(ContentsOf(MakeReport({}))["classes"].size(), 0U);
  const auto contents = ContentsOf(MakeReport({MakeNamespace(), MakeMachine()}));
  EXPECT_EQ(contents["namespaces"].size(), 2U);
  EXPECT_EQ(ClassIn(contents, "X_Disk")["namespace"], 1);
}

TEST(Report, AllowsNoScriptButItsOwn) {
  const std::string page = MakeReport({MakeMachine()});
  const std::size_t policy = page.find("default-src 'none'; script-src 'sha256-");
  ASSERT_NE(policy, std::string::npos);
  EXPECT_EQ(page.find("unsafe"), std::string::npos);
  EXPECT_LT(policy, page.find("<style>"));
}

TEST(DiffReport, GroupsByDeviceAndEscapes) {
  const auto declaration = std::make_shared<TPropertySnapshot>();
  declaration->fName = "Size";
  declaration->fType = "uint64";
  declaration->fUnit = "byte";
  const std::string disk = "X_Disk.Id=\"<a>\"";
  TDifference size{
      TDifference::kValue, TDifference::kChanged, "test", disk, "Size", "512000000000", nullptr};
  size.fOldDeclaration = size.fNewDeclaration = declaration;
  size.fDevice = disk;
  TDifference gone{TDifference::kInstance, TDifference::kRemoved, "test", "X_Tie.Id=1", "", {}, {}};
  gone.fDevice = gone.fFollows = disk;
  const TDifference added{TDifference::kClass, TDifference::kAdded, "test", "X_New<", "", {}, {}};
  const std::string text(1 << 20, '<');
  const TDifference other{TDifference::kDeclaration,
                          TDifference::kUnknown,
                          "test",
                          "X_Disk",
                          "Text",
                          "\u202e",
                          text,
                          "\0why"s};
  TDifference unit = size;
  unit.fNew = "3000000000";
  const auto hertz = std::make_shared<TPropertySnapshot>(*declaration);
  hertz->fUnit = "hertz";
  unit.fNewDeclaration = hertz;
  std::vector<TDifference> fans(2, gone);
  for (const char* const machine : {"a", "b"}) {
    TDifference& fan = fans[*machine == 'a' ? 0 : 1];
    fan.fOwner = fan.fDevice = "X_Fan.Id=1,SystemName=" + std::string(machine);
    fan.fFollows.clear();
  }
  const std::string page = MakeDiffReport("<old>", "new", "2 changed",
                                          {size, gone, added, other, unit, fans[0], fans[1]});
  const char* const expected[] = {"<h1>&lt;old&gt; \u2192 new</h1><p>2 changed</p>",
                                  "<h2>Disk &lt;a&gt;</h2>",
                                  "<td class=\"text\">512 GB</td><td class=\"text\">\u2013</td>",
                                  "<td class=\"text\">512 GB</td><td class=\"text\">3 GHz</td>",
                                  "<h2>X_Fan.Id=1,SystemName=a</h2>",
                                  "<summary>1 consequence</summary>",
                                  "X_New&lt;",
                                  "[U+202E]",
                                  "[U+0000]why",
                                  "\u2026 (1046576 more bytes)",
                                  "script-src 'none'"};
  for (const char* const each : expected) EXPECT_NE(page.find(each), std::string::npos) << each;
  EXPECT_EQ(page.find("<script"), std::string::npos);
  EXPECT_LT(page.size(), 50000U);
}

}  // namespace
}  // namespace NVORNQDX20
