// SPDX-License-Identifier: Apache-2.0
#include "qualifier.h"

#include <qdxcore/status.h>
#include <qdxrepository/repository.h>

#include "class.h"
#include "namespace.h"
#include "values.h"

namespace NVORNQDX20::NRepository {

TQualifierDecl::TQualifierDecl(TNamespace& ns, const std::string& name,
                               const TCIMValue& defaultValue, std::uint32_t scope,
                               std::uint32_t flavor)
    : fNamespace(ns), fName(name), fDefaultValue(defaultValue), fScope(scope), fFlavor(flavor) {
  RequireCIMName(name);
}

void TQualifierDecl::Commit() { fNamespace.Add(shared_from_this()); }

TQualifier::TQualifier(TQualifierSet& set, const TQualifierDecl& decl, const TCIMValue& value)
    : fSet(set), fDecl(decl), fValue(value) {
  RequireType(value.GetType(), decl.GetDefaultValue().GetType(), *this);
}

void TQualifier::Commit() { fSet.Commit(*this); }

std::string TQualifier::Description() const {
  return "qualifier " + GetName() + " of " + fSet.GetElement().Description();
}

boost::shared_ptr<const ICIMQualifierDecl> TQualifier::GetDecl() const {
  return {fSet.GetOwner().GetNamespace().Handle(), &fDecl};
}

boost::shared_ptr<ICIMQualifier> TQualifierSet::Add(
    const boost::shared_ptr<ICIMQualifierDecl>& decl, const TCIMValue& value) {
  RequireOpen();
  const TNamespace& ns = fOwner.GetNamespace();
  const TQualifierDecl* const own = decl ? ns.FindQualifierDecl(decl->GetName()) : nullptr;
  if (own == nullptr || own != decl.get()) {
    throw TExplainedException(kQDXStatusNotFound, "a qualifier of " + fElement.Description() +
                                                      ", " + (decl ? decl->GetName() : "null") +
                                                      ", is not one that is declared in " +
                                                      ns.Description());
  }
  fQualifiers.push_back(std::make_unique<TQualifier>(*this, *own, value));
  return Handle(fQualifiers.back().get());
}

void TQualifierSet::Commit(TQualifier& qualifier) {
  RequireOpen();
  if (Find(qualifier.GetName()) == &qualifier) throw CommittedAlready(qualifier.Description());
  const TQualifier* const inherited = FindInherited(qualifier.GetName());
  if (inherited != nullptr && !inherited->HasFlavor(kFlavorOverridable) &&
      inherited->GetValue() != qualifier.GetValue()) {
    throw TExplainedException(
        kQDXStatusNotOverridable,
        qualifier.Description() + " changes an inherited one that cannot be overridden");
  }
  if (!fCommitted.Add(qualifier)) throw Taken(qualifier.Description());
}

void TQualifierSet::RequireOpen() const {
  if (fIsClosed) throw CommittedAlready(fElement.Description());
  if (fOwner.IsCommitted()) throw CommittedAlready(fOwner.Description());
}

TQualifier* TQualifierSet::FindInherited(const std::string& name) const {
  for (const TQualifierSet* set = fOverridden; set != nullptr; set = set->fOverridden) {
    TQualifier* const found = set->Find(name);
    if (found != nullptr) return found->HasFlavor(kFlavorToSubclass) ? found : nullptr;
  }
  return nullptr;
}

bool TQualifierSet::IsTrue(const std::string& name) const {
  const TQualifier* const qualifier = Find(name);
  return qualifier != nullptr && qualifier->GetValue() == TCIMValue(true);
}

void TQualifierSet::Enumerate(const TEnumerationCallback<ICIMQualifier>& callback) const {
  fCommitted.ForEach([&](TQualifier& qualifier) { return callback(Handle(&qualifier)); });
}

boost::shared_ptr<ICIMQualifier> TQualifierSet::Handle(TQualifier* qualifier) const {
  if (qualifier == nullptr) return nullptr;
  return boost::shared_ptr<ICIMQualifier>(fOwner.Handle(), qualifier);
}

}  // namespace NVORNQDX20::NRepository
