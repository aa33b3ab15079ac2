// SPDX-License-Identifier: Apache-2.0
#include "cpu_list.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <system_error>

#include "reading.h"

namespace NVORNQDX20 {
namespace {

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
    // Ascending numbers, so that no text lists more than all of them.
    if (!first || !last || *last < *first) return std::nullopt;
    if (!cpus.empty() && *first <= *cpus.rbegin()) return std::nullopt;
    for (std::uint64_t i = *first; i <= *last; ++i) {
      cpus.insert(cpus.end(), static_cast<unsigned>(i));
    }
  } while (Take(text, ','));
  if (!text.empty()) return std::nullopt;
  return cpus;
}

std::optional<TCPUs> ParseCPUMask(std::string_view text) {
  TCPUs cpus;
  unsigned next = 0;
  // The kernel writes all digits of each word but the first, so commas do not count.
  for (auto at = text.rbegin(); at != text.rend(); ++at) {
    if (*at == ',') continue;
    unsigned bits = 0;
    if (std::from_chars(&*at, &*at + 1, bits, 16).ec != std::errc()) return std::nullopt;
    for (unsigned bit = 0; bit < 4; ++bit, ++next) {
      if (((bits >> bit) & 1U) == 0) continue;
      if (next >= kMaxCPUs) return std::nullopt;
      cpus.insert(cpus.end(), next);
    }
  }
  if (next == 0) return std::nullopt;
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
