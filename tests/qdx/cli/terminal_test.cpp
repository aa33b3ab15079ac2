// SPDX-License-Identifier: Apache-2.0
#include <cli/terminal.h>

#include <sys/ioctl.h>

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
      {"\u061b\u061c\u061d\u200d\u200e\u200f\u2010", "\u061b?\u061d\u200d??\u2010"},
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

TEST(Terminal, HasTheWidthThatItReports) {
  const std::tuple<unsigned short, const char*, std::size_t> rows[] = {
      {40, "70", 40}, {0, "70", 70}, {0, "x", 80}, {0, "0", 80}, {0, nullptr, 80}};
  for (const auto& [reported, columns, width] : rows) {
    const TStandardOutput output(TStandardOutput::kTerminal);
    const winsize size = {0, reported, 0, 0};
    ::ioctl(STDOUT_FILENO, TIOCSWINSZ, &size);
    columns != nullptr ? ::setenv("COLUMNS", columns, 1) : ::unsetenv("COLUMNS");
    EXPECT_EQ(TerminalWidth(STDOUT_FILENO), width);
  }
  EXPECT_EQ(CutToWidth("caf\xc3\xa9!", 4), "caf\xc3\xa9");
}

TEST(Table, HasColoursOnATerminalThatIsNotToldOtherwise) {
  const std::tuple<TStandardOutput::EKind, const char*, const char*, const char*> rows[] = {
      {TStandardOutput::kPipe, "xterm", nullptr, kPlainTable},
      {TStandardOutput::kTerminal, "xterm", nullptr, kColouredTable},
      {TStandardOutput::kTerminal, "xterm", "", kColouredTable},
      {TStandardOutput::kTerminal, "xterm", "1", kPlainTable},
      {TStandardOutput::kTerminal, "dumb", nullptr, kPlainTable},
      {TStandardOutput::kTerminal, "", nullptr, kPlainTable},
      {TStandardOutput::kTerminal, nullptr, nullptr, kPlainTable}};
  for (const auto& [kind, term, noColour, table] : rows) {
    const TStandardOutput output(kind);
    for (const auto& [name, value] : {std::pair{"TERM", term}, {"NO_COLOR", noColour}}) {
      value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    EXPECT_EQ(FormatTable(kTable), table);
    for (const char* text : {"plain", "caf\xc3\xa9", "\x1b[31m", ""}) {
      for (const auto style : {TTableRow::kPlain, TTableRow::kDim, TTableRow::kAdded}) {
        EXPECT_EQ(FormatLine(text, style), FormatTable({{{text}, style}}));
      }
    }
  }
  EXPECT_EQ(FormatTable({}), "");
}

}  // namespace
}  // namespace NVORNQDX20
