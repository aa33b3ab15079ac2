// SPDX-License-Identifier: Apache-2.0
#include "table_columns.h"

#include <algorithm>

#include <unistd.h>

#include "terminal.h"

namespace NVORNQDX20 {
namespace {

std::string CSVField(const std::string& text) {
  if (text.find_first_of("\",\r\n") == std::string::npos) return text;
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += c;
    field += c;
  }
  return field + '"';
}

}  // namespace

std::size_t RoomForTable(std::size_t indent) {
  constexpr std::size_t kAny = 1000000000;
  constexpr std::size_t kLeast = 20;
  if (::isatty(STDOUT_FILENO) == 0) return kAny;
  return std::max(kLeast, TerminalWidth(STDOUT_FILENO)) - indent;
}

void NarrowColumns(std::vector<std::size_t>& widths, std::size_t room) {
  constexpr std::size_t kNarrowest = 8;  // narrower columns say nothing
  if (widths.empty()) return;
  std::size_t total = kColumnGap * (widths.size() - 1);
  for (const std::size_t width : widths) total += width;
  while (total > room) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= kNarrowest) return;
    --*widest;
    --total;
  }
}

std::string AlignedLine(std::vector<std::string> cells, const std::vector<std::size_t>& widths) {
  constexpr std::size_t kMostBlanks = 100;
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (WidthOf(cells[i]) > widths[i]) cells[i] = CutToWidth(cells[i], widths[i] - 1) + "\u2026";
    line += cells[i];
    if (i + 1 == cells.size()) break;
    const std::size_t width = std::min(widths[i], kMostBlanks);
    line.append(width - std::min(width, WidthOf(cells[i])) + kColumnGap, ' ');
  }
  return line;
}

std::string CSVRecord(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (&field != &fields.front()) line += ',';
    line += CSVField(field);
  }
  return line + "\r\n";
}

}  // namespace NVORNQDX20
