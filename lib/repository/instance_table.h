// SPDX-License-Identifier: Apache-2.0
/// The instances of one class, found by their keys.
#ifndef LIB_REPOSITORY_INSTANCE_TABLE_H_
#define LIB_REPOSITORY_INSTANCE_TABLE_H_

#include <qdxcore/value.h>
#include <qdxmodel/hash.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "hash_index.h"
#include "instance.h"
#include "stored_value.h"

namespace NVORNQDX20::NRepository {

/// A key of the instance that a caller looks for: a text as the caller has it, which needs no copy,
/// anything else as it is stored.
class TWantedKey {
 public:
  /// The value, which is not null, must outlive this object. Throws like TStoredValue.
  void Set(const TCIMValue& value, const TClass& user) {
    fText = value.FindString();
    if (fText != nullptr) return;
    fStored = TStoredValue();
    fStored.Set(value, user);
  }

  void AddTo(NModel::THasher& hasher, TStoredValue::TType type) const {
    fText != nullptr ? hasher.Add(*fText) : fStored.AddTo(hasher, type);
  }
  bool Equals(const TStoredValue& stored, TStoredValue::TType type) const {
    return fText != nullptr ? stored.IsText(*fText) : fStored.Equals(stored, type);
  }

 private:
  const std::string* fText = nullptr;
  TStoredValue fStored;
};

class TInstanceTable {
 public:
  /// `types` are the declared types of the slots, in their order. REQUIRES: the table is empty.
  /// Without keys all instances differ, and Find() returns null.
  void SetKeySlots(std::vector<std::size_t> slots, std::vector<TStoredValue::TType> types) {
    fKeySlots = std::move(slots);
    fKeyTypes = std::move(types);
  }
  const std::vector<std::size_t>& GetKeySlots() const { return fKeySlots; }

  /// Takes the instance over; its keys must not change afterwards. Returns false and does nothing
  /// if an instance with the same keys exists.
  [[nodiscard]] bool Add(TInstance& instance);

  /// `keys` are as many as the key slots and in their order, of the declared types and not null.
  /// Returns null if there is no such instance.
  TInstance* Find(const TWantedKey* keys) const;

  /// Calls `visit` for the instances present at the call, until it returns false. Returns whether
  /// all were visited.
  template <typename TVisit>
  bool ForEach(TVisit&& visit) const {
    const std::size_t end = fInstances.size();
    for (std::size_t i = 0; i < end; ++i) {
      if (!visit(*fInstances[i])) return false;
    }
    return true;
  }

 private:
  /// Returns the hash of keys, of which the n-th is keyAt(n).
  template <typename TKeyAt>
  std::size_t HashOf(const TKeyAt& keyAt) const;
  /// Finds an instance whose key in the n-th key slot equals keyAt(n).
  template <typename TKeyAt>
  TInstance* FindBy(const TKeyAt& keyAt, std::size_t hash) const;

  std::vector<std::size_t> fKeySlots;
  std::vector<TStoredValue::TType> fKeyTypes;
  std::vector<std::unique_ptr<TInstance>> fInstances;
  THashIndex fIndex;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_INSTANCE_TABLE_H_
