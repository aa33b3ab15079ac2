// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/text.h>

#include <qdxsystem/utf8.h>

#include <algorithm>
#include <cstddef>

namespace NVORNQDX20::NDescribe {
namespace {

bool IsPrintableASCII(char c) { return c >= ' ' && c <= '~'; }

}  // namespace

std::string PrintableText(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    // Most texts are all ASCII: not one character at a time.
    const auto* const end = std::find_if_not(text.begin(), text.end(), IsPrintableASCII);
    const auto size = static_cast<std::size_t>(end - text.begin());
    printable += text.substr(0, size);
    text.remove_prefix(size);
    if (text.empty()) break;
    const TUTF8Character character = TakeCharacter(text);
    if (character.fCodePoint && !IsControl(*character.fCodePoint)) printable += character.fBytes;
  }
  printable.erase(printable.find_last_not_of(' ') + 1);
  printable.erase(0, printable.find_first_not_of(' '));
  return printable;
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

}  // namespace NVORNQDX20::NDescribe
