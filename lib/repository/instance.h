// SPDX-License-Identifier: Apache-2.0
/// An instance: one value for each slot of its class.
#ifndef LIB_REPOSITORY_INSTANCE_H_
#define LIB_REPOSITORY_INSTANCE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/values.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "stored_value.h"

namespace NVORNQDX20::NRepository {

class TClass;
class TNamespace;
class TPropertyDecl;

/// One piece of memory with its values: a namespace can have a million instances. A committed
/// instance belongs to its class; before that, its handles share it.
class TInstance final : public ICIMInstance, public IPlainReferencesOfInstance {
 public:
  /// REQUIRES: the class is committed.
  static std::unique_ptr<TInstance> Make(TClass& cimClass);
  ~TInstance() override;
  TInstance(const TInstance&) = delete;
  TInstance& operator=(const TInstance&) = delete;
  static void operator delete(void* memory) { ::operator delete(memory); }

  void Commit(TOptionsMap options) override;
  boost::shared_ptr<ICIMClass> GetClass(TOptionsMap options) const override;
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                              TOptionsMap options) const override;
  void SetPropertyValue(const std::string& name, const TCIMValue& value,
                        TOptionsMap options) override;
  void EnumerateProperties(const TEnumerationCallback<ICIMProperty>& callback,
                           TOptionsMap options) const override;
  void ReadValue(std::size_t slot, const TValueCallback& callback) const override;
  bool FindPlainValue(std::size_t slot, TPlainValue& found) const override;
  bool FindPlainReference(std::size_t slot, TPlainReference& found) const override;

  /// Like Commit(), but returns false if an instance with the same keys exists. Otherwise the class
  /// owns the instance from now on.
  [[nodiscard]] bool CommitIfNew();
  bool IsCommitted() const { return fIsCommitted; }
  /// REQUIRES: the keys have values.
  std::string Description() const;
  TClass& GetOwner() const { return fClass; }
  TNamespace& GetNamespace() const;
  TPropertyDecl& DeclAt(std::size_t slot) const;
  /// REQUIRES: the property holds no references.
  const TCIMValue& ValueAt(std::size_t slot) const;
  TCIMValue BoundValueAt(std::size_t slot) const;
  /// What is stored; not set if the instance has the value of its class.
  const TStoredValue& StoredAt(std::size_t slot) const { return Values()[slot]; }
  /// Stores a value of the declared type: `set` sets it in the TStoredValue that it is called with,
  /// and changes nothing if it throws.
  template <typename TSet>
  void Store(std::size_t slot, const TSet& set) {
    TStoredValue& stored = Values()[slot];
    if (!stored.IsSet()) return set(stored);
    TStoredValue value;
    set(value);
    if (stored.FindRead() == nullptr) {
      stored = std::move(value);
    } else {
      SetRead(slot, value);
    }
  }
  /// The first handle of an instance that is not committed takes it over.
  boost::shared_ptr<TInstance> Handle() const;

 private:
  struct TRoom {
    std::size_t fSlots;
  };
  class THold;
  class TReadProperty;

  explicit TInstance(TClass& cimClass);
  static void* operator new(std::size_t size, TRoom room);
  static void operator delete(void* memory, TRoom) { ::operator delete(memory); }
  /// By slot. Reading the value itself changes how it is stored.
  TStoredValue* Values() const {
    return reinterpret_cast<TStoredValue*>(const_cast<TInstance*>(this) + 1);
  }
  /// REQUIRES: the value is set, and the property holds no references.
  TReadValue& Read(std::size_t slot) const;
  /// Sets a value that callers read.
  void SetRead(std::size_t slot, const TStoredValue& value);
  boost::shared_ptr<ICIMProperty> MakeProperty(std::size_t slot) const;

  TClass& fClass;
  mutable std::uint32_t fHolds = 0;
  bool fIsCommitted = false;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_INSTANCE_H_
