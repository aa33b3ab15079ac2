// SPDX-License-Identifier: Apache-2.0
/// What goes to a terminal: harmless text, colour where it is wanted, aligned columns.
#ifndef TOOLS_QDX_CLI_TERMINAL_H_
#define TOOLS_QDX_CLI_TERMINAL_H_

#include <string>
#include <vector>

namespace NVORNQDX20 {

/// The text with a question mark in place of each control character, those for the direction
/// of writing too, and each byte that is no UTF-8: names and firmware strings come from anywhere,
/// and must not steer the terminal.
std::string ForTerminal(const std::string& text);

struct TTableRow {
  enum EStyle { kPlain, kHeading, kDim, kRemoved, kAdded };

  std::vector<std::string> fCells;
  EStyle fStyle = kPlain;
};

/// The rows as lines, columns aligned, all cells made fit for the terminal. Styles show if standard
/// output is a terminal and NO_COLOR is not set.
std::string FormatTable(const std::vector<TTableRow>& rows);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_TERMINAL_H_
