// SPDX-License-Identifier: Apache-2.0
#include "instance_table.h"

#include <qdxcore/reference.h>
#include <qdxmodel/hash.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <functional>
#include <string>

#include "instance.h"

namespace NVORNQDX20::NRepository {
namespace {

using NModel::THasher;

template <typename T>
void AddTo(THasher& hasher, const T& value) {
  hasher.Add(std::hash<T>()(value));
}

void AddTo(THasher& hasher, const std::string& value) { hasher.Add(value); }

/// Equal points in time have different texts if their offsets differ, but the same distance to a
/// third point.
void AddTo(THasher& hasher, const TCIMDateTime& value) {
  const TCIMDateTime origin =
      value.IsInterval() ? TCIMDateTime(0, 0, 0, 0, 0) : TCIMDateTime(2000, 1, 1, 0, 0, 0, 0, 0);
  hasher.Add(value.IsInterval() ? 1 : 0);
  hasher.Add((value - origin).ToString());
}

void AddTo(THasher& hasher, const TCIMValue& value);

void AddTo(THasher& hasher, const TCIMReference& value) {
  AddTo(hasher, value.GetClass().get());
  value.EnumerateKeyBindings([&](const std::pair<std::string, TCIMValue>& binding) {
    hasher.Add(binding.first);
    AddTo(hasher, binding.second);
    return true;
  });
}

/// Values that compare equal have equal hashes.
void AddTo(THasher& hasher, const TCIMValue& value) {
  NModel::VisitScalar(value, [&](const auto& native) { AddTo(hasher, native); });
}

std::size_t HashOf(const std::vector<const TCIMValue*>& keys) {
  THasher hasher(NModel::ProcessHashKey());
  for (const TCIMValue* key : keys) AddTo(hasher, *key);
  return hasher.Get();
}

}  // namespace

bool TInstanceTable::Add(const boost::shared_ptr<TInstance>& instance) {
  if (fKeySlots.empty()) {
    fInstances.push_back(instance);
    return true;
  }
  const TKeys keys = KeysOf(*instance);
  const std::size_t hash = HashOf(keys);
  if (Find(keys, hash) != nullptr) return false;
  fIndex.Reserve();
  fInstances.push_back(instance);
  fIndex.Add(hash, fInstances.size() - 1);
  return true;
}

TInstance* TInstanceTable::Find(const std::vector<TCIMValue>& keys) const {
  if (fKeySlots.empty()) return nullptr;
  TKeys pointers;
  pointers.reserve(keys.size());
  for (const TCIMValue& key : keys) {
    if (key.IsNull()) return nullptr;
    pointers.push_back(&key);
  }
  return Find(pointers, HashOf(pointers));
}

TInstanceTable::TKeys TInstanceTable::KeysOf(const TInstance& instance) const {
  TKeys keys;
  keys.reserve(fKeySlots.size());
  for (const std::size_t slot : fKeySlots) keys.push_back(&instance.ValueAt(slot));
  return keys;
}

bool TInstanceTable::HasKeys(const TInstance& instance, const TKeys& keys) const {
  return std::equal(
      keys.begin(), keys.end(), fKeySlots.begin(), fKeySlots.end(),
      [&](const TCIMValue* key, std::size_t slot) { return *key == instance.ValueAt(slot); });
}

TInstance* TInstanceTable::Find(const TKeys& keys, std::size_t hash) const {
  const auto found =
      fIndex.Find(hash, [&](std::size_t position) { return HasKeys(*fInstances[position], keys); });
  return found ? fInstances[*found].get() : nullptr;
}

}  // namespace NVORNQDX20::NRepository
