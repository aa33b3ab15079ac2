// SPDX-License-Identifier: Apache-2.0
/// Sections with a label and lines, so many lines as a screen has.
#ifndef TOOLS_QDX_SUMMARY_SCREEN_H_
#define TOOLS_QDX_SUMMARY_SCREEN_H_

#include <cstddef>
#include <string>
#include <vector>

#include "cli/terminal.h"

namespace NVORNQDX20 {

struct TScreenLine {
  std::vector<std::string> fCells;  ///< Aligned with those of the other lines of the section.
  std::size_t fCount = 1;           ///< How many things the line stands for.
  TTableRow::EStyle fStyle = TTableRow::kPlain;
};

struct TSection {
  std::string fLabel;
  std::vector<TScreenLine> fLines;  ///< The most important first; without any, it is not shown.
};

struct TScreenSize {
  static constexpr std::size_t kAny = 0;

  std::size_t fLines;
  std::size_t fColumns = kAny;
};

/// Returns the sections as text. If they have too many lines, the longest are shortened, down to
/// one line and a line with the number of things that are left out. A line that is too long is cut.
std::string FormatScreen(const std::vector<TSection>& sections, const TScreenSize& size);

/// Returns the text, or its start and "..." if it has more columns.
std::string Shortened(const std::string& text, std::size_t columns);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_SUMMARY_SCREEN_H_
