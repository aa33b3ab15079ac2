// SPDX-License-Identifier: Apache-2.0
#include "namespace.h"

#include <qdxcore/status.h>
#include <qdxrepository/repository.h>

#include <typeinfo>

#include <boost/smart_ptr/make_shared.hpp>

#include "instance.h"
#include "ownership.h"
#include "values.h"

namespace NVORNQDX20 {
namespace NRepository {

const std::string& TNamespace::GetName(TOptionsMap) const { return fName; }

boost::shared_ptr<ICIMClass> TNamespace::CreateClass(const std::string& name,
                                                     boost::shared_ptr<ICIMClass> superclass,
                                                     TOptionsMap) {
  TClass* const own = superclass ? fClasses.Find(superclass->GetName({})) : nullptr;
  if (own != superclass.get()) {
    throw TExplainedException(kQDXStatusInvalidClass,
                              "class " + NModel::Quoted(name) + " cannot be derived from " +
                                  superclass->GetName({}) + ", which is no committed class of " +
                                  Description());
  }
  return boost::make_shared<TClass>(*this, name, own)->Handle();
}

boost::shared_ptr<ICIMClass> TNamespace::GetClass(const std::string& name, TOptionsMap) const {
  TClass* const found = fClasses.Find(name);
  if (found == nullptr) throw NotFound(*this, "class", name);
  return found->Handle();
}

void TNamespace::EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                                  TOptionsMap) const {
  fClasses.ForEach([&](TClass& cimClass) {
    return cimClass.GetSuperclass() != nullptr || callback(cimClass.Handle());
  });
}

boost::shared_ptr<ICIMQualifierDecl> TNamespace::CreateQualifierDecl(const std::string& name,
                                                                     const TCIMValue& defaultValue,
                                                                     std::uint32_t scope,
                                                                     std::uint32_t flavor,
                                                                     TOptionsMap) {
  const TCIMValue::TCIMType type = defaultValue.GetType();
  if (!IsDeclarable(type) || HoldsReferences(type)) {
    throw Undeclarable("qualifier declaration " + name, type);
  }
  return HoldWithNamespace(
      Handle(), boost::make_shared<TQualifierDecl>(*this, name, defaultValue, scope, flavor));
}

boost::shared_ptr<ICIMQualifierDecl> TNamespace::GetQualifierDecl(const std::string& name,
                                                                  TOptionsMap) const {
  TQualifierDecl* const found = FindQualifierDecl(name);
  if (found == nullptr) throw NotFound(*this, "declaration of qualifier", name);
  return HandleOf(*found);
}

void TNamespace::EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                                         TOptionsMap) const {
  fQualifierDecls.ForEach([&](TQualifierDecl& decl) { return callback(HandleOf(decl)); });
}

boost::shared_ptr<ICIMInstance> TNamespace::CopyInstance(const ICIMInstance& instance) {
  // The address, since another library can have its own repository of the same name.
  if (&typeid(instance) != &typeid(TInstance)) return nullptr;
  const auto& source = static_cast<const TInstance&>(instance);
  TClass* const cimClass = FindClass(source.GetOwner().GetName());
  return cimClass == nullptr ? nullptr : cimClass->CopyInstance(source);
}

void TNamespace::Add(const boost::shared_ptr<TClass>& cimClass) {
  TClass* const superclass = cimClass->GetSuperclass();
  // Memory that runs out later would leave a class that nothing owns.
  ReserveOne(fOwnedClasses);
  if (superclass != nullptr) superclass->ReserveSubclass();
  if (!fClasses.Add(*cimClass)) throw Taken(cimClass->Description());
  fOwnedClasses.push_back(cimClass);
  if (superclass != nullptr) superclass->AddSubclass(*cimClass);
}

void TNamespace::Add(const boost::shared_ptr<TQualifierDecl>& decl) {
  if (FindQualifierDecl(decl->GetName()) == decl.get()) throw CommittedAlready(decl->Description());
  ReserveOne(fOwnedDecls);
  if (!fQualifierDecls.Add(*decl)) throw Taken(decl->Description());
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
