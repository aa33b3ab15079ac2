// SPDX-License-Identifier: Apache-2.0
/// The rows of a table: one property of a class each; see <qdxdescribe/table.h>.
#ifndef QDXDESCRIBE_ROW_H_
#define QDXDESCRIBE_ROW_H_

#include <qdxdescribe/declaration.h>
#include <qdxdescribe/reading.h>
#include <qdxdescribe/request.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// An instance that a reference refers to: its class or a superclass, and the value of its last
/// key. The reference is null, with a reason, if the namespace has no such instance or several, if
/// its class is unrelated to TRefersTo, and if this is empty.
struct TInstanceName {
  std::string fClass;
  std::string fKey;
};

// The attributes of a row.
struct TKeyAttribute {};
struct TVolatileAttribute {};
struct TCounterAttribute {};
struct TGaugeAttribute {};
/// A key of the class. A missing text becomes empty, since a key cannot be null. An instance that
/// lacks a key of another type is left out, with a reason.
inline constexpr TKeyAttribute kKey;
/// The value changes while nobody changes the machine; comparisons leave it out.
inline constexpr TVolatileAttribute kVolatile;
/// A number that only increases, until it wraps (DMTF DSP0004, qualifier Counter).
inline constexpr TCounterAttribute kCounter;
/// A number that goes up and down between limits (DMTF DSP0004, qualifier Gauge).
inline constexpr TGaugeAttribute kGauge;
/// The unit of a number as a PUnit, for example "byte * 10^3" (DMTF DSP0004, annex C).
struct TUnit {
  const char* fUnit;
};
/// The class of a reference, which may be a superclass of what it refers to.
struct TRefersTo {
  const char* fClass;
};

/// Reads the name of the instance's class.
struct TClassNameReader {};
inline constexpr TClassNameReader kClassName;

/// Reads the same value for every instance.
template <typename T>
struct TConstant {
  T fValue;
  template <typename TSource>
  const T& operator()(const TSource&) const {
    return fValue;
  }
};
template <typename T>
TConstant<T> Constant(T value) {
  return {std::move(value)};
}
inline TConstant<std::string> Constant(const char* text) { return {text}; }

/// The source of a class with one instance whose rows are all read from the host.
struct TOnly {};
/// Lists it.
struct TOnlyLister {
  template <typename THost>
  TOnly operator()(const THost&) const {
    return {};
  }
};
inline constexpr TOnlyLister kOnly;

/// One value of an instance that is being made.
struct TCell {
  TCIMValue fValue;       ///< Null if the value is missing, and for a reference.
  TReason fReason;        ///< Why it is missing.
  TInstanceName fTarget;  ///< What a reference refers to.
};

namespace NDetail {

template <typename T>
struct TIsVector : std::false_type {};
template <typename T>
struct TIsVector<std::vector<T>> : std::true_type {};

template <typename T>
struct TUnread {
  using TType = T;
};
template <typename T>
struct TUnread<TReading<T>> {
  using TType = T;
};
template <>
struct TUnread<const char*> {
  using TType = std::string;
};

/// Calls a reader with as many arguments as it takes.
template <typename TReader, typename TSource, typename THost>
decltype(auto) Read(const TReader& reader, const TSource& source, const THost& host) {
  if constexpr (std::is_invocable_v<const TReader&, const TSource&, const THost&>) {
    return std::invoke(reader, source, host);
  } else if constexpr (std::is_invocable_v<const TReader&, const TSource&>) {
    return std::invoke(reader, source);
  } else {
    static_assert(std::is_invocable_v<const TReader&, const THost&>,
                  "a row is read by a function or a member of the source, of the host, or of both");
    return std::invoke(reader, host);
  }
}

/// The type of what a reader reads, for example std::uint64_t.
template <typename TReader, typename TSource, typename THost>
struct TReaderType {
  using TResult =
      std::decay_t<decltype(Read(std::declval<const TReader&>(), std::declval<const TSource&>(),
                                 std::declval<const THost&>()))>;
  using TType = typename TUnread<TResult>::TType;
};
template <typename TSource, typename THost>
struct TReaderType<TClassNameReader, TSource, THost> {
  using TType = std::string;
};

/// Returns null of the CIM type that T maps to.
template <typename T>
TCIMValue NullOf() {
  using TCIM = TCIMValue::TCIMType;
  if constexpr (std::is_same_v<T, TInstanceName>) {
    return TCIMValue(TCIM(TCIM::kCIMTypeReference), 0);
  } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
    return TCIMValue(TCIM(TCIM::kCIMTypeDateTime), 0);
  } else if constexpr (TIsVector<T>::value) {
    return TCIMValue(
        NullOf<typename T::value_type>().GetType() | static_cast<unsigned int>(TCIM::kCIMTypeArray),
        0);
  } else {
    static const auto type = TCIMValue(T()).GetType();  // once: a value costs an allocation
    return TCIMValue(type, 0);
  }
}

template <typename T>
TCIMValue ValueOf(const T& value) {
  if constexpr (TIsVector<T>::value) {
    const std::vector<TCIMValue> elements(value.begin(), value.end());
    return TCIMValue(NullOf<typename T::value_type>().GetType(), 0, elements);
  } else {
    return TCIMValue(value);
  }
}

/// Returns whether all numbers in the value can be written as numbers.
template <typename T>
bool IsFinite(const T& value) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::isfinite(value);
  } else if constexpr (TIsVector<T>::value) {
    return std::all_of(value.begin(), value.end(),
                       [](const typename T::value_type& each) { return IsFinite(each); });
  } else {
    return true;
  }
}

inline bool IsNullDate(const TCIMDateTime& date) { return date.IsNull(); }
template <typename T>
bool IsNullDate(const T&) {
  return false;
}

template <typename T>
TCell CellOf(const T& value) {
  if constexpr (kIsReading<T>) {
    return value ? CellOf(*value) : TCell{TCIMValue(), value.GetReason(), {}};
  } else if constexpr (std::is_pointer_v<T>) {
    if (value == nullptr) return TCell{};
    return {TCIMValue(value), {}, {}};
  } else if constexpr (std::is_same_v<T, TInstanceName>) {
    return {TCIMValue(), value.fClass.empty() ? "refers to nothing" : "", value};
  } else {
    if (IsNullDate(value)) return TCell{};
    if (!IsFinite(value)) return {TCIMValue(), "is not a finite number", {}};
    return {ValueOf(value), {}, {}};
  }
}

/// Returns the cell for a reader that threw: the reason is what it threw. Throws it again if memory
/// ran out. Called in a catch block.
TCell CellOfException();

template <typename T>
struct TIsReadable
    : std::bool_constant<std::is_same_v<T, std::string> || std::is_same_v<T, TCIMDateTime> ||
                         std::is_same_v<T, TInstanceName> || std::is_arithmetic_v<T>> {};
template <typename T>
struct TIsReadable<std::vector<T>>
    : std::bool_constant<TIsReadable<T>::value && !std::is_same_v<T, TInstanceName>> {};

template <typename T>
constexpr bool kIsNumber = std::is_arithmetic_v<T> && !std::is_same_v<T, bool>;

/// The type of an array's elements; of another value its own.
template <typename T>
struct TElement {
  using TType = T;
};
template <typename T>
struct TElement<std::vector<T>> {
  using TType = T;
};

/// How often the first type is among the others.
template <typename T, typename... TAll>
constexpr int Count() {
  int count = 0;
  ((count += std::is_same_v<T, TAll> ? 1 : 0), ...);
  return count;
}

template <typename T>
struct TAttributes {
  static void Apply(TPropertyDeclaration& row, TKeyAttribute) {
    static_assert(!TIsVector<T>::value, "an array cannot be a key");
    row.fIsKey = true;
  }
  static void Apply(TPropertyDeclaration& row, TVolatileAttribute) { row.fIsVolatile = true; }
  static void Apply(TPropertyDeclaration& row, TCounterAttribute) {
    static_assert(std::is_unsigned_v<T> && kIsNumber<T>, "a counter is an unsigned number");
    row.fBehavior = EBehavior::kCounter;
  }
  static void Apply(TPropertyDeclaration& row, TGaugeAttribute) {
    static_assert(kIsNumber<T>, "a gauge is a number");
    row.fBehavior = EBehavior::kGauge;
  }
  static void Apply(TPropertyDeclaration& row, const TUnit& unit) {
    static_assert(kIsNumber<T>, "only a number has a unit");
    row.fUnit = Given(unit.fUnit, "the unit of row ", row.fName.c_str());
  }
  static void Apply(TPropertyDeclaration& row, const TEnumeration& enumeration) {
    using TNumber = typename TElement<T>::TType;
    static_assert(std::is_integral_v<TNumber> && kIsNumber<TNumber>,
                  "only an integer, or an array of integers, is an enumeration");
    row.fEnumeration = enumeration;
  }
  static void Apply(TPropertyDeclaration& row, const TConstantEnumeration& enumeration) {
    Apply(row, TEnumeration(enumeration));
  }
  static void Apply(TPropertyDeclaration& row, ESecret secret) { row.fSecret = secret; }
  static void Apply(TPropertyDeclaration& row, const TRefersTo& target) {
    static_assert(std::is_same_v<T, TInstanceName>, "only a reference refers to a class");
    row.fReferencedClass = Given(target.fClass, "the class of row ", row.fName.c_str());
  }
};

}  // namespace NDetail

/// A property of a class: its declaration, and how to read it from a source.
template <typename TSource, typename THost = TRequest>
class TRow {
 public:
  /// The attributes are kKey, kVolatile, kCounter, kGauge, TUnit, TEnumeration or
  /// TConstantEnumeration, ESecret and TRefersTo, in any order.
  template <typename TReader, typename... TAttribute>
  TRow(const char* name, const char* description, TReader reader, const TAttribute&... attributes)
      : fDeclaration(NDetail::Given(name, "the name of a row"), NDetail::NullOf<TType<TReader>>()),
        fRead(Reader(std::move(reader))) {
    static_assert(NDetail::TIsReadable<TType<TReader>>::value,
                  "a row reads a bool, a number, a string, a date-time, a vector of one of these, "
                  "or a TInstanceName");
    static_assert(!std::is_same_v<TType<TReader>, TInstanceName> ||
                      (std::is_same_v<TAttribute, TRefersTo> || ...),
                  "a reference needs TRefersTo with the class it refers to");
    static_assert(((NDetail::Count<TAttribute, TAttribute...>() == 1) && ...),
                  "a row has each attribute once");
    static_assert(NDetail::Count<TCounterAttribute, TAttribute...>() +
                          NDetail::Count<TGaugeAttribute, TAttribute...>() <
                      2,
                  "a counter is no gauge");
    static_assert(NDetail::Count<TKeyAttribute, TAttribute...>() +
                          NDetail::Count<TVolatileAttribute, TAttribute...>() <
                      2,
                  "a key is not volatile");
    fDeclaration.fDescription = NDetail::Given(description, "the description of row ", name);
    (NDetail::TAttributes<TType<TReader>>::Apply(fDeclaration, attributes), ...);
  }

  /// Reads one cell; the text is the name of the instance's class.
  using TRead = std::function<TCell(const TSource&, const THost&, const std::string&)>;

  const TPropertyDeclaration& GetDeclaration() const { return fDeclaration; }
  const TRead& GetReader() const { return fRead; }
  /// Leaves the row without what is taken, even a row in a list in braces: a table of such rows
  /// would copy each before it has its own.
  TPropertyDeclaration TakeDeclaration() const { return std::move(fDeclaration); }
  TRead TakeReader() const { return std::move(fRead); }

 private:
  template <typename TReader>
  using TType = typename NDetail::TReaderType<TReader, TSource, THost>::TType;

  template <typename TReader>
  static TRead Reader(TReader reader) {
    return
        [reader = std::move(reader)](const TSource& source, const THost& host, const std::string&) {
          try {
            return NDetail::CellOf(NDetail::Read(reader, source, host));
          } catch (...) {
            return NDetail::CellOfException();
          }
        };
  }
  static TRead Reader(TClassNameReader) {
    return [](const TSource&, const THost&, const std::string& className) {
      return NDetail::CellOf(className);
    };
  }

  mutable TPropertyDeclaration fDeclaration;
  mutable TRead fRead;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_ROW_H_
