// SPDX-License-Identifier: Apache-2.0
/// Property declarations, and properties as they are handed out.
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
  const std::string& Name() const { return fName; }
  /// As stored, see values.h.
  const TCIMValue& StoredDefault() const { return fDefaultValue; }
  const TClass& Owner() const { return fQualifiers.Owner(); }
  bool IsKey() const { return fQualifiers.IsTrue("Key"); }
  boost::shared_ptr<TPropertyDecl> Handle();

 private:
  /// What the holders of a declaration of references share: its default value, bound. The
  /// declaration itself must not own that value.
  struct THold {
    boost::shared_ptr<TClass> fOwner;
    TCIMValue fDefaultValue;
  };

  const std::string fName;
  const TCIMValue fDefaultValue;
  TQualifierSet fQualifiers;
  boost::weak_ptr<const THold> fHold;
};

/// The property of an instance, or the static one of a class, in a slot. The source is held.
template <typename TSource>
class TProperty final : public ICIMProperty {
 public:
  TProperty(boost::shared_ptr<const TSource> source, std::size_t slot)
      : fSource(std::move(source)), fSlot(slot) {}

  const TCIMValue& GetValue() const override {
    const TCIMValue& stored = fSource->ValueAt(fSlot);
    if (!HoldsReferences(stored.GetType())) return stored;
    Replace(fBound, BoundCopy(stored, fSource->Namespace()));
    return fBound;
  }
  boost::shared_ptr<const ICIMPropertyDecl> GetDecl() const override {
    return fSource->DeclAt(fSlot).Handle();
  }

 private:
  const boost::shared_ptr<const TSource> fSource;
  const std::size_t fSlot;
  mutable TCIMValue fBound;  // of references only
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_PROPERTY_H_
