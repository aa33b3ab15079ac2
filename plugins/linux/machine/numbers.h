// SPDX-License-Identifier: Apache-2.0
/// Numbers out of the texts that the kernel gives.
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

/// Decimal digits, or hexadecimal ones behind "0x"; null for everything else.
std::optional<std::uint64_t> ParseNumber(std::string_view text);

/// The number that a text is. The reason names the source of the text.
TNumber ToNumber(const TReading& text, const std::string& source);

/// The number that is the first line of a file.
TNumber ReadNumber(const THostFiles& files, const std::string& path);

/// The first line of a file, "1" or "0".
TReadingOf<bool> ReadFlag(const THostFiles& files, const std::string& path);

/// number * multiplier / divisor.
TNumber Scaled(const TNumber& number, std::uint64_t multiplier, std::uint64_t divisor = 1);

/// The number in a smaller type.
template <typename T>
TReadingOf<T> NumberAs(const TNumber& number) {
  if (!number) return TReadingOf<T>::Missing(number.fReason);
  if (*number.fValue > std::numeric_limits<T>::max()) {
    return TReadingOf<T>::Missing(std::to_string(*number.fValue) + " is out of range");
  }
  return TReadingOf<T>::Of(static_cast<T>(*number.fValue));
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_NUMBERS_H_
