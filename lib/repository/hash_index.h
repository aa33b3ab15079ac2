// SPDX-License-Identifier: Apache-2.0
/// Finds positions by the hashes of what is there.
#ifndef LIB_REPOSITORY_HASH_INDEX_H_
#define LIB_REPOSITORY_HASH_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <vector>

namespace NVORNQDX20::NRepository {

/// A flat table with linear probing: the nodes of a standard container are scattered among the
/// elements, and with a million of them each look-up would miss the caches several times. For the
/// same reason an entry has eight bytes: half of the hash, and a position of 32 bits.
class THashIndex {
 public:
  /// `isSame` is called with positions that have this hash, until it returns true.
  template <typename TIsSame>
  std::optional<std::size_t> Find(std::size_t hash, TIsSame&& isSame) const {
    if (fEntries.empty()) return std::nullopt;
    const std::size_t mask = fEntries.size() - 1;
    const auto half = static_cast<std::uint32_t>(hash);
    for (std::size_t at = half & mask; fEntries[at].fPosition != kNone; at = (at + 1) & mask) {
      const TEntry& entry = fEntries[at];
      if (entry.fHash == half && isSame(entry.fPosition)) return entry.fPosition;
    }
    return std::nullopt;
  }

  /// Makes room for one more position, so that Add() cannot fail. Throws std::length_error if the
  /// positions no longer fit.
  void Reserve() {
    if (fCount >= kNone) throw std::length_error("more elements than an index can have");
    if (2 * (fCount + 1) > fEntries.size()) Grow();
  }
  /// Adds the next position, which is the number of those before it. REQUIRES: Reserve() was
  /// called.
  void Add(std::size_t hash) noexcept {
    Insert(fEntries, {static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(fCount)});
    ++fCount;
  }

 private:
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
  static constexpr std::size_t kLeastSize = 4;

  struct TEntry {
    std::uint32_t fHash = 0;
    std::uint32_t fPosition = kNone;
  };

  static void Insert(std::vector<TEntry>& entries, const TEntry& entry) noexcept {
    const std::size_t mask = entries.size() - 1;
    std::size_t at = entry.fHash & mask;
    while (entries[at].fPosition != kNone) at = (at + 1) & mask;
    entries[at] = entry;
  }

  void Grow() {
    std::vector<TEntry> entries(fEntries.empty() ? kLeastSize : 2 * fEntries.size());
    for (const TEntry& entry : fEntries) {
      if (entry.fPosition != kNone) Insert(entries, entry);
    }
    fEntries.swap(entries);
  }

  std::size_t fCount = 0;
  std::vector<TEntry> fEntries;  // a power of two, at least half of them empty
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_HASH_INDEX_H_
