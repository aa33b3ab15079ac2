// SPDX-License-Identifier: Apache-2.0
#include "terminal.h"

#include <qdxsystem/harmless_text.h>
#include <qdxsystem/utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

bool UsesColour() {
  const char* const noColour = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  const bool refused = noColour != nullptr && *noColour != '\0';
  const bool able =
      terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
  return able && !refused && ::isatty(STDOUT_FILENO) != 0;
}

/// Returns whether the text has only printable characters of ASCII, as most texts do: each of them
/// is harmless and one column wide.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

/// Appends the sanitised cell. Returns its width.
std::size_t AppendCell(std::string& line, const std::string& cell) {
  if (IsPlain(cell)) {
    line += cell;
    return cell.size();
  }
  const std::string harmless = ForTerminal(cell);
  line += harmless;
  return WidthOf(harmless);
}

void AppendRow(std::string& text, const TTableRow& row, const std::vector<std::size_t>& widths) {
  for (std::size_t i = 0; i < row.fCells.size(); ++i) {
    const std::size_t width = AppendCell(text, row.fCells[i]);
    if (i + 1 < row.fCells.size()) text.append(widths[i] - width + 2, ' ');
  }
}

/// Appends the line that `append` appends, in a style.
template <typename TAppend>
void AppendStyled(std::string& text, TTableRow::EStyle style, const TAppend& append) {
  // In the order of the styles: bold, dim, red, green.
  static const char* const kSequences[] = {"", "\033[1m", "\033[2m", "\033[31m", "\033[32m"};
  const bool isStyled = style != TTableRow::kPlain && UsesColour();
  if (isStyled) text += kSequences[style];
  append();
  text += isStyled ? "\033[0m\n" : "\n";
}

std::vector<std::size_t> ColumnWidths(const std::vector<TTableRow>& rows) {
  std::vector<std::size_t> widths;
  for (const TTableRow& row : rows) {
    widths.resize(std::max(widths.size(), row.fCells.size()));
    for (std::size_t i = 0; i < row.fCells.size(); ++i) {
      const std::string& cell = row.fCells[i];
      widths[i] = std::max(widths[i], IsPlain(cell) ? cell.size() : WidthOf(ForTerminal(cell)));
    }
  }
  return widths;
}

}  // namespace

std::string ForTerminal(const std::string& text) {
  if (IsPlain(text)) return text;
  std::string harmless;
  harmless.reserve(text.size());
  for (std::string_view rest = text; !rest.empty();) {
    const TUTF8Character character = TakeCharacter(rest);
    const bool isHarmless = character.fCodePoint && IsHarmless(*character.fCodePoint);
    harmless += isHarmless ? character.fBytes : "?";
  }
  return harmless;
}

std::size_t TerminalWidth(int descriptor) {
  winsize size = {};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  const char* const columns = std::getenv("COLUMNS");
  const std::string_view text = columns != nullptr ? columns : "";
  std::uint16_t width = 0;
  std::from_chars(text.data(), text.data() + text.size(), width);
  return width > 0 ? width : 80;
}

std::size_t WidthOf(const std::string& cell) {
  return static_cast<std::size_t>(std::count_if(cell.begin(), cell.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
  }));
}

std::string CutToWidth(const std::string& text, std::size_t width) {
  std::string_view rest = text;
  for (; width > 0 && !rest.empty(); --width) TakeCharacter(rest);
  return text.substr(0, text.size() - rest.size());
}

std::string FormatTable(const std::vector<TTableRow>& rows) {
  const std::vector<std::size_t> widths = ColumnWidths(rows);
  std::string text;
  for (const TTableRow& row : rows) {
    AppendStyled(text, row.fStyle, [&] { AppendRow(text, row, widths); });
  }
  return text;
}

std::string FormatLine(const std::string& line, TTableRow::EStyle style) {
  std::string text;
  AppendStyled(text, style, [&] { AppendCell(text, line); });
  return text;
}

}  // namespace NVORNQDX20
