// SPDX-License-Identifier: Apache-2.0
#include "namespace.h"

#include <qdxcore/status.h>
#include <qdxrepository/repository.h>

#include <boost/smart_ptr/make_shared.hpp>

#include "ownership.h"
#include "values.h"

namespace NVORNQDX20 {
namespace NRepository {

const std::string& TNamespace::GetName(TOptionsMap) const { return fName; }

boost::shared_ptr<ICIMClass> TNamespace::CreateClass(const std::string& name,
                                                     boost::shared_ptr<ICIMClass> superclass,
                                                     TOptionsMap) {
  TClass* const own = superclass ? fClasses.Find(superclass->GetName({})) : nullptr;
  if (own != superclass.get()) throw TQDXException(kQDXStatusInvalidClass);
  return boost::make_shared<TClass>(*this, name, own)->Handle();
}

boost::shared_ptr<ICIMClass> TNamespace::GetClass(const std::string& name, TOptionsMap) const {
  TClass* const found = fClasses.Find(name);
  if (found == nullptr) throw TQDXException(kQDXStatusNotFound);
  return found->Handle();
}

void TNamespace::EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                                  TOptionsMap) const {
  fClasses.ForEach([&](TClass& cimClass) {
    return cimClass.Superclass() != nullptr || callback(cimClass.Handle());
  });
}

boost::shared_ptr<ICIMQualifierDecl> TNamespace::CreateQualifierDecl(const std::string& name,
                                                                     const TCIMValue& defaultValue,
                                                                     std::uint32_t scope,
                                                                     std::uint32_t flavor,
                                                                     TOptionsMap) {
  RequireDeclarable(defaultValue.GetType());
  if (HoldsReferences(defaultValue.GetType())) throw TQDXException(kQDXStatusInvalidProperty);
  return HoldWithNamespace(
      Handle(), boost::make_shared<TQualifierDecl>(*this, name, defaultValue, scope, flavor));
}

boost::shared_ptr<ICIMQualifierDecl> TNamespace::GetQualifierDecl(const std::string& name,
                                                                  TOptionsMap) const {
  TQualifierDecl* const found = FindQualifierDecl(name);
  if (found == nullptr) throw TQDXException(kQDXStatusNotFound);
  return HandleOf(*found);
}

void TNamespace::EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                                         TOptionsMap) const {
  fQualifierDecls.ForEach([&](TQualifierDecl& decl) { return callback(HandleOf(decl)); });
}

void TNamespace::Add(const boost::shared_ptr<TClass>& cimClass) {
  fClasses.Add(*cimClass);
  fOwnedClasses.push_back(cimClass);
  if (cimClass->Superclass() != nullptr) cimClass->Superclass()->AddSubclass(*cimClass);
}

void TNamespace::Add(const boost::shared_ptr<TQualifierDecl>& decl) {
  if (FindQualifierDecl(decl->Name()) == decl.get()) {
    throw TQDXException(kQDXStatusInvalidOpSequence);
  }
  fQualifierDecls.Add(*decl);
  fOwnedDecls.push_back(decl);
}

boost::shared_ptr<ICIMQualifierDecl> TNamespace::HandleOf(TQualifierDecl& decl) const {
  return boost::shared_ptr<ICIMQualifierDecl>(shared_from_this(), &decl);
}

}  // namespace NRepository

boost::shared_ptr<ICIMNamespace> MakeRepositoryNamespace(const std::string& name) {
  return boost::make_shared<NRepository::TNamespace>(name);
}

}  // namespace NVORNQDX20
