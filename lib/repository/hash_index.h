// SPDX-License-Identifier: Apache-2.0
/// Finds positions by the hashes of what is there.
#ifndef LIB_REPOSITORY_HASH_INDEX_H_
#define LIB_REPOSITORY_HASH_INDEX_H_

#include <cstddef>
#include <optional>
#include <vector>

namespace NVORNQDX20::NRepository {

/// A flat table with linear probing: the nodes of a standard container are scattered among the
/// elements, and with a million of them each look-up would miss the caches several times.
class THashIndex {
 public:
  /// `isSame` is called with positions that have this hash, until it returns true.
  template <typename TIsSame>
  std::optional<std::size_t> Find(std::size_t hash, TIsSame&& isSame) const {
    if (fEntries.empty()) return std::nullopt;
    const std::size_t mask = fEntries.size() - 1;
    for (std::size_t at = hash & mask; fEntries[at].fPosition != kNone; at = (at + 1) & mask) {
      const TEntry& entry = fEntries[at];
      if (entry.fHash == hash && isSame(entry.fPosition)) return entry.fPosition;
    }
    return std::nullopt;
  }

  /// Makes room for one more position, so that Add() cannot fail.
  void Reserve() {
    if (2 * (fCount + 1) > fEntries.size()) Grow();
  }
  /// REQUIRES: Reserve() was called.
  void Add(std::size_t hash, std::size_t position) noexcept {
    ++fCount;
    Insert(fEntries, {hash, position});
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  static constexpr std::size_t kLeastSize = 4;

  struct TEntry {
    std::size_t fHash = 0;
    std::size_t fPosition = kNone;
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
