// SPDX-License-Identifier: Apache-2.0
/// What values are made of.
#ifndef LIB_REDACT_VALUES_H_
#define LIB_REDACT_VALUES_H_

#include <qdxcore/reference.h>
#include <qdxcore/value.h>
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace NVORNQDX20::NRedact {

/// Returns whether it is a text, or an array of texts.
inline bool IsText(TCIMValue::TCIMType type) {
  return NModel::ElementType(type) == TCIMValue::TCIMType::kCIMTypeString;
}

/// Calls `visit(const std::string&)` for a text, and for each text of an array.
template <typename TVisit>
void ForEachText(const TCIMValue& value, const TVisit& visit) {
  if (const std::string* const text = value.FindString()) return visit(*text);
  if (value.IsNull() || !value.IsArray()) return;
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& element : elements) {
    if (const std::string* const text = element.FindString()) visit(*text);
  }
}

/// Calls `visit(const TCIMReference&)` for a reference, and for each one of an array.
template <typename TVisit>
void ForEachReference(const TCIMValue& value, const TVisit& visit) {
  if (const TCIMReference* const reference = value.FindReference()) return visit(*reference);
  if (value.IsNull() || !value.IsArray()) return;
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& element : elements) {
    if (const TCIMReference* const reference = element.FindReference()) visit(*reference);
  }
}

/// Returns another number of the same type; a value that is no number as it is.
inline TCIMValue OtherNumber(const TCIMValue& value, std::uint64_t random) {
  return NModel::VisitScalar(value, [&](const auto& native) {
    using T = std::decay_t<decltype(native)>;
    if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
      return TCIMValue(
          static_cast<T>(random & static_cast<std::uint64_t>(std::numeric_limits<T>::max())));
    } else if constexpr (std::is_floating_point_v<T>) {
      return TCIMValue(static_cast<T>(random % 1000000));
    } else {
      return value;
    }
  });
}

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_VALUES_H_
