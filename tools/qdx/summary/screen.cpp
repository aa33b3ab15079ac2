// SPDX-License-Identifier: Apache-2.0
#include "screen.h"

#include <algorithm>
#include <numeric>

namespace NVORNQDX20 {
namespace {

/// Some texts of firmware, and all of a made-up document, have no limit of their own.
constexpr std::size_t kMostColumns = 500;
/// On a narrower terminal, lines are wrapped by it.
constexpr std::size_t kLeastColumns = 40;
/// Wider cells do not widen their column.
constexpr std::size_t kWidestCell = 32;

/// How many lines of a section are shown.
struct TShare {
  std::size_t fLines;
  std::size_t fShown;

  std::size_t GetRows() const { return fShown + (fShown < fLines ? 1 : 0); }
  /// One line and that with the number of the others, unless the others are one.
  bool CanShrink() const { return fLines > 2 && fShown > 1; }
  /// The first time, two lines give way to the one with their number.
  void Shrink() { fShown -= fShown == fLines ? 2 : 1; }
};

std::vector<TShare> Share(const std::vector<TSection>& sections, std::size_t height) {
  std::vector<TShare> shares;
  shares.reserve(sections.size());
  for (const TSection& section : sections) {
    shares.push_back({section.fLines.size(), section.fLines.size()});
  }
  std::size_t rows =
      std::accumulate(shares.begin(), shares.end(), std::size_t{0},
                      [](std::size_t sum, const TShare& share) { return sum + share.GetRows(); });
  for (; rows > height; --rows) {
    const auto largest =
        std::max_element(shares.begin(), shares.end(), [](const TShare& left, const TShare& right) {
          return (left.CanShrink() ? left.GetRows() : 0) <
                 (right.CanShrink() ? right.GetRows() : 0);
        });
    if (largest == shares.end() || !largest->CanShrink()) break;
    largest->Shrink();
  }
  return shares;
}

std::vector<std::size_t> WidthsOf(const std::vector<TScreenLine>& lines, std::size_t count) {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < count; ++i) {
    const auto& cells = lines[i].fCells;
    widths.resize(std::max(widths.size(), cells.size()));
    for (std::size_t cell = 0; cell + 1 < cells.size(); ++cell) {
      const std::size_t width = WidthOf(cells[cell]);
      if (width <= kWidestCell) widths[cell] = std::max(widths[cell], width);
    }
  }
  return widths;
}

/// Joins the cells; those after the last one that is not empty need no room.
std::string Joined(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
  std::string text;
  std::string blanks;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (widths[i] == 0 && cells[i].empty()) continue;  // a column without contents
    if (!cells[i].empty()) text += blanks + cells[i];
    if (!cells[i].empty()) blanks.clear();
    const std::size_t width = WidthOf(cells[i]);
    blanks.append((widths[i] > width ? widths[i] - width : 0) + 2, ' ');
  }
  return text;
}

class TRows {
 public:
  TRows(std::size_t labelWidth, std::size_t columns) {
    const std::size_t used = labelWidth + 2;
    fTextWidth = columns == TScreenSize::kAny ? kMostColumns
                                              : std::clamp(columns, kLeastColumns, kMostColumns) -
                                                    std::min(used, columns / 2);
  }

  void Add(const TSection& section, std::size_t shown) {
    const auto& lines = section.fLines;
    const auto widths = WidthsOf(lines, shown);
    for (std::size_t i = 0; i < shown; ++i) {
      AddRow(i == 0 ? section.fLabel : "", Joined(lines[i].fCells, widths), lines[i].fStyle);
    }
    if (shown == lines.size()) return;
    std::size_t hidden = 0;
    for (std::size_t i = shown; i < lines.size(); ++i) hidden += lines[i].fCount;
    AddRow("", "and " + std::to_string(hidden) + " more", TTableRow::kDim);
  }

  std::string Format() const { return FormatTable(fRows); }

 private:
  void AddRow(const std::string& label, const std::string& text, TTableRow::EStyle style) {
    // Sanitised first, so that each character is one column.
    fRows.push_back({{label, Shortened(ForTerminal(text), fTextWidth)}, style});
  }

  std::size_t fTextWidth;
  std::vector<TTableRow> fRows;
};

}  // namespace

std::string FormatScreen(const std::vector<TSection>& sections, const TScreenSize& size) {
  std::size_t labelWidth = 0;
  for (const TSection& section : sections) {
    if (!section.fLines.empty()) labelWidth = std::max(labelWidth, WidthOf(section.fLabel));
  }
  const std::vector<TShare> shares = Share(sections, size.fLines);
  TRows rows(labelWidth, size.fColumns);
  for (std::size_t i = 0; i < sections.size(); ++i) rows.Add(sections[i], shares[i].fShown);
  return rows.Format();
}

std::string Shortened(const std::string& text, std::size_t columns) {
  if (WidthOf(text) <= columns) return text;
  return CutToWidth(text, columns > 3 ? columns - 3 : 0) + "...";
}

}  // namespace NVORNQDX20
