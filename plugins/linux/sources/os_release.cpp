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

TOSRelease::TOSRelease(const THost& host) {
  const auto parse = [&host](const std::string& path) {
    const TText file = host.Read(path);
    return !file && host.IsAbsent(path) ? ParseOSRelease("") : file.map(ParseOSRelease);
  };
  fVariables = host.FirstOf({"/etc/os-release", "/usr/lib/os-release"}).and_then(parse);
}

TText TOSRelease::Get(const std::string& variable) const {
  return fVariables.and_then([&variable](const auto& variables) -> TText {
    const auto found = variables.find(variable);
    if (found != variables.end() && !found->second.empty()) return found->second;
    return Missing("no " + variable + " in os-release");
  });
}

TText ReadReleaseOrKernel(const THost& host, const char* variable, TText THost::*ofKernel) {
  const auto& release = host.Shared<TOSRelease>();
  TText text = release.Get(variable);
  if (text || !release.fVariables) return text;
  const TText& kernel = host.*ofKernel;
  return kernel ? kernel : Missing(text.GetReason() + ", and " + kernel.GetReason());
}

std::string OSNameAsKey(const THost& host) {
  return ReadReleaseOrKernel(host, "NAME", &THost::fKernelName).ValueOr("");
}

}  // namespace NVORNQDX20
