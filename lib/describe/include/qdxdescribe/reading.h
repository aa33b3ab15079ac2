// SPDX-License-Identifier: Apache-2.0
/// The result of reading something: a value, or the reason why there is none.
#ifndef QDXDESCRIBE_READING_H_
#define QDXDESCRIBE_READING_H_

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace NVORNQDX20::NDescribe {

/// The reason why a value is missing: one short sentence for the operator that begins with what was
/// read, for example "/proc/loadavg: Permission denied".
struct TMissing {
  std::string fReason;
};

inline TMissing Missing(std::string reason) { return {std::move(reason)}; }

template <typename T>
class TReading;

template <typename T>
inline constexpr bool kIsReading = false;
template <typename T>
inline constexpr bool kIsReading<TReading<T>> = true;

/// A value or a reason, never both.
///
///   TReading<double> ReadLoad(const std::string& text) {
///     if (text.empty()) return Missing("/proc/loadavg: empty");
///     return std::stod(text);
///   }
template <typename T>
class TReading {
 public:
  using TValue = T;

  TReading() : fReason("was not read") {}
  TReading(T value) : fValue(std::move(value)) {}
  TReading(TMissing missing) : fReason(std::move(missing.fReason)) {}
  /// For what converts to a class, such as a literal to a string. Numbers convert by the
  /// constructor above, so that the compiler warns where digits can be lost.
  template <typename U,
            typename = std::enable_if_t<std::is_class_v<T> && std::is_constructible_v<T, const U&>>>
  TReading(const U& value) : fValue(T(value)) {}

  explicit operator bool() const noexcept { return fValue.has_value(); }
  /// REQUIRES: there is a value.
  const T& operator*() const { return *fValue; }
  const T* operator->() const { return &*fValue; }
  T ValueOr(T other) const { return fValue.value_or(std::move(other)); }
  /// Empty if there is a value.
  const std::string& GetReason() const noexcept { return fReason; }

  /// Returns a reading of `convert(value)`, or the same reason.
  template <typename TConvert>
  auto map(TConvert&& convert) const
      -> TReading<std::decay_t<std::invoke_result_t<TConvert, const T&>>> {
    static_assert(!kIsReading<std::decay_t<std::invoke_result_t<TConvert, const T&>>>,
                  "map() takes a function that returns a value; and_then() one that returns a "
                  "reading");
    if (!fValue) return TMissing{fReason};
    return std::invoke(std::forward<TConvert>(convert), *fValue);
  }

  /// Returns `read(value)`, which is a reading itself, or the same reason.
  template <typename TRead>
  auto and_then(TRead&& read) const -> std::decay_t<std::invoke_result_t<TRead, const T&>> {
    static_assert(kIsReading<std::decay_t<std::invoke_result_t<TRead, const T&>>>,
                  "and_then() takes a function that returns a reading; map() one that returns a "
                  "value");
    if (!fValue) return TMissing{fReason};
    return std::invoke(std::forward<TRead>(read), *fValue);
  }

 private:
  std::optional<T> fValue;
  std::string fReason;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_READING_H_
