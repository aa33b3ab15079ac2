// SPDX-License-Identifier: Apache-2.0
#include "text.h"

#include <boost/locale/utf.hpp>

namespace NVORNQDX20 {
namespace {

using TUTF8 = boost::locale::utf::utf_traits<char>;

bool IsPrintable(boost::locale::utf::code_point character) {
  const bool c0 = character < 0x20;
  const bool c1 = character >= 0x7f && character < 0xa0;
  return boost::locale::utf::is_valid_codepoint(character) && !c0 && !c1;
}

std::string WithoutBlanksAround(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string PrintableText(std::string_view text) {
  std::string printable;
  const char* const end = text.data() + text.size();
  for (const char* position = text.data(); position != end;) {
    const char* const start = position;
    const auto character = TUTF8::decode(position, end);
    // A bad sequence costs its first byte only: what follows may be good again.
    if (!boost::locale::utf::is_valid_codepoint(character)) position = start + 1;
    if (IsPrintable(character)) printable.append(start, position);
  }
  return WithoutBlanksAround(printable);
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

}  // namespace NVORNQDX20
