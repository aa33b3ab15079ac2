// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/utf8.h>

#include <cstddef>

#include <boost/locale/utf.hpp>

namespace NVORNQDX20 {

namespace utf = boost::locale::utf;

TUTF8Character TakeCharacter(std::string_view& text) {
  const char* end = text.data();
  const auto codePoint = utf::utf_traits<char>::decode(end, text.data() + text.size());
  const bool isValid = utf::is_valid_codepoint(codePoint);
  const auto length = isValid ? static_cast<std::size_t>(end - text.data()) : 1;
  const std::string_view bytes = text.substr(0, length);
  text.remove_prefix(length);
  return {bytes, isValid ? std::optional<char32_t>(codePoint) : std::nullopt};
}

}  // namespace NVORNQDX20
