// SPDX-License-Identifier: Apache-2.0
/// The result of reading something: a value, or the reason why there is none.
#ifndef QDXDESCRIBE_READING_H_
#define QDXDESCRIBE_READING_H_

#include <qdxcore/status.h>

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace NVORNQDX20::NDescribe {

/// The reason why a value is missing: one short sentence for the operator that begins with what was
/// read, for example "/proc/loadavg: Permission denied".
///
/// A text that also says whether the machine may well have the value: an error stood in the way. Of
/// a value that is not there, and of one that nobody asked for, the reason is no error. Derived
/// from std::string so that whatever takes a text takes it.
class TReason : public std::string {
 public:
  enum EKind { kAbsence, kError };

  TReason() = default;
  TReason(std::string text, EKind kind = kAbsence)
      : std::string(std::move(text)), fIsError(kind == kError) {}
  TReason(const char* text) : std::string(text) {}

  bool IsError() const noexcept { return fIsError; }
  /// Adds another reason, after "; ".
  void Add(const TReason& other) {
    append(empty() ? "" : "; ").append(other);
    fIsError = fIsError || other.fIsError;
  }

 private:
  bool fIsError = false;
};

/// The text before a reason does not change its kind.
inline TReason operator+(std::string text, const TReason& reason) {
  text += reason;
  return {std::move(text), reason.IsError() ? TReason::kError : TReason::kAbsence};
}
inline TReason operator+(const char* text, const TReason& reason) {
  return std::string(text) + reason;
}

/// What a function returns that has no value to return.
struct TMissing {
  TReason fReason;
};

inline TMissing Missing(TReason reason) { return {std::move(reason)}; }
/// For what exists, or may exist, but cannot be read.
inline TMissing Failed(std::string reason) { return {TReason(std::move(reason), TReason::kError)}; }

/// The reason of a null without another one.
inline constexpr const char* kNotRead = "was not read";

template <typename T>
class TReading;

template <typename T>
inline constexpr bool kIsReading = false;
template <typename T>
inline constexpr bool kIsReading<TReading<T>> = true;

namespace NDetail {

template <typename U, typename T>
inline constexpr bool kIsMistakenFor = std::is_pointer_v<U> ||
                                       (std::is_arithmetic_v<U> &&
                                        (std::is_same_v<U, bool> != std::is_same_v<T, bool> ||
                                         (std::is_floating_point_v<U> && std::is_integral_v<T>)));

}  // namespace NDetail

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

  TReading() : fReason(kNotRead) {}
  TReading(T value) : fValue(std::move(value)) {}
  TReading(TMissing missing) : fReason(std::move(missing.fReason)) {
    if (fReason.empty()) fReason = kNotRead;
  }
  /// For what converts to a class, such as a literal to a string; a null pointer has no value.
  /// Numbers convert by the constructor above, so that the compiler warns where digits can be lost.
  template <typename U,
            std::enable_if_t<std::is_class_v<T> && std::is_convertible_v<const U&, T>, int> = 0>
  TReading(const U& value) {
    if constexpr (std::is_pointer_v<U>) {
      if (value == nullptr) {
        fReason = kNotRead;
        return;
      }
    }
    fValue.emplace(value);
  }
  /// Refused, since C++ converts them: a pointer or a number to true, a bool to a number, and a
  /// number to one without the digits after the point.
  template <typename U,
            std::enable_if_t<std::is_arithmetic_v<T> && NDetail::kIsMistakenFor<U, T>, int> = 0>
  TReading(U value) = delete;

  explicit operator bool() const noexcept { return fValue.has_value(); }
  /// Throws a TExplainedException with the reason, and kQDXStatusValueIsNULL, if there is no value.
  /// A temporary gives its value away, so that a loop over it is safe.
  const T& operator*() const& { return *operator->(); }
  T operator*() && {
    (void)operator->();
    return *std::move(fValue);
  }
  const T* operator->() const {
    if (!fValue) throw TExplainedException(kQDXStatusValueIsNULL, fReason);
    return &*fValue;
  }
  T ValueOr(T other) const { return fValue.value_or(std::move(other)); }
  /// Empty if there is a value.
  TReason GetReason() const& { return fReason; }
  TReason GetReason() && { return std::move(fReason); }

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
  TReason fReason;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_READING_H_
