// SPDX-License-Identifier: Apache-2.0
// Why tables lack values and instances.
#include "describe/tables.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace NVORNQDX20::NDescribe {
namespace {

struct TNode {
  TNumber fID;
  TInstanceName fParent;
};

TNumber HalfOfID(const TNode& node) {
  if (*node.fID == 1) throw TExplainedException(kQDXStatusNotFound, "first");
  if (*node.fID % 2 != 0) throw std::out_of_range("odd");
  return *node.fID / 2;
}

/// A superclass without keys.
TTable<TNode> Elements() { return {"T_Element", "A part of a tree.", TTable<TNode>::TRows()}; }

TTable<TNode> Nodes() {
  const auto list = [](const TRequest&) -> std::vector<TNode> {
    return {{1U, {"T_Element", "2"}}, {2U, {"T_Node", "3"}},  {2U, {}},
            {Missing("lost"), {}},    {4U, {"T_Other", "x"}}, {5U, {"T_None", "x"}}};
  };
  return TTable<TNode>{"T_Node",
                       "A node of a tree.",
                       list,
                       {{"ID", "Which.", &TNode::fID, kKey},
                        {"Parent", "The next.", &TNode::fParent, TRefersTo{"T_Node"}},
                        {"Half", "Of the ID.", HalfOfID}}}
      .DerivedFrom(Elements());
}

TEST(Tables, LeaveOutWhatHasNoKeysOfItsOwn) {
  const TTable<TOnly> other{"T_Other", "", kOnly, {{"Id", "", Constant("x"), kKey}}};
  const auto ns = MakeProvider("test", "root/test", {Elements(), Nodes(), other})
                      ->GetNamespace("root/test", {});
  const std::vector<std::string> nodes = {"ID=1 Parent=T_Node.ID=\"2\" Half=null ",
                                          "ID=2 Parent=null Half=1 ", "ID=4 Parent=null Half=2 ",
                                          "ID=5 Parent=null Half=null "};
  EXPECT_EQ(InstancesOf(*ns, "T_Node"), nodes);
  const TMissingReasons reasons = {
      {{"T_Node", "1", "Half"}, "first"},
      {{"T_Node", "2", "Parent"}, "there is no T_Node 3"},
      {{"T_Node", "5", "Half"}, "odd"},
      {{"T_Node", "5", "Parent"}, "there is no class T_None"},
      {{"T_Node", "4", "Parent"}, "T_Other x is no T_Node"},
      {{"T_Node", "", ""}, "there are several 2: only the first is kept; ID: lost"}};
  EXPECT_EQ(ReadMissingReasons(*ns), reasons);
}

TEST(Tables, ExplainOnceWhatManyInstancesLackForTheSameReason) {
  struct TLack {
    std::string fName;
    TNumber fSize;
  };
  const auto reasonsOf = [](const std::vector<TLack>& all) {
    const TTable<TLack> table{"T_Lack",
                              "",
                              [&all](const TRequest&) { return all; },
                              {{"Name", "", &TLack::fName, kKey}, {"Size", "", &TLack::fSize}}};
    const auto provider = MakeProvider("test", "root/test", {table});
    return ReadMissingReasons(*provider->GetNamespace("root/test", {}));
  };
  const TReason error("gone", TReason::kError);
  const std::vector<TLack> some = {{"a", Missing(error)},
                                   {"b", Missing("gone")},
                                   {"c", 1U},
                                   {"d", Failed("gone")},
                                   {"e", Missing("far")}};
  const TMissingReasons shared = {{{"T_Lack", "", "Size"}, error},
                                  {{"T_Lack", "b", "Size"}, "gone"},
                                  {{"T_Lack", "e", "Size"}, "far"}};
  const TMissingReasons reasons = reasonsOf(some);
  EXPECT_EQ(reasons, shared);
  EXPECT_TRUE(reasons.at({"T_Lack", "", "Size"}).IsError());
  // What is not there is shared with the names of the files that differ; errors are not.
  const auto file = [](const char* name) {
    return Missing(std::string("/sys/") + name + ": gone");
  };
  const TMissingReasons files = {{{"T_Lack", "", "Size"}, "/sys/*_max: gone"},
                                 {{"T_Lack", "d", "Size"}, "/sys/hw1/temp1_min: gone"},
                                 {{"T_Lack", "e", "Size"}, TReason("/sys/hw1/temp7_max: gone")}};
  EXPECT_EQ(reasonsOf({{"a", file("hw1/temp1_max")},
                       {"b", file("hw12/temp1_max")},
                       {"c", file("x/y/temp2_max")},
                       {"d", file("hw1/temp1_min")},
                       {"e", Failed("/sys/hw1/temp7_max: gone")}}),
            files);
  const TMissingReasons numbers = {{{"T_Lack", "", "Size"}, "/sys/hw*/temp1: gone"}};
  EXPECT_EQ(reasonsOf({{"a", file("hw12/temp1")}, {"b", file("hw1/temp1")}}), numbers);
  // An instance without a name would be taken for all of them.
  const TMissingReasons separate = {{{"T_Lack", "", "Size"}, "gone"},
                                    {{"T_Lack", "a", "Size"}, "far"},
                                    {{"T_Lack", "b", "Size"}, "far"}};
  EXPECT_EQ(reasonsOf({{"", Missing("gone")}, {"a", Missing("far")}, {"b", Missing("far")}}),
            separate);
}

TEST(Tables, KeepAnErrorThatALongReasonHasNoRoomFor) {
  const std::string absence(600, 'x');
  const auto list = [&absence](const TRequest&) -> TInstances<TOnly> { return {{{}}, absence}; };
  const auto lost = [](const TOnly&) -> TReading<std::uint32_t> { return Failed("lost"); };
  const TTable<TOnly> table{"T_Long", "", list, {{"Id", "", lost, kKey}}};
  const auto ns = MakeProvider("test", "root/test", {table})->GetNamespace("root/test", {});
  const TReason reason = ReadMissingReasons(*ns).at({"T_Long", "", ""});
  EXPECT_EQ(reason, absence);
  EXPECT_TRUE(reason.IsError());
}

TEST(Tables, OverrideRowsOfTheirSuperclass) {
  const auto none = [](const char* why) {
    return [why](const TOnly&) -> TNumber { return Missing(why); };
  };
  const auto base = Table("T_Base", {{"Size", "", none("base")}, Key("1"), {"N", "", Constant(1)}});
  const auto sub =
      Table("T_Sub", {{"SIZE", "", none("sub")}, {"n", "", Constant(2)}}).DerivedFrom(base);
  const auto ns = Describe<TRequest>(TDescriber("test", "n"), {base, sub}, {"/", {}});
  EXPECT_EQ(InstancesOf(*ns, "T_Sub"), std::vector<std::string>{"SIZE=null Id=1 n=2 "});
  const TMissingReasons reasons = {{{"T_Base", "", "Size"}, "base"},
                                   {{"T_Sub", "", "SIZE"}, "sub"}};
  EXPECT_EQ(ReadMissingReasons(*ns), reasons);
}

TEST(Tables, HaveAReasonForEachNull) {
  const auto row = [](const char* name, auto read) {
    return TRow<TOnly>(name, "", [read](const TOnly&) { return read(); });
  };
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const auto table = Table(
      "T_A",
      {Key("1"),
       row("Missing", []() -> TNumber { return Missing(""); }),
       row("Exception", []() -> bool { throw std::runtime_error(""); }),
       row("Number", []() -> bool { throw 5; }),
       row("DateTime", [] { return TCIMDateTime(); }),
       row("Pointer", []() -> const char* { return nullptr; }),
       row("Text", []() -> TReading<std::string> { return static_cast<const char*>(nullptr); }),
       row("Unread", [] { return *TNumber(Missing("no number")); }),
       {"To", "", [](const TOnly&) { return TInstanceName(); }, TRefersTo{"T_A"}},
       row("NaN", [] { return kNaN; }),
       row("NaNs", [] {
         return std::vector<double>{1, kNaN};
       })});
  const auto ns = Describe<TRequest>(TDescriber("test", "n"), {table}, {"/", {}});
  const TMissingReasons reasons = {{{"T_A", "", "Missing"}, "was not read"},
                                   {{"T_A", "", "Exception"}, "failed without a reason"},
                                   {{"T_A", "", "Number"}, "failed without a reason"},
                                   {{"T_A", "", "DateTime"}, "was not read"},
                                   {{"T_A", "", "Pointer"}, "was not read"},
                                   {{"T_A", "", "Text"}, "was not read"},
                                   {{"T_A", "", "Unread"}, "no number"},
                                   {{"T_A", "", "To"}, "refers to nothing"},
                                   {{"T_A", "", "NaN"}, "is not a finite number"},
                                   {{"T_A", "", "NaNs"}, "is not a finite number"}};
  EXPECT_EQ(ReadMissingReasons(*ns), reasons);
}

}  // namespace
}  // namespace NVORNQDX20::NDescribe
