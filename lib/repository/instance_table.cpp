// SPDX-License-Identifier: Apache-2.0
#include "instance_table.h"

#include <qdxcore/reference.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <functional>
#include <string>

#include "instance.h"

namespace NVORNQDX20::NRepository {
namespace {

constexpr std::size_t kLeastIndexSize = 16;

std::size_t Combined(std::size_t left, std::size_t right) {
  const std::size_t product = (left * 31 + right) * 0x9E3779B97F4A7C15U;
  return product ^
         (product >> 32);  // the index uses the low bits, but a product mixes the high ones
}

template <typename T>
std::size_t HashOf(const T& value) {
  return std::hash<T>()(value);
}

/// Equal points in time have different texts if their offsets differ, but the same distance to a
/// third point.
std::size_t HashOf(const TCIMDateTime& value) {
  const TCIMDateTime origin =
      value.IsInterval() ? TCIMDateTime(0, 0, 0, 0, 0) : TCIMDateTime(2000, 1, 1, 0, 0, 0, 0, 0);
  return Combined(value.IsInterval(), HashOf((value - origin).ToString()));
}

std::size_t HashOf(const TCIMValue& value);

std::size_t HashOf(const TCIMReference& value) {
  std::size_t hash = HashOf(value.GetClass().get());
  value.EnumerateKeyBindings([&](const std::pair<std::string, TCIMValue>& binding) {
    hash = Combined(Combined(hash, HashOf(binding.first)), HashOf(binding.second));
    return true;
  });
  return hash;
}

/// Values that compare equal have equal hashes.
std::size_t HashOf(const TCIMValue& value) {
  return NModel::VisitScalar(value, [](const auto& native) { return HashOf(native); });
}

std::size_t HashOf(const std::vector<const TCIMValue*>& keys) {
  std::size_t hash = 0;
  for (const TCIMValue* key : keys) hash = Combined(hash, HashOf(*key));
  return hash;
}

}  // namespace

bool TInstanceTable::Add(const boost::shared_ptr<TInstance>& instance) {
  if (fKeySlots.empty()) {
    fInstances.push_back(instance);
    return true;
  }
  if (fIndex.size() < 2 * (fInstances.size() + 1)) {
    Reindex(std::max(kLeastIndexSize, 2 * fIndex.size()));
  }
  const TKeys keys = KeysOf(*instance);
  const std::size_t hash = HashOf(keys);
  TEntry& entry = fIndex[Probe(keys, hash)];
  if (entry.fInstance != nullptr) return false;
  fInstances.push_back(instance);
  entry = {hash, instance.get()};
  return true;
}

TInstance* TInstanceTable::Find(const std::vector<TCIMValue>& keys) const {
  if (fIndex.empty()) return nullptr;
  TKeys pointers;
  pointers.reserve(keys.size());
  for (const TCIMValue& key : keys) {
    if (key.IsNull()) return nullptr;
    pointers.push_back(&key);
  }
  return fIndex[Probe(pointers, HashOf(pointers))].fInstance;
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

std::size_t TInstanceTable::Probe(const TKeys& keys, std::size_t hash) const {
  const std::size_t mask = fIndex.size() - 1;
  std::size_t at = hash & mask;
  for (; fIndex[at].fInstance != nullptr; at = (at + 1) & mask) {
    if (fIndex[at].fHash == hash && HasKeys(*fIndex[at].fInstance, keys)) break;
  }
  return at;
}

void TInstanceTable::Reindex(std::size_t size) {
  std::vector<TEntry> index(size);
  for (const TEntry& entry : fIndex) {
    if (entry.fInstance == nullptr) continue;
    std::size_t at = entry.fHash & (size - 1);
    while (index[at].fInstance != nullptr) at = (at + 1) & (size - 1);
    index[at] = entry;
  }
  fIndex.swap(index);
}

}  // namespace NVORNQDX20::NRepository
