// SPDX-License-Identifier: Apache-2.0
/// Visits a value or a type by the native type of its CIM type.
///
///   std::string Text(bool value);
///   std::string Text(const std::string& value);  // and so on: overloads, or a template
///   std::string text = VisitScalar(value, [](const auto& native) { return Text(native); });
#ifndef QDXMODEL_VISIT_H_
#define QDXMODEL_VISIT_H_

#include <qdxcore/datetime.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxcore/value.h>

#include <cstddef>
#include <string>
#include <type_traits>

namespace NVORNQDX20::NModel {

/// A tag for a native type; void for none.
template <typename T>
struct TNative {
  using TType = T;
};

/// Calls `visit` with the TNative of a scalar type, and returns its result. TNative<void> is passed
/// for types without scalars: none, char, arrays and invalid codes.
///
/// The only switch over the types: without a default, so that the compiler reports a missing type.
/// Callers decide by overloads.
template <typename TVisit>
decltype(auto) VisitType(TCIMValue::TCIMType type, TVisit&& visit) {
  using TType = TCIMValue::TCIMType;
  switch (static_cast<TType::ECIMType>(type)) {
    case TType::kCIMTypeBoolean:
      return visit(TNative<bool>());
    case TType::kCIMTypeUint8:
      return visit(TNative<unsigned char>());
    case TType::kCIMTypeSint8:
      return visit(TNative<signed char>());
    case TType::kCIMTypeUint16:
      return visit(TNative<unsigned short>());
    case TType::kCIMTypeSint16:
      return visit(TNative<short>());
    case TType::kCIMTypeUint32:
      return visit(TNative<unsigned int>());
    case TType::kCIMTypeSint32:
      return visit(TNative<int>());
    case TType::kCIMTypeUint64:
      return visit(TNative<unsigned long>());
    case TType::kCIMTypeSint64:
      return visit(TNative<long>());
    case TType::kCIMTypeReal32:
      return visit(TNative<float>());
    case TType::kCIMTypeReal64:
      return visit(TNative<double>());
    case TType::kCIMTypeString:
      return visit(TNative<std::string>());
    case TType::kCIMTypeDateTime:
      return visit(TNative<TCIMDateTime>());
    case TType::kCIMTypeReference:
      return visit(TNative<TCIMReference>());
    case TType::kCIMTypeNone:
    case TType::kCIMTypeChar:
    case TType::kCIMTypeArray:
      break;
  }
  return visit(TNative<void>());
}

/// Returns how many bytes the native type of a number or boolean has; 0 for other types.
inline std::size_t SizeOfNumber(TCIMValue::TCIMType type) {
  return VisitType(type, [](auto native) -> std::size_t {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T>) {
      return sizeof(T);
    } else {
      return 0;
    }
  });
}

/// Calls `visit` with the content of a scalar, and returns its result. Throws
/// kQDXStatusValueIsNULL for a value that is null, kQDXStatusTypeMismatch for an array.
template <typename TVisit>
decltype(auto) VisitScalar(const TCIMValue& value, TVisit&& visit) {
  using TResult = std::invoke_result_t<TVisit&, bool>;
  return VisitType(value.GetType(), [&](auto native) -> TResult {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_void_v<T>) {
      throw TQDXException(value.IsNull() ? kQDXStatusValueIsNULL : kQDXStatusTypeMismatch);
    } else {
      return visit(static_cast<T>(value));
    }
  });
}

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_VISIT_H_
