// SPDX-License-Identifier: Apache-2.0
#include "embedded_text.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace NVORNQDX20 {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsBlank(char c) { return kBlanks.find(c) != std::string_view::npos; }

/// Reads a text from its start to its end.
class TScanner {
 public:
  explicit TScanner(std::string_view text) : fText(text) {}

  bool IsAtEnd() const { return fText.empty(); }
  bool StartsWith(std::string_view start) const { return fText.substr(0, start.size()) == start; }
  char Peek() const { return fText.front(); }
  void SkipBlanks() {
    fText.remove_prefix(std::min(fText.find_first_not_of(kBlanks), fText.size()));
  }
  std::string_view Take(std::size_t count) {
    const std::string_view taken = fText.substr(0, count);
    fText.remove_prefix(taken.size());
    return taken;
  }
  /// Up to one of the characters, or to the end.
  std::string_view TakeUntil(std::string_view characters) {
    return Take(std::min(fText.find_first_of(characters), fText.size()));
  }
  /// Up to the end mark, which is skipped; false without it.
  bool SkipPast(std::string_view mark) {
    const std::size_t found = fText.find(mark);
    if (found == std::string_view::npos) return false;
    fText.remove_prefix(found + mark.size());
    return true;
  }

 private:
  std::string_view fText;
};

/// Writes XML in one form; null if the text is no XML, or has what is not understood.
class TXMLContent {
 public:
  explicit TXMLContent(std::string_view text) : fScanner(text) {}

  std::optional<std::string> Read() {
    while (!fScanner.IsAtEnd()) {
      const std::string_view text = fScanner.TakeUntil("<");
      if (fScanner.IsAtEnd()) {
        AddText(text, false);
        break;
      }
      AddText(text, fScanner.StartsWith("</"));
      if (!ReadMarkup()) return std::nullopt;
    }
    return fContent;
  }

 private:
  /// Blanks between elements mean nothing; those that are all of an element's text do.
  void AddText(std::string_view text, bool isBeforeEnd) {
    const bool isBlank = std::all_of(text.begin(), text.end(), IsBlank);
    if (!isBlank || (fIsAfterStart && isBeforeEnd)) fContent += text;
  }

  bool ReadMarkup() {
    if (fScanner.StartsWith("<!--")) return fScanner.SkipPast("-->");
    if (fScanner.StartsWith("<?")) return fScanner.SkipPast("?>");
    if (fScanner.StartsWith("<!")) return false;
    return ReadTag();
  }

  bool ReadTag() {
    fScanner.Take(1);
    const std::string_view name = fScanner.TakeUntil(" \t\r\n>/=\"'<");
    if (name.empty()) return ReadEndTag();
    std::vector<std::pair<std::string_view, std::string_view>> attributes;
    fScanner.SkipBlanks();
    while (!fScanner.IsAtEnd() && !fScanner.StartsWith(">") && !fScanner.StartsWith("/>")) {
      const auto attribute = ReadAttribute();
      if (!attribute) return false;
      attributes.push_back(*attribute);
    }
    std::sort(attributes.begin(), attributes.end());
    fContent.append("<").append(name);
    for (const auto& [key, value] : attributes) {
      // A value in apostrophes can have quotes, but not the control character.
      fContent.append(" ").append(key).append("=\x01").append(value).append("\x01");
    }
    fContent += ">";
    return ReadEndOfTag(name);
  }

  bool ReadEndOfTag(std::string_view name) {
    const bool isEmpty = fScanner.StartsWith("/");
    if (isEmpty) {
      fScanner.Take(1);
      fContent.append("</").append(name).append(">");
    }
    fIsAfterStart = !isEmpty;
    return fScanner.Take(1) == ">";
  }

  bool ReadEndTag() {
    if (fScanner.Take(1) != "/") return false;
    const std::string_view name = fScanner.TakeUntil(" \t\r\n>");
    fScanner.SkipBlanks();
    fContent.append("</").append(name).append(">");
    fIsAfterStart = false;
    return fScanner.Take(1) == ">";
  }

  std::optional<std::pair<std::string_view, std::string_view>> ReadAttribute() {
    const std::string_view name = fScanner.TakeUntil(" \t\r\n=>/\"'<");
    fScanner.SkipBlanks();
    if (name.empty() || fScanner.Take(1) != "=") return std::nullopt;
    fScanner.SkipBlanks();
    const std::string_view quote = fScanner.Take(1);
    if (quote != "\"" && quote != "'") return std::nullopt;
    const std::string_view value = fScanner.TakeUntil(quote);
    if (fScanner.Take(1) != quote) return std::nullopt;
    fScanner.SkipBlanks();
    return std::pair(name, value);
  }

  TScanner fScanner;
  bool fIsAfterStart = false;
  std::string fContent;
};

/// Returns whether words begin an instance or a class, perhaps with qualifiers.
bool BeginsObject(std::string_view words) {
  for (const std::string_view start : {"instance ", "class ", "[ "}) {
    if (words.substr(0, start.size()) == start) return true;
  }
  return false;
}

/// Writes MOF as words with one blank between them; null if the text is no MOF.
std::optional<std::string> ContentOfMOF(std::string_view text) {
  constexpr std::string_view kPunctuation = "{}()[]=;,:";
  constexpr std::string_view kEndOfWord = " \t\r\n{}()[]=;,:\"'/";
  TScanner scanner(text);
  std::string content;
  for (scanner.SkipBlanks(); !scanner.IsAtEnd(); scanner.SkipBlanks()) {
    if (scanner.StartsWith("//")) {
      scanner.TakeUntil("\n");
    } else if (scanner.StartsWith("/*")) {
      if (!scanner.SkipPast("*/")) return std::nullopt;
    } else if (scanner.Peek() == '"' || scanner.Peek() == '\'') {
      const char quote = scanner.Peek();
      content += scanner.Take(1);
      while (!scanner.IsAtEnd() && scanner.Peek() != quote) {
        content += scanner.Take(scanner.Peek() == '\\' ? 2 : 1);
      }
      if (scanner.IsAtEnd()) return std::nullopt;
      content.append(scanner.Take(1)).append(" ");
    } else if (kPunctuation.find(scanner.Peek()) != std::string_view::npos ||
               scanner.Peek() == '/') {
      content.append(scanner.Take(1)).append(" ");
    } else {
      content.append(NModel::Folded(scanner.TakeUntil(kEndOfWord))).append(" ");
    }
  }
  if (!BeginsObject(content)) return std::nullopt;
  return content;
}

}  // namespace

std::string ContentOfEmbedded(const std::string& text) {
  TScanner scanner(text);
  scanner.SkipBlanks();
  const bool isXML = scanner.StartsWith("<");
  return (isXML ? TXMLContent(text).Read() : ContentOfMOF(text)).value_or(text);
}

}  // namespace NVORNQDX20
