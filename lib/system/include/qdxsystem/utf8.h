// SPDX-License-Identifier: Apache-2.0
/// Texts character by character.
#ifndef QDXSYSTEM_UTF8_H_
#define QDXSYSTEM_UTF8_H_

#include <optional>
#include <string_view>

namespace NVORNQDX20 {

/// A character of a text, or a byte that is part of none.
struct TUTF8Character {
  std::string_view fBytes;
  std::optional<char32_t> fCodePoint;  ///< None for a byte that is not UTF-8.
};

/// Removes the first character from the text, which must not be empty. Overlong sequences,
/// surrogates and what is beyond U+10FFFF are not UTF-8. A bad sequence costs its first byte only:
/// what follows may be good again.
TUTF8Character TakeCharacter(std::string_view& text);

/// Whether it is one of the control characters, C0, DEL or C1: they steer terminals.
constexpr bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0);
}

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_UTF8_H_
