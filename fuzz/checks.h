// SPDX-License-Identifier: Apache-2.0
/// Helpers of the fuzz targets: assertion of a property, and selection of a check.
#ifndef FUZZ_CHECKS_H_
#define FUZZ_CHECKS_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Aborts unless the property holds; libFuzzer reports the input.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

using TCheck = void (*)(const std::string& text);

/// Runs the check that the first byte selects ('0' is the first) on the rest of the input.
template <std::size_t kCount>
int RunCheck(const TCheck (&checks)[kCount], const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto number = static_cast<std::uint8_t>(data[0] - '0');
  checks[number % kCount](std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  return 0;
}

#endif  // FUZZ_CHECKS_H_
