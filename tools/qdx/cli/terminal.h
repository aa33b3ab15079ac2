// SPDX-License-Identifier: Apache-2.0
/// Output for terminals: sanitised text, colours, aligned columns.
#ifndef TOOLS_QDX_CLI_TERMINAL_H_
#define TOOLS_QDX_CLI_TERMINAL_H_

#include <cstddef>
#include <string>
#include <vector>

namespace NVORNQDX20 {

/// Returns the text with a question mark for each character that is not harmless, and each byte
/// that is not UTF-8: names and firmware strings are not trusted and must not control the terminal.
std::string ForTerminal(const std::string& text);

/// Returns the number of columns of the terminal: what it reports, else the environment variable
/// COLUMNS, else 80.
std::size_t TerminalWidth(int descriptor);

/// Returns the number of columns of the text, one for each character.
std::size_t WidthOf(const std::string& text);

/// Returns the start of the text, at most `width` columns.
std::string CutToWidth(const std::string& text, std::size_t width);

struct TTableRow {
  enum EStyle { kPlain, kHeading, kDim, kRemoved, kAdded };

  std::vector<std::string> fCells;
  EStyle fStyle = kPlain;
};

/// Returns the rows as lines with aligned columns; all cells are sanitised. Styles are used if
/// standard output is a terminal, TERM names a capable one and NO_COLOR is not set.
std::string FormatTable(const std::vector<TTableRow>& rows);

/// Returns what FormatTable() makes of a row with one cell.
std::string FormatLine(const std::string& line, TTableRow::EStyle style = TTableRow::kPlain);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_TERMINAL_H_
