// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/provider.h>

#include "support/expect_status.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using namespace NVORNQDX20;
using namespace NDescribe;

namespace {

TTable<TOnly> Table(const char* name, const TTable<TOnly>::TRows& rows) {
  return {name, "", kOnly, rows};
}

TRow<TOnly> ToKey(const char* name) {
  return {name, "", [](const TOnly&) { return TInstanceName(); }, kKey, TRefersTo{"T_A"}};
}

std::string RefusalOf(const std::function<void()>& make) {
  try {
    make();
  } catch (const TExplainedException& refusal) {
    return refusal.GetReason();
  }
  return {};
}

TEST(Tables, AreRefusedWhereTheyContradictThemselves) {
  const TRow<TOnly> key{"Id", "", Constant("1"), kKey};
  const TRow<TOnly> other{"id", "", Constant("2")};
  const auto lostReader = [](const TOnly&) { return TInstanceName(); };
  const TRow<TOnly> lost{"To", "", lostReader, TRefersTo{"T_X"}};
  const std::pair<std::vector<TClassOf<TRequest>>, std::string> rows[] = {
      {{Table("T_A", {other})}, "class T_A: has no key"},
      {{Table("T_A", {key, other})}, "class T_A: has two properties id"},
      {{Table("T_A", {key}), Table("t_a", {key})}, "class t_a: is declared twice"},
      {{Table("T_A", {key, lost})},
       "class T_A: the referenced class T_X is not declared before it"},
      {{Table("T_A", {key, {"A B", "", Constant("")}})}, "\"A B\" is no CIM name"},
      {{Table("T_A", {key, {"N", "", Constant(1), TUnit{"10^3 byte"}}})},
       "class T_A: the unit of N, \"10^3 byte\", is no PUnit such as \"byte * 10^3\""},
      {{Table("T_A", {key, {"N", "", Constant<std::int8_t>(1), TEnumeration{{1, "a"}, {1, "b"}}}})},
       "class T_A: the enumeration of N has 1 twice"},
      {{Table("T_A", {key, {"N", "", Constant<std::uint8_t>(1), TEnumeration{{256, "a"}}}})},
       "class T_A: the enumeration of N has 256, which a uint8 cannot be"},
      {{Table("T_A", {key,
                      {"N", "", Constant(std::vector<std::uint8_t>()),
                       TEnumeration{{1, "a"}, {256, "b"}}}})},
       "class T_A: the enumeration of N has 256, which a uint8 cannot be"},
      {{Table("T_A", {key, {"N", "", Constant(1), TEnumeration{{-1, nullptr}}}})},
       "class T_A: the enumeration of N has no text for -1"},
      {{Table("T_A", {key}), Table("T_B", {ToKey("One"), ToKey("Two")})},
       "class T_B: has two references as keys, but is no association"},
      {{Table("T_A", {key}), Table("T_B", {ToKey("One")}).AsAssociation()},
       "class T_B: is an association with fewer than two references"},
      {{Table("VORNSG_unavailableValue", {key})},
       "class VORNSG_unavailableValue: has the name of the class of missing values"},
      {{Table("T_B", {}).DerivedFrom(Table("T_A", {key})), Table("T_A", {key})},
       "class T_B: its superclass T_A is not declared before it"}};
  for (const auto& [classes, reason] : rows) {
    const auto make = [&classes = classes] { MakeProvider("test", "root/test", classes); };
    EXPECT_EQ(RefusalOf(make), reason);
  }
  const std::pair<std::function<void()>, std::string> others[] = {
      {[] {
         Table("T_A", {{nullptr, "", Constant(1)}});
       },
       "the name of a row is a null pointer"},
      {[] {
         Table("T_A", {{"N", nullptr, Constant(1)}});
       },
       "the description of row N is a null pointer"},
      {[] {
         Table("T_A", {{"N", "", Constant(1), TUnit{nullptr}}});
       },
       "the unit of row N is a null pointer"},
      {[&] { TRow<TOnly>("To", "", lostReader, TRefersTo{nullptr}); },
       "the class of row To is a null pointer"},
      {[] { Table(nullptr, {}); }, "the name of a class is a null pointer"},
      {[&] { MakeProvider("", "n", {Table("T_A", {key})}); }, "the provider has no name"},
      {[&] { MakeProvider("p", "", {Table("T_A", {key})}); }, "the namespace has no name"},
      {[&] {
         Describe<TRequest>(TDescriber("p", "n"), {Table("T_A", {other})}, {"/", {}});
       },
       "class T_A: has no key"}};
  for (const auto& [make, reason] : others) EXPECT_EQ(RefusalOf(make), reason);
  EXPECT_NO_THROW(MakeProvider("test", "root/test", {Table("T_A", {key}), Table("T_B", {key})}));
}

TEST(Units, FollowTheGrammar) {
  const auto check = [](const char* unit) {
    CheckClasses<TRequest>({Table("T_A", {{"Id", "", Constant(1), kKey, TUnit{unit}}})});
  };
  for (const char* unit : {"", "degree celsius", "byte * 10^3", "ampere*second/meter / 60",
                           "decibel(m) * 10 ^ -1", "byte * 1024 / 2^+10"}) {
    EXPECT_NO_THROW(check(unit)) << unit;
  }
  for (const char* unit : {"%", "byte *", "byte * 10^", "/ second", "byte * 10^3 / second",
                           "byte per second, roughly", "byte * 0"}) {
    EXPECT_QDX_STATUS(check(unit), kQDXStatusInvalidClass);
  }
}

}  // namespace
