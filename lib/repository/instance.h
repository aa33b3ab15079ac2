// SPDX-License-Identifier: Apache-2.0
/// An instance: one value for each slot of its class.
#ifndef LIB_REPOSITORY_INSTANCE_H_
#define LIB_REPOSITORY_INSTANCE_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <string>
#include <vector>

#include <boost/smart_ptr/enable_shared_from_this.hpp>

namespace NVORNQDX20::NRepository {

class TClass;
class TNamespace;
class TPropertyDecl;

class TInstance final : public ICIMInstance, public boost::enable_shared_from_this<TInstance> {
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

  /// REQUIRES: the keys have values.
  std::string Description() const;
  TNamespace& GetNamespace() const;
  TPropertyDecl& DeclAt(std::size_t slot) const;
  /// In the stored form, see values.h.
  const TCIMValue& ValueAt(std::size_t slot) const;
  boost::shared_ptr<TInstance> Handle() const;

 private:
  boost::shared_ptr<ICIMProperty> MakeProperty(std::size_t slot) const;

  TClass& fClass;
  std::vector<TCIMValue> fValues;  // without a type where no value was set
  bool fIsCommitted = false;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_INSTANCE_H_
