// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/numbers.h>

namespace NVORNQDX20::NDescribe::NDetail {

TMissing NoNumber(std::errc error, const std::string& text, const std::string& source) {
  constexpr std::size_t kMaxQuotedText = 40;
  const std::string quoted = text.size() <= kMaxQuotedText ? "'" + text + "' is " : "";
  const bool isTooLarge = error == std::errc::result_out_of_range;
  return Failed(source + ": " + quoted + (isTooLarge ? "out of range" : "no valid number"));
}

TMissing OutOfRange(std::uint64_t number) {
  return Failed(std::to_string(number) + " is out of range");
}

TMissing DividedByZero(std::uint64_t number) {
  return Failed(std::to_string(number) + " cannot be divided by 0");
}

}  // namespace NVORNQDX20::NDescribe::NDetail
