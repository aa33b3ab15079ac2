// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/harmless_text.h>
#include <qdxsystem/utf8.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace NVORNQDX20 {
namespace {

/// Returns whether some programs end a line at this character.
bool IsSeparator(char32_t character) { return character == 0x2028 || character == 0x2029; }

}  // namespace

bool IsHarmless(char32_t character) {
  // These change the order in which the rest of a line is displayed (Unicode: Bidi_Control).
  const bool directs = (character >= 0x202a && character <= 0x202e) ||
                       (character >= 0x2066 && character <= 0x2069) || character == 0x200e ||
                       character == 0x200f || character == 0x061c;
  return !IsControl(character) && !directs;
}

std::string EscapedJSON(const std::string& json) {
  const auto isPlain = [](char byte) { return byte == '\n' || (byte >= 0x20 && byte < 0x7f); };
  if (std::all_of(json.begin(), json.end(), isPlain)) return json;
  std::string escaped;
  escaped.reserve(json.size());
  for (std::string_view rest = json; !rest.empty();) {
    const TUTF8Character character = TakeCharacter(rest);
    const char32_t code = character.fCodePoint.value_or('\n');
    if (code == '\n' || (IsHarmless(code) && !IsSeparator(code))) {
      escaped += character.fBytes;
    } else {
      char text[sizeof("\\u0000")];
      std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(code));
      escaped += text;
    }
  }
  return escaped;
}

}  // namespace NVORNQDX20
