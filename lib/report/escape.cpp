// SPDX-License-Identifier: Apache-2.0
#include "escape.h"

#include <qdxsystem/utf8.h>

#include <cstdio>

namespace NVORNQDX20::NReport {
namespace {

struct TRange {
  char32_t fFirst;
  char32_t fLast;
};

/// Marks and controls of direction, what has no width, separators of lines, tags, and what HTML
/// does not allow.
constexpr TRange kHidden[] = {{0x7F, 0x9F},     {0xAD, 0xAD},       {0x61C, 0x61C},
                              {0x180E, 0x180E}, {0x200B, 0x200F},   {0x2028, 0x202E},
                              {0x2060, 0x206F}, {0xFDD0, 0xFDEF},   {0xFEFF, 0xFEFF},
                              {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}, {0xFFFE, 0xFFFF}};

bool IsHidden(char32_t character) {
  if (character < 0x20) return character != '\n' && character != '\t';
  for (const TRange& range : kHidden) {
    if (character >= range.fFirst && character <= range.fLast) return true;
  }
  return (character & 0xFFFE) == 0xFFFE;
}

}  // namespace

std::string Visible(std::string_view text) {
  std::string visible;
  visible.reserve(text.size());
  while (!text.empty()) {
    const auto [bytes, codePoint] = TakeCharacter(text);
    if (!codePoint) {
      visible += "\xEF\xBF\xBD";
    } else if (IsHidden(*codePoint)) {
      char name[sizeof("[U+10FFFF]")];
      std::snprintf(name, sizeof(name), "[U+%04X]", static_cast<unsigned>(*codePoint));
      visible += name;
    } else {
      visible += bytes;
    }
  }
  return visible;
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : Visible(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string ScriptJSON(const TJSON& json) {
  std::string escaped;
  for (const char c : json.dump(-1, ' ', true, TJSON::error_handler_t::replace)) {
    // Neither "</script" nor "<!--" may appear in a script element.
    if (c == '<') {
      escaped += "\\u003c";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

}  // namespace NVORNQDX20::NReport
