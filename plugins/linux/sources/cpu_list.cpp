// SPDX-License-Identifier: Apache-2.0
#include "cpu_list.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "reading.h"

namespace NVORNQDX20 {
namespace {

/// More than CONFIG_NR_CPUS can be.
constexpr std::uint64_t kMaxCPUs = 65536;

/// Takes a number from the front of the text.
std::optional<std::uint64_t> TakeNumber(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
  const auto number = ParseNumber(text.substr(0, end));
  text.remove_prefix(end);
  return number && *number < kMaxCPUs ? number : std::nullopt;
}

bool Take(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

std::optional<TCPUs> ParseCPUList(std::string_view text) {
  TCPUs cpus;
  if (text.empty()) return cpus;
  do {
    const auto first = TakeNumber(text);
    const auto last = Take(text, '-') ? TakeNumber(text) : first;
    if (!first || !last) return std::nullopt;
    for (std::uint64_t i = *first; i <= *last; ++i) cpus.insert(static_cast<unsigned>(i));
  } while (Take(text, ','));
  if (!text.empty()) return std::nullopt;
  return cpus;
}

std::string FormatCPUList(const TCPUs& cpus) {
  std::string text;
  for (auto first = cpus.begin(); first != cpus.end();) {
    auto end = std::next(first);
    unsigned last = *first;
    while (end != cpus.end() && *end == last + 1) last = *end++;
    text += (text.empty() ? "" : ",") + std::to_string(*first);
    if (last != *first) text += "-" + std::to_string(last);
    first = end;
  }
  return text;
}

}  // namespace NVORNQDX20
