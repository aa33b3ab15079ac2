// SPDX-License-Identifier: Apache-2.0
#include <sources/os_release.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TVariables = std::map<std::string, std::string>;

TEST(OSRelease, IsReadAsAShellReadsIt) {
  const std::pair<std::string, TVariables> rows[] = {
      // Words and blanks.
      {"A=b c", {{"A", "b"}}},
      {" \tA=b\tc\r\nB=d\r\n", {{"A", "b"}, {"B", "d"}}},
      {"A=\nB= c", {{"A", ""}, {"B", ""}}},
      {"A==b", {{"A", "=b"}}},
      // Quotes.
      {"A=\"b c\"d'e f' g", {{"A", "b cde f"}}},
      {"A='b \\$ \" '", {{"A", "b \\$ \""}}},
      {"A=\"b 'c'\"", {{"A", "b 'c'"}}},
      {"A=\"b\nB=c\nC='d", {{"B", "c"}}},
      // Backslashes; at the end of a line there is nothing to escape.
      {R"(A="b \"c\" \$d \`e \\ \n")", {{"A", R"(b "c" $d `e \ \n)"}}},
      {R"(A=b\ \"\c\')", {{"A", "b \"c'"}}},
      {"A=b\\", {{"A", "b\\"}}},
      // Lines that assign nothing; the last assignment holds, if its quote ends.
      {"#A=b\n  # A=b\n\nA", {}},
      {"A=b\nA=c\nA=\"d", {{"A", "c"}}},
      // What cannot be printed.
      {"A=\"\x1b b\xff \"", {{"A", "b"}}}};
  for (const auto& [text, variables] : rows) EXPECT_EQ(ParseOSRelease(text), variables) << text;
}

}  // namespace
}  // namespace NVORNQDX20
