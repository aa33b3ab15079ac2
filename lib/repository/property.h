// SPDX-License-Identifier: Apache-2.0
/// Property declarations, and the properties that callers get.
#ifndef LIB_REPOSITORY_PROPERTY_H_
#define LIB_REPOSITORY_PROPERTY_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <string>
#include <utility>

#include <boost/weak_ptr.hpp>

#include "qualifier.h"
#include "values.h"

namespace NVORNQDX20::NRepository {

class TClass;

class TPropertyDecl final : public ICIMPropertyDecl, public IDescribed {
 public:
  /// `overridden` is the inherited declaration of that name, or null.
  TPropertyDecl(TClass& owner, const std::string& name, const TCIMValue& defaultValue,
                const TPropertyDecl* overridden);

  boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                const TCIMValue& value) override;
  boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string& name) const override;
  void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const override;
  void Commit() override;
  const std::string& GetName() const override { return fName; }
  TCIMValue::TCIMType GetType() const override { return fDefaultValue.GetType(); }
  const TCIMValue& GetDefaultValue() const override;

  std::string Description() const override;
  /// In the stored form, see values.h.
  const TCIMValue& GetStoredDefault() const { return fDefaultValue; }
  const TClass& GetOwner() const { return fQualifiers.GetOwner(); }
  bool IsKey() const { return fQualifiers.IsTrue("Key"); }
  boost::shared_ptr<TPropertyDecl> Handle();
  void SetReferenceDefault(const TCIMValue& value);

 private:
  void RequireReferencedClass(const TCIMValue& value) const;
  boost::shared_ptr<TPropertyDecl> HandleWithDefault();

  /// Shared by the holders of a declaration of type reference: its bound default value, which the
  /// declaration itself must not own.
  struct THold {
    boost::shared_ptr<TClass> fOwner;
    TCIMValue fDefaultValue;
  };

  const std::string fName;
  TCIMValue fDefaultValue;
  TQualifierSet fQualifiers;
  boost::weak_ptr<const THold> fHold;
};

/// The property in a slot of an instance, or a static property of a class. Owns the source.
template <typename TSource>
class TProperty final : public ICIMProperty {
 public:
  TProperty(boost::shared_ptr<const TSource> source, std::size_t slot)
      : fSource(std::move(source)), fSlot(slot) {}

  const TCIMValue& GetValue() const override {
    if (!HoldsReferences(fSource->DeclAt(fSlot).GetType())) return fSource->ValueAt(fSlot);
    Replace(fBound, fSource->BoundValueAt(fSlot));
    return fBound;
  }
  boost::shared_ptr<const ICIMPropertyDecl> GetDecl() const override {
    return fSource->DeclAt(fSlot).Handle();
  }

 private:
  const boost::shared_ptr<const TSource> fSource;
  const std::size_t fSlot;
  mutable TCIMValue fBound;  // only for references
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_PROPERTY_H_
