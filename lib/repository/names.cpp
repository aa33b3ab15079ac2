// SPDX-License-Identifier: Apache-2.0
#include "names.h"

#include <qdxcore/status.h>

#include <algorithm>
#include <cstdint>

#include "described.h"

namespace NVORNQDX20::NRepository {
namespace {

char Lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsNameStart(char c) {
  const char lower = Lower(c);
  return (lower >= 'a' && lower <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

bool IsCIMName(std::string_view name) {
  return !name.empty() && IsNameStart(name.front()) &&
         std::all_of(name.begin(), name.end(), [](char c) { return IsNameStart(c) || IsDigit(c); });
}

void RequireCIMName(std::string_view name) {
  if (!IsCIMName(name)) {
    throw TExplainedException(kQDXStatusInvalidCIMName, Quoted(name) + " is no CIM name");
  }
}

bool EqualNames(std::string_view left, std::string_view right) noexcept {
  // Most callers spell a name as it was declared.
  return left == right || std::equal(left.begin(), left.end(), right.begin(), right.end(),
                                     [](char l, char r) { return Lower(l) == Lower(r); });
}

std::size_t TNameHash::operator()(std::string_view name) const noexcept {
  std::uint64_t hash = 14695981039346656037U;  // FNV-1a
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(Lower(c))) * 1099511628211U;
  }
  return hash;
}

}  // namespace NVORNQDX20::NRepository
