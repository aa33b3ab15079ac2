// SPDX-License-Identifier: Apache-2.0
#include <cli/terminal.h>

#include <gtest/gtest.h>

#include "qdx/cli/standard_output.h"

namespace NVORNQDX20 {
namespace {

TEST(TerminalText, CannotSteerATerminal) {
  const std::pair<std::string, std::string> rows[] = {
      {"a ~", "a ~"},
      {"\x1b[31m\x1f\x7f\n", "?[31m???"},
      {std::string("a\0b", 3), "a?b"},
      {"caf\xc3\xa9 \xf0\x9f\x98\x80", "caf\xc3\xa9 \xf0\x9f\x98\x80"},
      {"\xc2\x80\xc2\x9f\xc2\xa0", "??\xc2\xa0"},
      // Directions of writing, and their neighbours.
      {"\u2029\u202a\u202e\u202f\u2065\u2066\u2069\u206a", "\u2029??\u202f\u2065??\u206a"},
      // No UTF-8: only the first byte is lost.
      {"\xff\xe2\x82z\xc3", "???z?"}};
  for (const auto& [text, shown] : rows) EXPECT_EQ(ForTerminal(text), shown);
}

const std::vector<TTableRow> kTable = {{{"A", "LONG", "C"}, TTableRow::kHeading},
                                       {{"caf\xc3\xa9", "\x1b", "x"}, TTableRow::kRemoved},
                                       {{"end"}},
                                       {{}, TTableRow::kDim},
                                       {{"", "a"}, TTableRow::kAdded}};
const char* const kPlainTable = "A     LONG  C\ncaf\xc3\xa9  ?     x\nend\n\n      a\n";
const char* const kColouredTable =
    "\x1b[1mA     LONG  C\x1b[0m\n\x1b[31mcaf\xc3\xa9  ?     x\x1b[0m\nend\n"
    "\x1b[2m\x1b[0m\n\x1b[32m      a\x1b[0m\n";

TEST(Table, HasColoursOnATerminalThatIsNotToldOtherwise) {
  const std::tuple<TStandardOutput::EKind, const char*, const char*, const char*> rows[] = {
      {TStandardOutput::kPipe, "xterm", nullptr, kPlainTable},
      {TStandardOutput::kTerminal, "xterm", nullptr, kColouredTable},
      {TStandardOutput::kTerminal, "xterm", "", kColouredTable},
      {TStandardOutput::kTerminal, "xterm", "1", kPlainTable},
      {TStandardOutput::kTerminal, "dumb", nullptr, kPlainTable},
      {TStandardOutput::kTerminal, nullptr, nullptr, kPlainTable}};
  for (const auto& [kind, term, noColour, table] : rows) {
    const TStandardOutput output(kind);
    for (const auto& [name, value] : {std::pair{"TERM", term}, {"NO_COLOR", noColour}}) {
      value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    EXPECT_EQ(FormatTable(kTable), table);
  }
  EXPECT_EQ(FormatTable({}), "");
}

}  // namespace
}  // namespace NVORNQDX20
