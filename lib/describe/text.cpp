// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/text.h>

#include <qdxsystem/utf8.h>

namespace NVORNQDX20::NDescribe {
namespace {

std::string WithoutBlanksAround(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string PrintableText(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const TUTF8Character character = TakeCharacter(text);
    if (character.fCodePoint && !IsControl(*character.fCodePoint)) printable += character.fBytes;
  }
  return WithoutBlanksAround(printable);
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

}  // namespace NVORNQDX20::NDescribe
