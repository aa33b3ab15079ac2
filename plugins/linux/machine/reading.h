// SPDX-License-Identifier: Apache-2.0
/// What the machine says about one thing, or why it says nothing.
#ifndef PLUGINS_LINUX_MACHINE_READING_H_
#define PLUGINS_LINUX_MACHINE_READING_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace NVORNQDX20 {

/// A value of the machine, or the reason why it cannot be had; never both.
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
