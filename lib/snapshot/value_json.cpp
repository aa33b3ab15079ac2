// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/value_json.h>

#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>

#include <charconv>
#include <cmath>
#include <locale>
#include <vector>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

/// The shortest decimal that reads back as the same value of T: 0.1 of a real32 is not shown as the
/// double next to it, 0.10000000149011612.
template <typename T>
TJSON Real(T value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  char text[64];
  const char* const end = std::to_chars(text, std::end(text), value).ptr;
  double number = 0;
  std::from_chars(text, end, number);
  return number;
}

TJSON Array(const std::vector<TCIMValue>& elements, const std::string& home) {
  TJSON array = TJSON::array();
  for (const TCIMValue& element : elements) array.push_back(ToJSON(element, home));
  return array;
}

TJSON Reference(const TCIMReference& reference, const std::string& home) {
  const auto ns = reference.GetNamespace();
  const std::string there = ns ? ns->GetName(TOptionsMap()) : home;
  const bool leadsOut = !boost::algorithm::iequals(there, home, std::locale::classic());
  return (leadsOut ? there + ":" : "") + reference.GetPath();
}

/// A date-time can itself be null, within a value that is not.
TJSON DateTime(const TCIMDateTime& dateTime) {
  return dateTime.IsNull() ? TJSON() : TJSON(dateTime.ToString());
}

}  // namespace

TJSON ToJSON(const TCIMValue& value, const std::string& home) {
  if (value.IsNull()) return nullptr;
  if (value.IsArray()) return Array(value, home);
  switch (value.GetType()) {
    case TType::kCIMTypeBoolean:
      return static_cast<bool>(value);
    case TType::kCIMTypeUint8:
      return static_cast<unsigned char>(value);
    case TType::kCIMTypeSint8:
      return static_cast<signed char>(value);
    case TType::kCIMTypeUint16:
      return static_cast<unsigned short>(value);
    case TType::kCIMTypeSint16:
      return static_cast<short>(value);
    case TType::kCIMTypeUint32:
      return static_cast<unsigned int>(value);
    case TType::kCIMTypeSint32:
      return static_cast<int>(value);
    case TType::kCIMTypeReal32:
      return Real<float>(value);
    case TType::kCIMTypeReal64:
      return Real<double>(value);
    case TType::kCIMTypeDateTime:
      return DateTime(value);
    case TType::kCIMTypeReference:
      return Reference(value, home);
    default:
      return value.ToString(10);
  }
}

std::string PlainText(const TJSON& value) {
  if (value.is_null()) return "-";
  if (value == "") return "\"\"";
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const TJSON& element : value) text += (text.empty() ? "{ " : ", ") + PlainText(element);
  return text.empty() ? "{ }" : text + " }";
}

}  // namespace NVORNQDX20
