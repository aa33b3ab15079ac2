// SPDX-License-Identifier: Apache-2.0
/// Hashes with a key of the process, for tables whose keys come from documents.
///
/// The author of a document does not know the key, and so cannot choose names that all fall into
/// the same place of a table. No result may depend on it: a table is enumerated in another order.
#ifndef QDXMODEL_HASH_H_
#define QDXMODEL_HASH_H_

#include <cstdint>
#include <cstring>
#include <string_view>

namespace NVORNQDX20::NModel {

struct THashKey {
  std::uint64_t fStart;
  std::uint64_t fFactor;
};

/// Returns the key of this process, the same at every call.
const THashKey& ProcessHashKey() noexcept;

/// Combines words and texts. Inline, since tables hash for each property of each instance.
class THasher {
 public:
  explicit THasher(const THashKey& key) : fState(key.fStart), fFactor(key.fFactor) {}

  void Add(std::uint64_t word) noexcept { fState = Fold(fState ^ word, fFactor); }

  /// Adds `map` of the text's bytes, eight at a time.
  template <typename TMap>
  void Add(std::string_view text, TMap&& map) noexcept {
    const char* const end = text.data() + text.size();
    Add(text.size());
    for (const char* at = text.data(); end - at > 8; at += 8) Add(map(Load<std::uint64_t>(at)));
    // The last words overlap with those before, instead of ending in the middle.
    if (text.size() >= 8) {
      Add(map(Load<std::uint64_t>(end - 8)));
    } else if (text.size() >= 4) {
      const std::uint64_t high = Load<std::uint32_t>(end - 4);
      Add(map(high << 32 | Load<std::uint32_t>(text.data())));
    } else if (!text.empty()) {
      const std::uint64_t last = Load<std::uint8_t>(end - 1);
      const std::uint64_t middle = Load<std::uint8_t>(text.data() + text.size() / 2);
      Add(map(last << 16 | middle << 8 | Load<std::uint8_t>(text.data())));
    }
  }
  void Add(std::string_view text) noexcept {
    Add(text, [](std::uint64_t word) { return word; });
  }

  /// Once more by a factor that is known to be good: with some keys, the low bits of one product
  /// hardly depend on the high bits of the last word.
  std::uint64_t Get() const noexcept { return Fold(fState, 0x9E3779B97F4A7C15U); }

 private:
  static std::uint64_t Fold(std::uint64_t left, std::uint64_t right) noexcept {
    __extension__ using TProduct = unsigned __int128;
    const TProduct product = static_cast<TProduct>(left) * right;
    // Each half alone lacks the influence of some bits.
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  template <typename T>
  static T Load(const char* bytes) noexcept {
    T word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
  }

  std::uint64_t fState;
  const std::uint64_t fFactor;
};

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_HASH_H_
