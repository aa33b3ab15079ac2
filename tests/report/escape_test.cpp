// SPDX-License-Identifier: Apache-2.0
#include "escape.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace NVORNQDX20::NReport {
namespace {

TEST(Escape, LeavesNothingThatHTMLObeys) {
  struct TRow {
    std::string fText;
    std::string fEscaped;
  };
  const TRow rows[] = {
      {"<b a=\"1\" c='2'>&amp;", "&lt;b a=&quot;1&quot; c=&#39;2&#39;&gt;&amp;amp;"},
      // Lines and tabs are harmless, other controls are not.
      {"a\n\tb\r", "a\n\tb[U+000D]"},
      {"a\0b\x1b\x7f"s, "a[U+0000]b[U+001B][U+007F]"},
      {"\u0085\u009b", "[U+0085][U+009B]"},
      // What changes the direction of writing, has no width, or is no character.
      {"\u202e\u2066\u200f\u061c", "[U+202E][U+2066][U+200F][U+061C]"},
      {"\u200b\ufeff\u00ad\U000E0041", "[U+200B][U+FEFF][U+00AD][U+E0041]"},
      {"\uffff\U0010ffff", "[U+FFFF][U+10FFFF]"},
      {"\xff\xc0\xaf", "\ufffd\ufffd\ufffd"},
      {"J\u00fcrgen \u65e5\u672c \U0001F600", "J\u00fcrgen \u65e5\u672c \U0001F600"}};
  for (const TRow& row : rows) EXPECT_EQ(Escaped(row.fText), row.fEscaped);
}

TEST(Escape, JSONCannotEndItsElement) {
  const TJSON json = {"</script><!--", "\u00fc\u2028", "\xff"};
  EXPECT_EQ(ScriptJSON(json), "[\"\\u003c/script>\\u003c!--\",\"\\u00fc\\u2028\",\"\\ufffd\"]");
  EXPECT_EQ(TJSON::parse(ScriptJSON(json))[0], json[0]);
}

}  // namespace
}  // namespace NVORNQDX20::NReport
