// SPDX-License-Identifier: Apache-2.0
#include "input/value_texts.h"

#include <gtest/gtest.h>

#include <cmath>

#include "store/input/host.h"

namespace NVORNQDX20::NStore {
namespace {

TEST(ValueTexts, AreTheSameForTheSameValue) {
  const TValueTexts texts("root/cimv2", "web1");
  const struct {
    TCIMValue fValue;
    std::string fText;
  } rows[] = {
      {TCIMValue(true), "true"},
      {TCIMValue(18446744073709551615UL), "18446744073709551615"},
      {TCIMValue(-1L), "-1"},
      {TCIMValue(0.1F), "0.1"},
      {TCIMValue(std::nan("")), "NaN"},
      {TCIMValue("a \"b\"\n\xc3\xa9"), "a \"b\"\n\xc3\xa9"},
      // The same instant by two clocks, one of them in another year.
      {TCIMValue(TCIMDateTime("20270101003000.000000+060")), "2026-12-31T23:30:00Z"},
      {TCIMValue(TCIMDateTime("20261231233000.000000+000")), "2026-12-31T23:30:00Z"},
      {TCIMValue(TCIMDateTime("00000012030405.000000:000")), "00000012030405.000000:000"},
      {Texts({"b", "a", "a\"\t"}), R"(["b","a","a\"\t"])"},
      {TCIMValue(TCIMValue::TCIMType::kCIMTypeReal64, 0, {0.5, std::nan("")}), R"([0.5,"NaN"])"},
  };
  for (const auto& [value, text] : rows) EXPECT_EQ(texts.TextOf(value), text);
  EXPECT_EQ(texts.TextOf(Texts({"b", "a"}), true), R"(["a","b"])");
}

TEST(ValueTexts, NameWhatReferencesLeadTo) {
  const TNamespace ns = MakeRepositoryNamespace("root/cimv2");
  AddClass(ns, "Disk", {{"SystemName", kNoText}, {"DeviceID", kNoText}});
  const TCIMValue disk = ReferenceTo(ns, "Disk.DeviceID=\"sda\",SystemName=\"web1\"");
  EXPECT_EQ(TValueTexts("root/cimv2", "web1").TextOf(disk), "Disk sda");
  EXPECT_EQ(TValueTexts("root/other", "web1").TextOf(disk), "root/cimv2:Disk sda");
  EXPECT_EQ(TValueTexts("root/cimv2", "web2").TextOf(disk), "Disk sda, web1");
}

}  // namespace
}  // namespace NVORNQDX20::NStore
