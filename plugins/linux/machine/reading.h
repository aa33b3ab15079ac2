// SPDX-License-Identifier: Apache-2.0
/// The result of reading one fact of the machine.
#ifndef PLUGINS_LINUX_MACHINE_READING_H_
#define PLUGINS_LINUX_MACHINE_READING_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace NVORNQDX20 {

/// A value, or the reason why it is missing; never both.
template <typename T>
struct TReadingOf {
  static TReadingOf Of(T value) { return {std::move(value), {}}; }
  static TReadingOf Missing(std::string reason) { return {std::nullopt, std::move(reason)}; }

  explicit operator bool() const { return fValue.has_value(); }

  std::optional<T> fValue;
  std::string fReason;
};

using TReading = TReadingOf<std::string>;
using TNumber = TReadingOf<std::uint64_t>;

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_READING_H_
