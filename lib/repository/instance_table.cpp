// SPDX-License-Identifier: Apache-2.0
#include "instance_table.h"

#include <qdxmodel/hash.h>

#include "ownership.h"
#include "property.h"

namespace NVORNQDX20::NRepository {
namespace {

using TType = TStoredValue::TType;

/// Returns the hash of keys, of which the n-th is keyAt(n), of type typeAt(n).
template <typename TKeyAt, typename TTypeAt>
std::size_t HashOf(std::size_t count, const TKeyAt& keyAt, const TTypeAt& typeAt) {
  NModel::THasher hasher(NModel::ProcessHashKey());
  for (std::size_t i = 0; i < count; ++i) keyAt(i).AddTo(hasher, typeAt(i));
  return hasher.Get();
}

}  // namespace

bool TInstanceTable::Add(TInstance& instance) {
  if (!fKeySlots.empty()) {
    const auto keyAt = [&](std::size_t i) -> const TStoredValue& {
      return instance.StoredAt(fKeySlots[i]);
    };
    const std::size_t hash = HashOf(fKeySlots.size(), keyAt, [&](std::size_t i) -> TType {
      return instance.DeclAt(fKeySlots[i]).GetType();
    });
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
  const TInstance& any = *fInstances.front();
  const std::size_t hash = HashOf(fKeySlots.size(), keyAt, [&](std::size_t i) -> TType {
    return any.DeclAt(fKeySlots[i]).GetType();
  });
  return FindBy(keyAt, hash);
}

template <typename TKeyAt>
TInstance* TInstanceTable::FindBy(const TKeyAt& keyAt, std::size_t hash) const {
  const auto found = fIndex.Find(hash, [&](std::size_t position) {
    const TInstance& instance = *fInstances[position];
    for (std::size_t i = 0; i < fKeySlots.size(); ++i) {
      const std::size_t slot = fKeySlots[i];
      const TType type = instance.DeclAt(slot).GetType();
      if (!keyAt(i).Equals(instance.StoredAt(slot), type)) return false;
    }
    return true;
  });
  return found ? fInstances[*found].get() : nullptr;
}

}  // namespace NVORNQDX20::NRepository
