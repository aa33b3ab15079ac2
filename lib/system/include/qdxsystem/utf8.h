// SPDX-License-Identifier: Apache-2.0
/// Decodes UTF-8.
#ifndef QDXSYSTEM_UTF8_H_
#define QDXSYSTEM_UTF8_H_

#include <optional>
#include <string_view>

namespace NVORNQDX20 {

/// A character of a text, or an invalid byte.
struct TUTF8Character {
  std::string_view fBytes;
  std::optional<char32_t> fCodePoint;  ///< None for a byte that is not UTF-8.
};

/// Removes and returns the first character. REQUIRES: the text is not empty. Overlong sequences,
/// surrogates and code points beyond U+10FFFF are invalid. Of an invalid sequence only the first
/// byte is removed, since valid characters may follow.
TUTF8Character TakeCharacter(std::string_view& text);

/// Returns whether the code point is a control character (C0, DEL or C1), which terminals
/// interpret.
constexpr bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0);
}

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_UTF8_H_
