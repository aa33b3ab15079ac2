// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/value_json.h>

#include <qdxcore/reference.h>
#include <qdxcore/values.h>

#include <cmath>
#include <string>

#include "support/class_builder.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TEST(ValueJSON, LosesNothingThatReadersKeep) {
  using TType = TCIMValue::TCIMType;
  const TNamespace ns = MakeNamespace();  // its name is "test"
  AddClass(ns, "C", {{"Key", ""}});
  AddInstance(ns, "C", {{"Key", "a\"b"}});
  const std::pair<TCIMValue, std::string> rows[] = {
      {true, "true"},
      {static_cast<signed char>(-128), "-128"},
      {~0U, "4294967295"},
      {~0UL, "\"18446744073709551615\""},
      {-9L, "\"-9\""},
      {0.1F, "0.1"},
      {0.1, "0.1"},
      {-HUGE_VAL, "\"-inf\""},
      {HUGE_VALF, "\"inf\""},
      {std::nan(""), "\"NaN\""},
      {"a\n\"b\"", R"("a\n\"b\"")"},
      {TCIMDateTime("20040315143000.000000+060"), R"("20040315143000.000000+060")"},
      {TCIMDateTime(), "null"},
      {TCIMValue(TType::kCIMTypeUint8, 0), "null"},
      {TCIMValue(TType::kCIMTypeString, 0, {}), "[]"},
      {TCIMValue(TType::kCIMTypeSint64, 0, {1L, 2L}), R"(["1","2"])"},
      {ReferenceTo(ns, "C.Key=\"a\\\"b\""), R"("C.Key=\"a\\\"b\"")"}};
  for (const auto& [value, text] : rows) EXPECT_EQ(ToJSON(value, "TEST").dump(), text);
  EXPECT_EQ(ToJSON(ReferenceTo(ns, "C"), "root/other"), "test:C");

  int plains = 0;
  for (const auto& [value, text] : rows) {
    if (value.IsArray() || value.GetType() >= TType::kCIMTypeDateTime) continue;
    const std::string name = "P" + std::to_string(plains);
    AddClass(ns, name, {{"Key", 0U}}, {{"Value", value}});
    AddInstance(ns, name, {{"Key", 1U}, {"Value", value}});
    const auto instance = TCIMReference(ns, name + ".Key=\"1\"", TOptionsMap()).GetCIMElement();
    TPlainValue plain;
    ASSERT_TRUE(dynamic_cast<IPlainValuesOfInstance&>(*instance).FindPlainValue(1, plain)) << text;
    EXPECT_EQ(ToJSON(plain, value.GetType()).dump(), text);
    ++plains;
  }
  EXPECT_EQ(plains, 12);
}

TEST(PlainText, IsWhatPeopleRead) {
  const std::pair<TJSON, std::string> rows[] = {{nullptr, "-"},
                                                {"-", "\"-\""},
                                                {"\"-\"", R"("\"-\"")"},
                                                {"{ a }", "\"{ a }\""},
                                                {TJSON::array({"a, b", "c"}), "{ \"a, b\", c }"},
                                                {"", "\"\""},
                                                {"a \"b\"", "a \"b\""},
                                                {-0.5, "-0.5"},
                                                {TJSON::array(), "{ }"},
                                                {{"", "a", nullptr, 1}, "{ \"\", a, -, 1 }"}};
  for (const auto& [value, text] : rows) EXPECT_EQ(PlainText(value), text);
}

}  // namespace
}  // namespace NVORNQDX20
