// SPDX-License-Identifier: Apache-2.0
#include "spelling.h"

#include <qdxmodel/names.h>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

namespace NVORNQDX20::NRedact {
namespace {

/// Fewer hexadecimal digits are no address of hardware.
constexpr std::size_t kFewestDigits = 12;

}  // namespace

std::string HexDigitsOf(std::string_view value) {
  std::string digits;
  for (const char c : value) {
    if (kHexadecimal.find(c) != std::string_view::npos) {
      digits += NModel::Lower(c);
    } else if (c != ':' && c != '-' && c != '.' && c != ' ') {
      return {};
    }
  }
  return digits.size() >= kFewestDigits ? digits : std::string();
}

std::string Grouped(const std::string& digits, std::size_t size, char separator) {
  std::string text;
  for (std::size_t at = 0; at < digits.size(); at += size) {
    if (at != 0) text += separator;
    text.append(digits, at, size);
  }
  return text;
}

std::vector<std::string> Split(const std::string& text, const char* separators) {
  std::vector<std::string> parts;
  boost::algorithm::split(parts, text, boost::algorithm::is_any_of(separators));
  return parts;
}

}  // namespace NVORNQDX20::NRedact
