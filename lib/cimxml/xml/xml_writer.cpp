// SPDX-License-Identifier: Apache-2.0
#include "xml_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Whether a byte stands for itself in the content of an element and in an attribute.
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
    // A reader turns these into line feeds and blanks if they stand there themselves.
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

/// The number of bytes that the first byte of a UTF-8 sequence announces; 0 if it announces none.
std::size_t SequenceLength(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

bool IsXMLCharacter(std::uint32_t c, std::size_t length) {
  constexpr std::uint32_t kLeast[] = {0x80, 0x800, 0x10000};  // of two bytes, three, four
  return c >= kLeast[length - 2] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE &&
         c != 0xFFFF;
}

/// The length of the character beyond ASCII that the text begins with; 0 if there is none that XML
/// can hold.
std::size_t CharacterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  const std::size_t length = SequenceLength(first);
  if (length == 0 || length > text.size()) return 0;
  std::uint32_t c = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return 0;
    c = c << 6 | (next & 0x3FU);
  }
  return IsXMLCharacter(c, length) ? length : 0;
}

}  // namespace

TXMLWriter& TXMLWriter::Attribute(std::string_view name, std::string_view value) {
  return Markup(" ").Markup(name).Markup("=\"").Text(value).Markup("\"");
}

TXMLWriter& TXMLWriter::Text(std::string_view text) {
  while (!text.empty()) {
    const auto end = std::find_if_not(text.begin(), text.end(), IsPlain);
    const auto plain = static_cast<std::size_t>(end - text.begin());
    fOutput.Write(text.substr(0, plain));
    text.remove_prefix(plain);
    if (!text.empty()) text.remove_prefix(WriteCharacter(text));
  }
  return *this;
}

/// The first character, which is not plain; how many bytes it takes.
std::size_t TXMLWriter::WriteCharacter(std::string_view text) {
  const std::string_view reference = ReferenceTo(text[0]);
  if (!reference.empty()) {
    fOutput.Write(reference);
    return 1;
  }
  const std::size_t length = CharacterLength(text);
  if (length != 0) {
    fOutput.Write(text.substr(0, length));
    return length;
  }
  fOutput.Write(kReplacement);
  ++fReplaced;
  return 1;
}

}  // namespace NVORNQDX20::NCIMXML
