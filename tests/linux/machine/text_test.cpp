// SPDX-License-Identifier: Apache-2.0
#include <machine/text.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TEST(MachineText, KeepsWhatCanBePrinted) {
  const std::pair<std::string, std::string> rows[] = {
      // ASCII, and the blanks around it.
      {"", ""},
      {" \t ", ""},
      {"  Z Z \n", "Z Z"},
      {"Z\x1f\x7fZ", "ZZ"},
      {std::string("Z\0Z", 3), "ZZ"},
      {"\x1b[31m~", "[31m~"},
      // UTF-8: what is longer than a byte, and the controls there.
      {"caf\xc3\xa9", "caf\xc3\xa9"},
      {"\xc2\x80\xc2\x9f\xc2\xa0", "\xc2\xa0"},
      // No UTF-8: only the first byte is lost.
      {"\xff\xe2\x82(Z\xc3", "(Z"}};
  for (const auto& [text, printable] : rows) {
    EXPECT_EQ(PrintableText(text), printable) << ::testing::PrintToString(text);
  }
}

TEST(MachineText, IsTakenLineByLine) {
  std::string_view text = "a\n\nb";
  std::string lines;
  while (!text.empty()) lines += "<" + std::string(TakeLine(text)) + ">";
  EXPECT_EQ(lines, "<a><><b>");
}

}  // namespace
}  // namespace NVORNQDX20
