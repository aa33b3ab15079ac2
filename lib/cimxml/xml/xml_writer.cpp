// SPDX-License-Identifier: Apache-2.0
#include "xml_writer.h"

#include <qdxsystem/utf8.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Returns whether a byte needs no escaping, neither in content nor in an attribute.
constexpr std::array<bool, 256> MakePlain() {
  std::array<bool, 256> plain{};
  for (std::size_t c = 0x20; c < 0x80; ++c) plain[c] = c != '&' && c != '<' && c != '>' && c != '"';
  return plain;
}
constexpr std::array<bool, 256> kPlain = MakePlain();

bool IsPlain(char c) { return kPlain[static_cast<unsigned char>(c)]; }

std::string_view ReferenceTo(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    // XML readers normalise these characters unless they are escaped.
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return {};
  }
}

bool IsXMLCharacter(char32_t character) {
  return character >= 0x20 && character != 0xFFFE && character != 0xFFFF;
}

}  // namespace

TXMLWriter& TXMLWriter::Attribute(std::string_view name, std::string_view value) {
  return Markup(" ").Markup(name).Markup("=\"").Text(value).Markup("\"");
}

TXMLWriter& TXMLWriter::Text(std::string_view text) {
  while (!text.empty()) {
    const auto end = std::find_if_not(text.begin(), text.end(), IsPlain);
    const auto plain = static_cast<std::size_t>(end - text.begin());
    Markup(text.substr(0, plain));
    text.remove_prefix(plain);
    if (!text.empty()) WriteCharacter(text);
  }
  return *this;
}

/// Writes and removes the first character, which is not plain.
void TXMLWriter::WriteCharacter(std::string_view& text) {
  const std::string_view reference = ReferenceTo(text[0]);
  if (!reference.empty()) {
    Markup(reference);
    text.remove_prefix(1);
    return;
  }
  const auto [bytes, codePoint] = TakeCharacter(text);
  if (codePoint && IsXMLCharacter(*codePoint)) {
    Markup(bytes);
    return;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) Markup(kReplacement);
  Replaced() += bytes.size();
}

}  // namespace NVORNQDX20::NCIMXML
