// SPDX-License-Identifier: Apache-2.0
/// Parses numbers in texts of the kernel.
#ifndef PLUGINS_LINUX_MACHINE_NUMBERS_H_
#define PLUGINS_LINUX_MACHINE_NUMBERS_H_

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "host_files.h"
#include "reading.h"

namespace NVORNQDX20 {

/// Parses decimal digits, or hexadecimal digits after "0x"; null for any other text.
std::optional<std::uint64_t> ParseNumber(std::string_view text);

/// Parses a text; `source` is named in the reason if it is not a number.
TNumber ToNumber(const TText& text, const std::string& source);

/// Reads the first line of a file as a number.
TNumber ReadNumber(const THostFiles& files, const std::string& path);

/// Reads the first line of a file, which must be "1" or "0".
TReading<bool> ReadFlag(const THostFiles& files, const std::string& path);

/// Returns number * multiplier / divisor.
TNumber Scaled(const TNumber& number, std::uint64_t multiplier, std::uint64_t divisor = 1);

/// Converts to a smaller type; missing if the number is out of range.
template <typename T>
TReading<T> NumberAs(const TNumber& number) {
  return number.and_then([](std::uint64_t value) -> TReading<T> {
    if (value > std::numeric_limits<T>::max()) {
      return Missing(std::to_string(value) + " is out of range");
    }
    return static_cast<T>(value);
  });
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_NUMBERS_H_
