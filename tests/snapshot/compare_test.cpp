// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/compare.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TNamespaces = std::vector<TNamespaceSnapshot>;
using TValues = std::vector<TJSON>;

/// A line a difference: its sign and element, where it is, the property, old and new.
std::string TextOf(const std::vector<TDifference>& differences) {
  static const char* const kSigns[] = {"-", "+", "~"};
  static const char* const kElements[] = {"namespace",   "class",    "superclass",
                                          "declaration", "instance", "value"};
  std::string text;
  for (const TDifference& one : differences) {
    text += std::string(kSigns[one.fChange]) + kElements[one.fElement] + " " + one.fNamespace;
    text += ":" + one.fOwner + " " + one.fProperty + " " + one.fOld.dump() + " ";
    text += one.fNew.dump() + "\n";
  }
  return text;
}

std::string Difference(const TNamespaces& a, const TNamespaces& b, bool all = false) {
  return TextOf(Compare(a, b, all));
}

TNamespaces With(std::vector<TClassSnapshot> classes) { return {{"n", std::move(classes)}}; }

TPropertySnapshot Property(const std::string& name, const std::string& type, bool isKey = false,
                           const TJSON& defaultValue = nullptr) {
  return {name, type, isKey, name == "UpTime", defaultValue};
}

/// With the key Id, a value and one that changes all the time.
TClassSnapshot Disk(const std::vector<TValues>& rows) {
  TClassSnapshot disk{"Disk", "", {Property("Id", "uint8", true)}, 0, {}};
  for (const char* name : {"Size", "UpTime"}) disk.fProperties.push_back(Property(name, "uint8"));
  for (const TValues& row : rows) disk.fInstances.push_back({"Disk.Id=" + row[0].dump(), row});
  return disk;
}

/// Without keys.
TClassSnapshot Note(const std::vector<TValues>& rows) {
  TClassSnapshot note{"Note", "", {Property("Text", "string"), Property("UpTime", "uint8")}, 0, {}};
  for (const TValues& row : rows) note.fInstances.push_back({"Note", row});
  return note;
}

TEST(Comparison, MatchesInstancesWithoutKeysByTheirValues) {
  const TNamespaces a = With({Note({{"x", 1}, {"y", 1}, {"x", 1}})});
  EXPECT_EQ(Difference(a, With({Note({{"x", 1}, {"x", 1}, {"y", 1}})})), "");
  EXPECT_EQ(Difference(a, With({Note({{"y", 1}, {"x", 1}, {"\xff", 1}})})),
            "-instance n:Note Text=\"x\"  null null\n"
            "+instance n:Note Text=\"\xef\xbf\xbd\"  null null\n");
}

TEST(Comparison, LeavesOutWhatChangesAllTheTimeUnlessItIsAskedFor) {
  const TNamespaces a = With({Disk({{1, 5, 7}}), Note({{"x", 1}})});
  const TNamespaces b = With({Disk({{1, 5, 8}}), Note({{"x", 2}})});
  EXPECT_EQ(Difference(a, b), "");
  EXPECT_EQ(Difference(a, b, true),
            "~value n:Disk.Id=1 UpTime 7 8\n"
            "-instance n:Note Text=\"x\" UpTime=1  null null\n"
            "+instance n:Note Text=\"x\" UpTime=2  null null\n");
}

TEST(Comparison, GoesBelowWhatOnlyOneSideHas) {
  const TNamespaces a = {{"b", {Note({})}}, {"a", {Disk({}), Note({{"x", 1}})}}};
  const TNamespaces b = {{"c", {Note({})}}, {"b", {Disk({{1, 5, 7}}), Note({})}}};
  EXPECT_EQ(Difference(a, b),
            "-namespace a:  null null\n-class a:Disk  null null\n-class a:Note  null null\n"
            "-instance a:Note Text=\"x\"  null null\n"
            "+class b:Disk  null null\n+instance b:Disk.Id=1  null null\n"
            "+namespace c:  null null\n+class c:Note  null null\n");
}

TEST(Comparison, ComparesDeclarationsAndTheValuesThatBothSidesHave) {
  const std::vector<TPropertySnapshot> before = {
      Property("A", "uint8"), Property("B", "string", true), Property("C", "uint8"),
      Property("D", "uint8", false, 1)};
  const std::vector<TPropertySnapshot> after = {Property("B", "string"), Property("C", "uint16"),
                                                Property("D", "uint8", true, 2),
                                                Property("E", "uint8[]")};
  const TClassSnapshot a{"C", "", before, 0, {{"C.B=b", {1, "b", 3, 4}}}};
  const TClassSnapshot b{"C", "Base", after, 0, {{"C.B=b", {"b", 3, 5, 6}}}};
  EXPECT_EQ(Difference(With({a}), With({b})),
            "~superclass n:C  null \"Base\"\n"
            "-declaration n:C A \"uint8\" null\n"
            "~declaration n:C B \"string key\" \"string\"\n"
            "~declaration n:C C \"uint8\" \"uint16\"\n"
            "~declaration n:C D \"uint8 = 1\" \"uint8 key = 2\"\n"
            "+declaration n:C E null \"uint8[]\"\n"
            "~value n:C.B=b D 4 5\n");
  const TClassSnapshot c{"C", "Other", after, 0, b.fInstances};
  EXPECT_EQ(Difference(With({b}), With({c})), "~superclass n:C  \"Base\" \"Other\"\n");
}

}  // namespace
}  // namespace NVORNQDX20
