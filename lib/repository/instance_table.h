// SPDX-License-Identifier: Apache-2.0
/// The instances of one class, found by their keys.
#ifndef LIB_REPOSITORY_INSTANCE_TABLE_H_
#define LIB_REPOSITORY_INSTANCE_TABLE_H_

#include <qdxcore/value.h>

#include <cstddef>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NRepository {

class TInstance;

class TInstanceTable {
 public:
  /// Before the first instance is added. Without keys all instances differ, and none is found.
  void SetKeySlots(std::vector<std::size_t> slots) { fKeySlots = std::move(slots); }
  const std::vector<std::size_t>& KeySlots() const { return fKeySlots; }

  /// False, and nothing done, if there is one with the same keys. The keys must not change from
  /// then on.
  [[nodiscard]] bool Add(const boost::shared_ptr<TInstance>& instance);

  /// The keys in the order of the key slots; null if there is none.
  TInstance* Find(const std::vector<TCIMValue>& keys) const;

  /// Calls `visit` until it answers false, for the instances that are there now. Whether all were
  /// visited.
  template <typename TVisit>
  bool ForEach(TVisit&& visit) const {
    const std::size_t end = fInstances.size();
    for (std::size_t i = 0; i < end; ++i) {
      if (!visit(*fInstances[i])) return false;
    }
    return true;
  }

 private:
  using TKeys = std::vector<const TCIMValue*>;
  struct TEntry {
    std::size_t fHash = 0;  // of the keys
    TInstance* fInstance = nullptr;
  };

  TKeys KeysOf(const TInstance& instance) const;
  bool HasKeys(const TInstance& instance, const TKeys& keys) const;
  /// Where the instance of these keys stands, or the empty entry where it would.
  std::size_t Probe(const TKeys& keys, std::size_t hash) const;
  void Reindex(std::size_t size);

  std::vector<std::size_t> fKeySlots;
  std::vector<boost::shared_ptr<TInstance>> fInstances;
  // A flat table with linear probing, since the nodes of the standard containers lie scattered
  // among the instances: at a million of those each look-up would miss the caches several times.
  // Its size is a power of two, and at least half of it is empty.
  std::vector<TEntry> fIndex;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_INSTANCE_TABLE_H_
