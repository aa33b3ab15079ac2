// SPDX-License-Identifier: Apache-2.0
#include "property.h"

#include <qdxcore/status.h>

#include <utility>

#include <boost/smart_ptr/make_shared.hpp>

#include "class.h"
#include "names.h"

namespace NVORNQDX20::NRepository {

TPropertyDecl::TPropertyDecl(TClass& owner, const std::string& name, const TCIMValue& defaultValue,
                             const TPropertyDecl* overridden)
    : fName(name),
      fDefaultValue(WeakCopy(defaultValue, owner)),
      fQualifiers(*this, owner, overridden == nullptr ? nullptr : &overridden->fQualifiers) {
  RequireCIMName(name);
  RequireReferencedClass(fDefaultValue);
}

void TPropertyDecl::RequireReferencedClass(const TCIMValue& value) const {
  if (value.IsReference() && !value.GetReferencedClass()) {
    throw TExplainedException(kQDXStatusInvalidReference,
                              Description() + " does not say which class it refers to");
  }
}

void TPropertyDecl::SetReferenceDefault(const TCIMValue& value) {
  RequireReferencedClass(value);
  Replace(fDefaultValue, WeakCopy(value, GetOwner()));
  fHold.reset();
}

boost::shared_ptr<ICIMQualifier> TPropertyDecl::AddQualifier(
    boost::shared_ptr<ICIMQualifierDecl> decl, const TCIMValue& value) {
  return fQualifiers.Add(decl, value);
}

boost::shared_ptr<ICIMQualifier> TPropertyDecl::GetQualifier(const std::string& name) const {
  TQualifier* const own = fQualifiers.Find(name);
  TQualifier* const found = own != nullptr ? own : fQualifiers.FindInherited(name);
  if (found == nullptr) throw NotFound(*this, "qualifier", name);
  return fQualifiers.Handle(found);
}

void TPropertyDecl::EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const {
  fQualifiers.Enumerate(callback);
}

void TPropertyDecl::Commit() {
  fQualifiers.RequireOpen();
  fQualifiers.GetOwner().AddProperty(*this);
  fQualifiers.Close();
}

std::string TPropertyDecl::Description() const {
  return "property " + fName + " of " + GetOwner().Description();
}

const TCIMValue& TPropertyDecl::GetDefaultValue() const {
  const boost::shared_ptr<const THold> hold = fHold.lock();
  return hold ? hold->fDefaultValue : fDefaultValue;
}

boost::shared_ptr<TPropertyDecl> TPropertyDecl::Handle() {
  if (HoldsReferences(GetType())) return HandleWithDefault();
  return boost::shared_ptr<TPropertyDecl>(fQualifiers.GetOwner().Handle(), this);
}

boost::shared_ptr<TPropertyDecl> TPropertyDecl::HandleWithDefault() {
  const boost::shared_ptr<TClass> owner = fQualifiers.GetOwner().Handle();
  boost::shared_ptr<const THold> hold = fHold.lock();
  if (!hold) {
    const THold bound{owner, BoundCopy(fDefaultValue, owner->GetNamespace())};
    hold = boost::make_shared<const THold>(bound);
    fHold = hold;
  }
  return boost::shared_ptr<TPropertyDecl>(hold, this);
}

}  // namespace NVORNQDX20::NRepository
