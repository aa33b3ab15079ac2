// SPDX-License-Identifier: Apache-2.0
#include <qdxcompare/compare.h>

#include <gtest/gtest.h>

#include <cmath>

#include "compare/support.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

const TCIMValue kNoNumber(TType::kCIMTypeUint8, 0);

TCIMValue Number(int number) { return static_cast<unsigned char>(number); }

/// With the key Id, a value and one that changes all the time.
void AddDisks(const TNamespace& ns, const std::vector<std::vector<int>>& rows) {
  AddClass(ns, "Disk", {{"Id", kNoNumber}}, {{"Size", kNoNumber}, {"UpTime", kNoNumber}});
  for (const auto& row : rows) {
    AddInstance(ns, "Disk",
                {{"Id", Number(row[0])}, {"Size", Number(row[1])}, {"UpTime", Number(row[2])}});
  }
}

/// Without keys.
void AddNotes(const TNamespace& ns, const std::vector<std::pair<std::string, int>>& rows) {
  AddClass(ns, "Note", {}, {{"Text", kNoText}, {"UpTime", kNoNumber}});
  for (const auto& [text, time] : rows) {
    AddInstance(ns, "Note", {{"Text", text}, {"UpTime", Number(time)}});
  }
}

TEST(Comparison, MatchesInstancesWithoutKeysByTheirValues) {
  const TNamespace a = MakeNamespace(), b = MakeNamespace(), c = MakeNamespace();
  AddNotes(a, {{"x", 1}, {"y", 1}, {"x", 1}});
  AddNotes(b, {{"x", 1}, {"x", 1}, {"y", 1}});
  AddNotes(c, {{"y", 1}, {"x", 1}, {"\xff", 1}});
  EXPECT_EQ(Difference(a, b), "");
  EXPECT_EQ(Difference(a, c),
            "-instance test:Note Text=\"x\"  null null\n"
            "+instance test:Note Text=\"\xef\xbf\xbd\"  null null\n");
}

TEST(Comparison, LeavesOutWhatChangesAllTheTimeUnlessItIsAskedFor) {
  const TNamespace a = MakeNamespace(), b = MakeNamespace();
  AddDisks(a, {{1, 5, 7}});
  AddNotes(a, {{"x", 1}});
  AddDisks(b, {{1, 5, 8}});
  AddNotes(b, {{"x", 2}});
  EXPECT_EQ(Difference(a, b), "");
  TComparisonOptions all;
  all.fAll = true;
  EXPECT_EQ(Difference(a, b, all),
            "~value test:Disk.Id=\"1\" UpTime 7 8\n"
            "-instance test:Note Text=\"x\" UpTime=1  null null\n"
            "+instance test:Note Text=\"x\" UpTime=2  null null\n");
}

TEST(Comparison, GoesBelowWhatOnlyOneSideHas) {
  const TNamespace onlyA = MakeRepositoryNamespace("a"), onlyB = MakeRepositoryNamespace("c");
  const TNamespace inA = MakeRepositoryNamespace("B"), inB = MakeRepositoryNamespace("b");
  AddNotes(onlyA, {{"x", 1}});
  AddNotes(inA, {});
  AddDisks(inB, {{1, 5, 7}});
  AddNotes(inB, {});
  AddNotes(onlyB, {});
  EXPECT_EQ(TextOf(Compare(Compared({inA, onlyA}), Compared({onlyB, inB}), {})),
            "-namespace a:  null null\n-class a:Note  null null\n"
            "-instance a:Note Text=\"x\"  null null\n"
            "+class b:Disk  null null\n+instance b:Disk.Id=\"1\"  null null\n"
            "+namespace c:  null null\n+class c:Note  null null\n");
}

TEST(Comparison, ComparesDeclarationsAndTheValuesThatBothSidesHave) {
  const TNamespace a = MakeNamespace(), b = MakeNamespace();
  AddClass(a, "C", {{"B", kNoText}}, {{"A", kNoNumber}, {"C", kNoNumber}, {"D", Number(1)}});
  AddDerived(b, "c", AddClass(b, "Base", {{"b", kNoText}}),
             {{"C", static_cast<unsigned short>(3)}, {"d", Number(2)}, {"E", kNoNumber}});
  AddInstance(a, "C", {{"B", "b"}, {"C", Number(3)}, {"D", Number(4)}});
  AddInstance(b, "c", {{"b", "b"}, {"C", static_cast<unsigned short>(3)}, {"d", Number(5)}});
  EXPECT_EQ(Difference(a, b),
            "+class test:Base  null null\n"
            "~superclass test:C  null \"Base\"\n"
            "-declaration test:C A \"uint8\" null\n"
            "~declaration test:C C \"uint8\" \"uint16 = 3\"\n"
            "~declaration test:C D \"uint8 = 1\" \"uint8 = 2\"\n"
            "+declaration test:C E null \"uint8\"\n"
            "~value test:C.B=\"b\" D 4 5\n");
}

/// A namespace with one instance that has one value.
TNamespace WithValue(const TCIMValue& value, const std::string& qualifier = "",
                     const TCIMValue& qualified = kNoText) {
  const TNamespace ns = MakeNamespace();
  for (const char* name : {"ArrayType", "EmbeddedInstance"}) {
    if (qualifier != name) continue;
    ns->CreateQualifierDecl(name, kNoText, kScopeAny, kFlavorOverridable, {})->Commit();
  }
  const auto cimClass = ns->CreateClass("Thing", {}, {});
  Qualify(ns, cimClass->CreatePropertyDecl("Id", kNoText, {}), "Key", TCIMValue(true))->Commit();
  const TCIMValue initial(value.GetType(), value.IsArray() ? 1 : 0);
  const auto property = cimClass->CreatePropertyDecl("Value", initial, {});
  if (!qualified.IsNull()) Qualify(ns, property, qualifier, qualified);
  property->Commit();
  cimClass->Commit({});
  AddInstance(ns, "Thing", {{"Id", "1"}, {"Value", value}});
  return ns;
}

TCIMValue Array(const std::vector<std::string>& texts) {
  return TCIMValue(TType::kCIMTypeString, 1, {texts.begin(), texts.end()});
}

struct TValueRow {
  const char* fName;
  TCIMValue fOne;
  TCIMValue fOther;
  bool fAreEqual;
  const char* fQualifier = "";
  TCIMValue fQualified = kNoText;
};

TEST(Comparison, ComparesValuesByWhatTheyMean) {
  const auto time = [](const char* text) { return TCIMValue(TCIMDateTime(text)); };
  const TValueRow rows[] = {
      {"bag", Array({"a", "b", "b"}), Array({"b", "a", "b"}), true, "ArrayType", "Bag"},
      {"bag with other counts", Array({"a", "b", "b"}), Array({"a", "a", "b"}), false, "ArrayType",
       "bag"},
      {"ordered", Array({"a", "b"}), Array({"b", "a"}), false, "ArrayType", "Ordered"},
      {"bag by default", Array({"a", "b"}), Array({"b", "a"}), true, "ArrayType"},
      {"without array types", Array({"a", "b"}), Array({"b", "a"}), false},
      {"texts joined", Array({"a", "b"}), Array({"ab"}), false},
      {"instant", time("20240301003000.000000+060"), time("20240229233000.000000+000"), true},
      {"other instant", time("20240301003000.000000+060"), time("20240301003000.000000+000"),
       false},
      {"intervals modulo 2^32 seconds", time("00000000000001.000000:000"),
       time("00049710062817.000000:000"), false},
      {"interval and point", time("00000001000000.000000:000"), time("19700102000000.000000+000"),
       false},
      {"embedded", "<A X='1' Y='2'/>", "<A Y='2' X='1'/>\n", true, "EmbeddedInstance", "Thing"},
      {"text that is not embedded", "<A X='1' Y='2'/>", "<A Y='2' X='1'/>", false},
      {"not a number", std::nan(""), std::nan(""), true},
      {"null and empty", kNoText, "", false},
      {"null and null", kNoText, kNoText, true}};
  for (const TValueRow& row : rows) {
    const TNamespace a = WithValue(row.fOne, row.fQualifier, row.fQualified);
    const TNamespace b = WithValue(row.fOther, row.fQualifier, row.fQualified);
    EXPECT_EQ(Difference(a, b).empty(), row.fAreEqual) << row.fName << "\n" << Difference(a, b);
  }
}

TEST(Comparison, TakesAnArrayForABagIfBothSidesDo) {
  const TNamespace bag = WithValue(Array({"a", "b"}), "ArrayType", "Bag");
  const TNamespace turned = WithValue(Array({"b", "a"}), "ArrayType", "Bag");
  for (const TNamespace& other : {WithValue(Array({"b", "a"})), WithValue(Array({"a", "b"}))}) {
    EXPECT_NE(Difference(bag, other).empty(), Difference(turned, other).empty());
    EXPECT_NE(Difference(other, bag).empty(), Difference(other, turned).empty());
  }
}

TEST(Comparison, TakesReasonsThatSeveralShareForThoseOfOne) {
  const std::string same = "/run/b*: No such file";
  const std::tuple<std::string, std::string, bool> rows[] = {
      {same, "/run/b*:0: No such file", true},
      {same, "/run/*: No such file", true},
      {same, "/run/b8:0: No such file", true},
      {same, same, true},
      {same, "/run/c8:0: No such file", false},
      {same, "/run/b*: Permission denied", false},
      {same, "/run/b8:0: Permission denied", false},
      {same, "/run/b8: Permission denied; /run/b9: No such file", false},
      {same, " No such file", false},
      {same, "not asked for", false},
      {same, "", false},
      {"/run/ab*ba", "/run/aba", false},
      {"/run/b8:0: No such file", "/run/b8:1: No such file", false},
      {"a * b", "a c b", false}};
  const auto with = [](const std::string& reason) {
    const TNamespace ns = MakeNamespace();
    NDescribe::WriteMissingValues(*ns, {{"Disk", "", "Model", NDescribe::TReason(reason)}});
    return ns;
  };
  for (const auto& [a, b, isSame] : rows) {
    EXPECT_EQ(Difference(with(a), with(b)).empty(), isSame) << a << " " << b;
    EXPECT_EQ(Difference(with(b), with(a)).empty(), isSame) << b << " " << a;
  }
}

TEST(Comparison, IgnoresClassesAndPropertiesInAnyCase) {
  const TNamespace a = MakeNamespace(), b = MakeNamespace();
  for (const TNamespace& ns : {a, b}) {
    const bool isA = ns == a;
    for (const char* name : {"VORNSG_Disk", "Other"}) {
      AddClass(ns, name, {{"Id", kNoText}}, {{"Size", isA ? kNoText : TCIMValue("x")}});
      AddInstance(ns, name, {{"Id", "1"}, {"Size", isA ? "1" : "2"}});
    }
  }
  const std::string ofDisk =
      "~declaration test:VORNSG_Disk Size \"string\" \"string = \\\"x\\\"\"\n"
      "~value test:VORNSG_Disk.Id=\"1\" Size \"1\" \"2\"\n";
  TComparisonOptions options;
  options.fIgnored = {{"other", ""}};
  EXPECT_EQ(Difference(a, b, options), ofDisk);
  for (const TIgnored& ignored :
       {TIgnored{"disk", ""}, TIgnored{"vornsg_disk", "SIZE"}, TIgnored{"*", "size"}}) {
    options.fIgnored = {{"other", "size"}, ignored};
    EXPECT_EQ(Difference(a, b, options), "") << ignored.fClass << " " << ignored.fProperty;
  }
  options.fIgnored = {{"Other", ""}, {"isk", ""}, {"disk", "siz"}};
  EXPECT_EQ(Difference(a, b, options), ofDisk);
}

TEST(Comparison, ComparesQualifiersAndMethodsIfAskedFor) {
  const TNamespace a = MakeNamespace(), b = MakeNamespace();
  for (const TNamespace& ns : {a, b}) {
    const TCIMValue initial(ns == a ? "one" : "two");
    ns->CreateQualifierDecl("Version", initial, kScopeAny, kFlavorOverridable, {})->Commit();
    const auto cimClass = ns->CreateClass("Thing", {}, {});
    Qualify(ns, cimClass->CreatePropertyDecl("Id", kNoText, {}), "Key", true)->Commit();
    const auto size = cimClass->CreatePropertyDecl("Size", kNoText, {});
    Qualify(ns, size, ns == a ? "Version" : "version", TCIMValue(ns == a ? "1" : "2"))->Commit();
    if (ns == b) Qualify(ns, cimClass, "Version", TCIMValue("3"));
    cimClass->Commit({});
  }
  EXPECT_EQ(Difference(a, b), "");
  TComparisonOptions schema;
  schema.fSchema = true;
  const std::string text = Difference(a, b, schema);
  EXPECT_NE(text.find("~qualifier test: [Version]"), std::string::npos) << text;
  EXPECT_NE(text.find("~qualifier test:Thing Size [Version] \"1\" \"2\"\n"), std::string::npos)
      << text;
  EXPECT_NE(text.find("+qualifier test:Thing [Version] null \"3\"\n"), std::string::npos) << text;
}

}  // namespace
}  // namespace NVORNQDX20
