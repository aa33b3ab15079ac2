// SPDX-License-Identifier: Apache-2.0
/// Parts of texts.
#ifndef LIB_DISPLAY_WORDS_H_
#define LIB_DISPLAY_WORDS_H_

#include <string_view>

namespace NVORNQDX20 {

inline bool BeginsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// Returns the text without blanks at either end.
inline std::string_view Trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(' ');
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(' ') - start + 1);
}

}  // namespace NVORNQDX20

#endif  // LIB_DISPLAY_WORDS_H_
