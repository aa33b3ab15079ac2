// SPDX-License-Identifier: Apache-2.0
#include "unit_file.h"

#include <algorithm>
#include <cstddef>

#include "sources/reading.h"

namespace NVORNQDX20 {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IsComment(std::string_view line) { return line.front() == '#' || line.front() == ';'; }

/// Takes a line with those that continue it; comments between them do not end it.
std::string TakeLogicalLine(std::string_view& text) {
  std::string whole;
  bool continues = true;
  while (continues && !text.empty()) {
    std::string_view line = Trimmed(TakeLine(text));
    const bool isPart = !whole.empty();
    if (!line.empty() && IsComment(line)) {
      continues = isPart;
      continue;
    }
    continues = !line.empty() && line.back() == '\\';
    if (continues) line.remove_suffix(1);
    whole += line;
    if (continues) whole += ' ';
  }
  return whole;
}

void AddWords(std::string_view value, std::vector<std::string>& words) {
  while (!(value = Trimmed(value)).empty()) {
    const std::size_t end = std::min(value.find_first_of(kBlanks), value.size());
    words.emplace_back(value.substr(0, end));
    value.remove_prefix(end);
  }
}

bool BeginsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

}  // namespace

void TUnitSettings::Add(std::string_view text) {
  std::string section;
  while (!text.empty()) {
    const std::string line = TakeLogicalLine(text);
    const std::size_t equals = line.find('=');
    if (!line.empty() && line.front() == '[' && line.back() == ']') {
      section = PrintableText(line.substr(1, line.size() - 2));
    } else if (equals != std::string::npos) {
      fAll.push_back({section, PrintableText(line.substr(0, equals)),
                      PrintableText(std::string_view(line).substr(equals + 1))});
    }
  }
}

std::string TUnitSettings::Get(std::string_view section, std::string_view name) const {
  const auto last = std::find_if(fAll.rbegin(), fAll.rend(), [&](const TSetting& each) {
    return each.fName == name && each.fSection == section;
  });
  return last == fAll.rend() ? std::string() : last->fValue;
}

std::vector<std::string> TUnitSettings::GetWords(std::string_view section,
                                                 std::string_view name) const {
  std::vector<std::string> words;
  for (const TSetting& each : fAll) {
    if (each.fName != name || each.fSection != section) continue;
    if (each.fValue.empty()) words.clear();
    AddWords(each.fValue, words);
  }
  return words;
}

std::vector<std::string> TUnitSettings::GetList(std::string_view section,
                                                std::string_view beginning) const {
  std::vector<std::string> list;
  for (const TSetting& each : fAll) {
    if (each.fSection != section || !BeginsWith(each.fName, beginning)) continue;
    if (each.fValue.empty()) {
      list.clear();
    } else {
      list.push_back(each.fName + "=" + each.fValue);
    }
  }
  return list;
}

std::string TUnitSettings::GetProgram(std::string_view section, std::string_view name) const {
  std::string first;
  for (const TSetting& each : fAll) {
    if (each.fName != name || each.fSection != section) continue;
    if (first.empty() || each.fValue.empty()) first = each.fValue;
  }
  std::string_view command = first;
  command.remove_prefix(std::min(command.find_first_not_of("@-:+!|"), command.size()));
  const bool isQuoted = !command.empty() && (command.front() == '"' || command.front() == '\'');
  if (!isQuoted) return std::string(command.substr(0, command.find_first_of(kBlanks)));
  const char quote = command.front();
  command.remove_prefix(1);
  return std::string(command.substr(0, command.find(quote)));
}

}  // namespace NVORNQDX20
