// SPDX-License-Identifier: Apache-2.0
/// Compares names without regard to ASCII case, and to no other case (DMTF DSP0004, naming); quotes
/// names for messages.
///
/// The locale has no influence. Keywords in any case, such as "TRUE", compare in the same way.
///
/// All inline, since name tables hash and compare for each property of each instance.
#ifndef QDXMODEL_NAMES_H_
#define QDXMODEL_NAMES_H_

#include <qdxmodel/hash.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace NVORNQDX20::NModel {

constexpr char Lower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool EqualIgnoringCase(std::string_view left, std::string_view right) noexcept {
  // Fast path: most callers spell a name as it was declared.
  return left == right || std::equal(left.begin(), left.end(), right.begin(), right.end(),
                                     [](char l, char r) { return Lower(l) == Lower(r); });
}

/// Returns the name in lower case: equal exactly for names that compare equal.
inline std::string Folded(std::string_view name) {
  std::string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), Lower);
  return folded;
}

/// Returns a name of unknown origin for use in a message: in double quotes, truncated if it is
/// long.
inline std::string Quoted(std::string_view name) {
  constexpr std::size_t kLongest = 60;
  const char* const end = name.size() > kLongest ? "...\"" : "\"";
  return '"' + std::string(name.substr(0, kLongest)) + end;
}

/// Returns the eight characters of a word in lower case.
constexpr std::uint64_t LowerWord(std::uint64_t word) noexcept {
  constexpr std::uint64_t kEach = 0x0101010101010101U;
  const std::uint64_t low = word & (0x7F * kEach);
  const std::uint64_t fromA = low + (0x80 - 'A') * kEach;  // bit 7: 'A' or above
  const std::uint64_t aboveZ = low + (0x7F - 'Z') * kEach;
  return word | ((fromA & ~aboveZ & ~word & (0x80 * kEach)) >> 2);
}

/// For hashed containers whose keys are names, or views of names.
class TNameHash {
 public:
  explicit TNameHash(const THashKey& key = ProcessHashKey()) : fKey(key) {}

  /// Not noexcept, so that containers store the hashes instead of computing them again.
  std::size_t operator()(std::string_view name) const {
    THasher hasher(fKey);
    hasher.Add(name, LowerWord);
    return hasher.Get();
  }

 private:
  THashKey fKey;
};

struct TNameEqual {
  bool operator()(std::string_view left, std::string_view right) const noexcept {
    return EqualIgnoringCase(left, right);
  }
};

template <typename T>
using TNameMap = std::unordered_map<std::string, T, TNameHash, TNameEqual>;

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_NAMES_H_
