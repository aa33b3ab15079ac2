// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/value_json.h>

#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>
#include <qdxmodel/names.h>
#include <qdxmodel/visit.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace NVORNQDX20 {
namespace {

/// Returns the shortest decimal that reads back as the same value of T: 0.1 of a real32 does not
/// become the nearest double, 0.10000000149011612.
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

TJSON Array(const std::vector<TCIMValue>& elements, const std::string& ownNamespace) {
  TJSON array = TJSON::array();
  for (const TCIMValue& element : elements) array.push_back(ToJSON(element, ownNamespace));
  return array;
}

TJSON Reference(const TCIMReference& reference, const std::string& ownNamespace) {
  const auto ns = reference.GetNamespace();
  const std::string there = ns ? ns->GetName({}) : ownNamespace;
  const bool leadsOut = !NModel::EqualIgnoringCase(there, ownNamespace);
  return (leadsOut ? there + ":" : "") + reference.GetPath();
}

/// Returns whether the text looks like null, an array, or a text in quotes.
bool IsMistakable(const std::string& text) {
  return text.empty() || text == "-" || text[0] == '"' || text.compare(0, 2, "{ ") == 0;
}

std::string Quoted(const TJSON& text) {
  return text.dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

/// A date-time can be null within a value that is not null.
TJSON DateTime(const TCIMDateTime& dateTime) {
  return dateTime.IsNull() ? TJSON() : TJSON(dateTime.ToString());
}

template <typename T>
TJSON Number(T number) {
  if constexpr (std::is_floating_point_v<T>) {
    return Real(number);
  } else if constexpr (sizeof(T) == sizeof(std::int64_t)) {
    return std::to_string(number);
  } else {
    return number;
  }
}

}  // namespace

TJSON ToJSON(const TCIMValue& value, const std::string& ownNamespace) {
  if (value.IsNull()) return nullptr;
  if (value.IsArray()) return Array(value, ownNamespace);
  return NModel::VisitScalar(value, [&ownNamespace](auto native) -> TJSON {
    using T = decltype(native);
    if constexpr (std::is_arithmetic_v<T>) {
      return Number(native);
    } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
      return DateTime(native);
    } else if constexpr (std::is_same_v<T, TCIMReference>) {
      return Reference(native, ownNamespace);
    } else {
      return native;
    }
  });
}

TJSON ToJSON(const TPlainValue& value, TCIMValue::TCIMType type) {
  if (value.fIsNull) return nullptr;
  return NModel::VisitType(type, [&value](auto native) -> TJSON {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T>) {
      T number;
      std::memcpy(&number, value.fBytes.data(), sizeof number);
      return Number(number);
    } else {
      return std::string(value.fBytes);
    }
  });
}

std::string PlainText(const TJSON& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) {
    const auto& plain = value.get_ref<const std::string&>();
    return IsMistakable(plain) ? Quoted(value) : plain;
  }
  if (value.is_number_unsigned()) return std::to_string(value.get<std::uint64_t>());
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const TJSON& element : value) {
    text += text.empty() ? "{ " : ", ";
    const bool isList = element.is_string() &&
                        element.get_ref<const std::string&>().find(", ") != std::string::npos;
    text += isList ? Quoted(element) : PlainText(element);
  }
  return text.empty() ? "{ }" : text + " }";
}

}  // namespace NVORNQDX20
