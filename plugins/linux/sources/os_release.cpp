// SPDX-License-Identifier: Apache-2.0
#include "os_release.h"

#include <algorithm>
#include <optional>

#include "reading.h"

namespace NVORNQDX20 {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::size_t kNowhere = std::string_view::npos;

/// Returns whether the backslash quotes the next character: never between single quotes, and
/// between double quotes only before a special character.
bool IsEscape(std::string_view word, std::size_t position, char openQuote) {
  if (word[position] != '\\' || position + 1 == word.size() || openQuote == '\'') return false;
  return openQuote == '\0' || std::string_view("$\"\\`").find(word[position + 1]) != kNowhere;
}

/// Parses one word as a shell does, up to the first blank outside quotes. Null if a quote is not
/// closed.
std::optional<std::string> Unquote(std::string_view word) {
  std::string text;
  char openQuote = '\0';
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char character = word[i];
    if (IsEscape(word, i, openQuote)) {
      text += word[++i];
    } else if (character == openQuote) {
      openQuote = '\0';
    } else if (openQuote == '\0' && (character == '"' || character == '\'')) {
      openQuote = character;
    } else if (openQuote == '\0' && kBlanks.find(character) != kNowhere) {
      break;
    } else {
      text += character;
    }
  }
  if (openQuote != '\0') return std::nullopt;
  return text;
}

}  // namespace

std::map<std::string, std::string> ParseOSRelease(std::string_view text) {
  std::map<std::string, std::string> variables;
  while (!text.empty()) {
    std::string_view line = TakeLine(text);
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    const std::size_t equals = line.find('=');
    if (equals == kNowhere || line.front() == '#') continue;
    if (const auto value = Unquote(line.substr(equals + 1))) {
      variables[std::string(line.substr(0, equals))] = PrintableText(*value);
    }
  }
  return variables;
}

}  // namespace NVORNQDX20
