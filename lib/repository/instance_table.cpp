// SPDX-License-Identifier: Apache-2.0
#include "instance_table.h"

#include <qdxmodel/hash.h>

#include "ownership.h"

namespace NVORNQDX20::NRepository {

bool TInstanceTable::Add(TInstance& instance) {
  if (!fKeySlots.empty()) {
    const auto keyAt = [&](std::size_t i) -> const TStoredValue& {
      return instance.StoredAt(fKeySlots[i]);
    };
    const std::size_t hash = HashOf(keyAt);
    if (FindBy(keyAt, hash) != nullptr) return false;
    fIndex.Reserve();
    ReserveOne(fInstances);
    fIndex.Add(hash);
  }
  fInstances.emplace_back(&instance);
  return true;
}

TInstance* TInstanceTable::Find(const TWantedKey* keys) const {
  if (fKeySlots.empty() || fInstances.empty()) return nullptr;
  const auto keyAt = [&](std::size_t i) -> const TWantedKey& { return keys[i]; };
  return FindBy(keyAt, HashOf(keyAt));
}

template <typename TKeyAt>
std::size_t TInstanceTable::HashOf(const TKeyAt& keyAt) const {
  NModel::THasher hasher(NModel::ProcessHashKey());
  for (std::size_t i = 0; i < fKeySlots.size(); ++i) keyAt(i).AddTo(hasher, fKeyTypes[i]);
  return hasher.Get();
}

template <typename TKeyAt>
TInstance* TInstanceTable::FindBy(const TKeyAt& keyAt, std::size_t hash) const {
  const auto found = fIndex.Find(hash, [&](std::size_t position) {
    const TInstance& instance = *fInstances[position];
    for (std::size_t i = 0; i < fKeySlots.size(); ++i) {
      if (!keyAt(i).Equals(instance.StoredAt(fKeySlots[i]), fKeyTypes[i])) return false;
    }
    return true;
  });
  return found ? fInstances[*found].get() : nullptr;
}

}  // namespace NVORNQDX20::NRepository
