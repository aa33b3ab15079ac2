// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/natural_order.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace NVORNQDX20::NModel {

bool ComesBefore(std::string_view left, std::string_view right) {
  // Leading zeros do not count; of numbers without them, the longer one is larger.
  const auto takeNumber = [](std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    const std::size_t length = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    return std::make_pair(digits.size(), digits);
  };
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  while (!left.empty() && !right.empty()) {
    if (isDigit(left.front()) && isDigit(right.front())) {
      const auto one = takeNumber(left);
      const auto other = takeNumber(right);
      if (one != other) return one < other;
      continue;
    }
    // By bytes, as std::string_view compares: what is not ASCII comes last.
    const auto order = left.substr(0, 1).compare(right.substr(0, 1));
    if (order != 0) return order < 0;
    left.remove_prefix(1);
    right.remove_prefix(1);
  }
  return left.empty() && !right.empty();
}

}  // namespace NVORNQDX20::NModel
