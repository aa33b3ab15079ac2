// SPDX-License-Identifier: Apache-2.0
#include "condition.h"

#include <qdxdisplay/date_time.h>
#include <qdxdisplay/quantity.h>
#include <qdxdisplay/value_text.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/failure.h"

namespace NVORNQDX20 {
namespace {

using NModel::Folded;

std::string BareText(const TJSON& value) {
  if (value.is_null()) return "";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

bool IsNumeric(const TPropertySnapshot& property) {
  const std::string_view type = std::string_view(property.fType).substr(0, 4);
  return type == "uint" || type == "sint" || type == "real";
}

bool IsDateTime(const TPropertySnapshot& property) {
  return property.fType.substr(0, property.fType.find('[')) == "datetime";
}

/// Returns the number of a text for a property that is shown in hexadecimal digits: "8086" and
/// "0x8086" are hexadecimal, "32902" is not.
std::optional<std::uint16_t> IDIn(const std::string& text) {
  const bool hasPrefix = Folded(text.substr(0, 2)) == "0x";
  const int base = hasPrefix || text.size() == 4 ? 16 : 10;
  std::uint16_t id = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + (hasPrefix ? 2 : 0), end, id, base);
  return stop == end && error == std::errc() ? std::optional(id) : std::nullopt;
}

/// The forms in which people know a value.
std::vector<std::string> FormsOf(const TJSON& value, const TPropertySnapshot& property) {
  std::vector<std::string> forms = {BareText(value)};
  if (value.is_null()) return forms;
  forms.push_back(TextForPeople(value, property));
  if (const std::string* const name = NameOfValue(value, property)) forms.push_back(*name);
  return forms;
}

}  // namespace

TCondition::TCondition(const std::string& text) {
  static constexpr std::pair<std::string_view, EOperator> kOperators[] = {
      {"!=", kNotEqual}, {"<=", kLessOrEqual}, {">=", kGreaterOrEqual}, {"==", kEqual},
      {"=", kEqual},     {"<", kLess},         {">", kGreater},         {"~", kContains}};
  const std::size_t end = std::min(text.find_first_of("!<>=~"), text.size());
  const std::string_view rest = std::string_view(text).substr(end);
  const auto found = std::find_if(
      std::begin(kOperators), std::end(kOperators),
      [rest](const auto& each) { return rest.substr(0, each.first.size()) == each.first; });
  const std::size_t last = text.find_last_not_of(' ', end - 1);
  if (end == 0 || found == std::end(kOperators) || last == std::string::npos) {
    FailOnUsage("option '--where' needs a property, one of = != < <= > >= ~ and a value, not '" +
                text + "'");
  }
  const std::size_t first = text.find_first_not_of(' ');
  fProperty = text.substr(first, last + 1 - first);
  fOperator = found->second;
  const std::size_t start = text.find_first_not_of(' ', end + found->first.size());
  fValue = start == std::string::npos ? "" : text.substr(start);
}

bool TCondition::Matches(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance) const {
  const auto& properties = cimClass.fProperties;
  const auto found =
      std::find_if(properties.begin(), properties.end(), [this](const TPropertySnapshot& each) {
        return NModel::EqualIgnoringCase(each.fName, fProperty);
      });
  if (found == properties.end()) return false;
  const auto index = static_cast<std::size_t>(found - properties.begin());
  const std::string unit = UnitOf(cimClass, instance, index);
  const TJSON& value = instance.fValues[index];
  const auto matches = [&](const TJSON& element) { return MatchesElement(element, *found, unit); };
  if (!value.is_array()) return matches(value);
  return fOperator == kNotEqual ? std::all_of(value.begin(), value.end(), matches)
                                : std::any_of(value.begin(), value.end(), matches);
}

bool TCondition::MatchesElement(const TJSON& value, const TPropertySnapshot& property,
                                const std::string& unit) const {
  switch (fOperator) {
    case kEqual:
      return IsEqual(value, property, unit);
    case kNotEqual:
      return !IsEqual(value, property, unit);
    case kContains:
      return Contains(value, property);
    default:
      return !value.is_null() && IsInOrder(value, property, unit);
  }
}

bool TCondition::IsEqual(const TJSON& value, const TPropertySnapshot& property,
                         const std::string& unit) const {
  const auto id = IsShownInHex(property) ? IDIn(fValue) : std::nullopt;
  if (id) return NumberIn(value) == *id;
  if (IsDateTime(property) && value.is_string()) {
    if (const auto order = CompareDateTime(BareText(value), fValue)) return *order == 0;
  }
  const std::vector<std::string> forms = FormsOf(value, property);
  const bool isForm = std::any_of(forms.begin(), forms.end(), [this](const std::string& form) {
    return NModel::EqualIgnoringCase(form, fValue);
  });
  if (isForm || value.is_null() || !IsNumeric(property)) return isForm;
  const auto number = NumberIn(value);
  return number && number == ParseQuantity(fValue, unit);
}

bool TCondition::Contains(const TJSON& value, const TPropertySnapshot& property) const {
  const std::string part = Folded(fValue);
  const std::vector<std::string> forms = FormsOf(value, property);
  return std::any_of(forms.begin(), forms.end(), [&part](const std::string& form) {
    return Folded(form).find(part) != std::string::npos;
  });
}

bool TCondition::IsInOrder(const TJSON& value, const TPropertySnapshot& property,
                           const std::string& unit) const {
  const auto holds = [this](const auto& left, const auto& right) {
    switch (fOperator) {
      case kLess:
        return left < right;
      case kLessOrEqual:
        return left <= right;
      case kGreater:
        return left > right;
      default:
        return left >= right;
    }
  };
  if (IsNumeric(property)) {
    const auto wanted = ParseQuantity(fValue, unit);
    if (!wanted) {
      FailOnUsage("option '--where' compares the number " + property.fName + " with '" + fValue +
                  "', which is no number" + (unit.empty() ? "" : " with the unit " + unit));
    }
    const auto number = NumberIn(value);
    // A real number is no more exact than a double.
    if (value.is_number_float()) return holds(value.get<double>(), static_cast<double>(*wanted));
    return number && holds(*number, *wanted);
  }
  if (IsDateTime(property)) {
    const std::string text = BareText(value);
    if (!DateTimeText(text)) return false;  // some digits are unknown
    const auto order = CompareDateTime(text, fValue);
    if (!order) {
      FailOnUsage("option '--where' compares the date-time " + property.fName + " with '" + fValue +
                  "', which is none");
    }
    return holds(*order, 0);
  }
  return holds(Folded(BareText(value)), Folded(fValue));
}

}  // namespace NVORNQDX20
