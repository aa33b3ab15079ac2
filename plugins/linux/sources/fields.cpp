// SPDX-License-Identifier: Apache-2.0
#include "fields.h"

#include <algorithm>
#include <utility>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {

std::vector<std::string_view> WordsOf(std::string_view line, std::string_view separators) {
  std::vector<std::string_view> words;
  words.reserve(11);  // the columns of /proc/net/route, which can have many lines
  while (!line.empty()) {
    const std::size_t end = std::min(line.find_first_of(separators), line.size());
    if (end != 0) words.push_back(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return words;
}

TFields::TFields(std::string source, std::string_view text, char separator)
    : fSource(std::move(source)) {
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    const std::size_t end = line.find(separator);
    if (end == std::string_view::npos) continue;
    fValues.emplace(PrintableText(line.substr(0, end)), PrintableText(line.substr(end + 1)));
  }
}

TFields::TFields(const std::string& source, const TText& file, char separator)
    : TFields(source, file ? std::string_view(*file) : std::string_view(), separator) {
  fReason = file.GetReason();
}

TText TFields::Get(std::string_view name) const {
  if (!fReason.empty()) return Missing(fReason);
  const auto found = fValues.find(name);
  if (found != fValues.end() && !found->second.empty()) return found->second;
  return Missing(fSource + ": no '" + std::string(name) + "'");
}

TText TFields::GetDigits(std::string_view name, std::string_view unit) const {
  return Get(name).and_then([&](const std::string& value) -> TText {
    if (boost::algorithm::ends_with(value, unit))
      return value.substr(0, value.size() - unit.size());
    return Missing(SourceOf(name) + " is not in" + std::string(unit));
  });
}

}  // namespace NVORNQDX20
