// SPDX-License-Identifier: Apache-2.0
/// An instance: one value for each slot of its class.
#ifndef LIB_REPOSITORY_INSTANCE_H_
#define LIB_REPOSITORY_INSTANCE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/values.h>

#include <cstddef>
#include <memory>
#include <string>

#include <boost/smart_ptr/enable_shared_from_this.hpp>

#include "stored_value.h"

namespace NVORNQDX20::NRepository {

class TClass;
class TNamespace;
class TPropertyDecl;

class TInstance final : public ICIMInstance,
                        public IValuesOfInstance,
                        public boost::enable_shared_from_this<TInstance> {
 public:
  /// REQUIRES: the class is committed.
  explicit TInstance(TClass& cimClass);

  void Commit(TOptionsMap options) override;
  boost::shared_ptr<ICIMClass> GetClass(TOptionsMap options) const override;
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                              TOptionsMap options) const override;
  void SetPropertyValue(const std::string& name, const TCIMValue& value,
                        TOptionsMap options) override;
  void EnumerateProperties(const TEnumerationCallback<ICIMProperty>& callback,
                           TOptionsMap options) const override;
  void ReadValue(std::size_t slot, const TValueCallback& callback) const override;

  /// Like Commit(), but returns false if an instance with the same keys exists.
  [[nodiscard]] bool CommitIfNew();
  /// REQUIRES: the keys have values.
  std::string Description() const;
  TNamespace& GetNamespace() const;
  TPropertyDecl& DeclAt(std::size_t slot) const;
  /// REQUIRES: the property holds no references.
  const TCIMValue& ValueAt(std::size_t slot) const;
  TCIMValue BoundValueAt(std::size_t slot) const;
  /// What is stored; not set if the instance has the value of its class.
  const TStoredValue& StoredAt(std::size_t slot) const { return fValues[slot]; }
  /// Sets a value of the declared type.
  void Store(std::size_t slot, TStoredValue&& value) { fValues[slot] = std::move(value); }
  boost::shared_ptr<TInstance> Handle() const;

 private:
  boost::shared_ptr<ICIMProperty> MakeProperty(std::size_t slot) const;

  TClass& fClass;
  const std::unique_ptr<TStoredValue[]> fValues;  // by slot
  bool fIsCommitted = false;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_INSTANCE_H_
