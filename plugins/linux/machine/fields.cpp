// SPDX-License-Identifier: Apache-2.0
#include "fields.h"

#include <utility>

#include <boost/algorithm/string/predicate.hpp>

#include "numbers.h"
#include "text.h"

namespace NVORNQDX20 {

TFields::TFields(std::string source, std::string_view text, char separator)
    : fSource(std::move(source)) {
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    const std::size_t end = line.find(separator);
    if (end == std::string_view::npos) continue;
    fValues.emplace(PrintableText(line.substr(0, end)), PrintableText(line.substr(end + 1)));
  }
}

TFields::TFields(const std::string& source, const TReading& file, char separator)
    : TFields(source, file ? std::string_view(*file.fValue) : std::string_view(), separator) {
  fReason = file.fReason;
}

TReading TFields::Get(std::string_view name) const {
  if (!fReason.empty()) return TReading::Missing(fReason);
  const auto found = fValues.find(name);
  if (found != fValues.end() && !found->second.empty()) return TReading::Of(found->second);
  return TReading::Missing(fSource + ": no '" + std::string(name) + "'");
}

TNumber TFields::GetNumber(std::string_view name, std::string_view unit) const {
  TReading value = Get(name);
  const std::string source = fSource + ": " + std::string(name);
  if (value && !boost::algorithm::ends_with(*value.fValue, unit)) {
    return TNumber::Missing(source + " is not in" + std::string(unit));
  }
  if (value) value.fValue->resize(value.fValue->size() - unit.size());
  return ToNumber(value, source);
}

}  // namespace NVORNQDX20
