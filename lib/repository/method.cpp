// SPDX-License-Identifier: Apache-2.0
#include "method.h"

#include <qdxcore/status.h>

#include "class.h"
#include "values.h"

namespace NVORNQDX20::NRepository {

TParameterDecl::TParameterDecl(TMethodDecl& method, const std::string& name,
                               TCIMValue::TCIMType type, const TParameterDecl* overridden)
    : fMethod(method),
      fName(name),
      fType(type),
      fQualifiers(*this, method.GetOwner(),
                  overridden == nullptr ? nullptr : &overridden->fQualifiers) {
  RequireCIMName(name);
  if (!IsDeclarable(type)) throw Undeclarable(Description(), type);
}

boost::shared_ptr<ICIMQualifier> TParameterDecl::AddQualifier(
    boost::shared_ptr<ICIMQualifierDecl> decl, const TCIMValue& value) {
  return fQualifiers.Add(decl, value);
}

void TParameterDecl::Commit() {
  fQualifiers.RequireOpen();
  fMethod.AddParameter(*this);
  fQualifiers.Close();
}

void TParameterDecl::SetReferencedClassName(const std::string& name) {
  fQualifiers.RequireOpen();
  if (!HoldsReferences(fType)) {
    throw TExplainedException(kQDXStatusTypeMismatch, Description() + " is no reference");
  }
  if (!name.empty()) RequireCIMName(name);
  fReferencedClass = name;
}

std::string TParameterDecl::Description() const {
  return "parameter " + fName + " of " + fMethod.Description();
}

void TParameterDecl::EnumerateQualifiers(
    const TEnumerationCallback<ICIMQualifier>& callback) const {
  fQualifiers.Enumerate(callback);
}

TMethodDecl::TMethodDecl(TClass& owner, const std::string& name, TCIMValue::TCIMType returnType,
                         const TMethodDecl* overridden)
    : fName(name),
      fReturnType(returnType),
      fOverridden(overridden),
      fQualifiers(*this, owner, overridden == nullptr ? nullptr : &overridden->fQualifiers) {
  RequireCIMName(name);
  if (returnType == TCIMValue::TCIMType::kCIMTypeNone) return;  // no return value
  const bool isArray = (returnType & TCIMValue::TCIMType::kCIMTypeArray) != 0;
  if (isArray || !IsDeclarable(returnType)) throw Undeclarable(Description(), returnType);
}

std::string TMethodDecl::Description() const {
  return "method " + fName + " of " + GetOwner().Description();
}

void TMethodDecl::AddParameter(TParameterDecl& parameter) {
  if (!fCommitted.Add(parameter)) throw Taken(parameter.Description());
}

boost::shared_ptr<ICIMQualifier> TMethodDecl::AddQualifier(
    boost::shared_ptr<ICIMQualifierDecl> decl, const TCIMValue& value) {
  return fQualifiers.Add(decl, value);
}

void TMethodDecl::EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const {
  fQualifiers.Enumerate(callback);
}

boost::shared_ptr<ICIMParameterDecl> TMethodDecl::CreateParameterDecl(const std::string& name,
                                                                      TCIMValue::TCIMType type) {
  fQualifiers.RequireOpen();
  const TParameterDecl* const overridden =
      fOverridden == nullptr ? nullptr : fOverridden->fCommitted.Find(name);
  fParameters.push_back(std::make_unique<TParameterDecl>(*this, name, type, overridden));
  return boost::shared_ptr<ICIMParameterDecl>(GetOwner().Handle(), fParameters.back().get());
}

void TMethodDecl::EnumerateParameterDecls(
    const TEnumerationCallback<ICIMParameterDecl>& callback) const {
  fCommitted.ForEach([&](TParameterDecl& parameter) {
    return callback(boost::shared_ptr<ICIMParameterDecl>(GetOwner().Handle(), &parameter));
  });
}

}  // namespace NVORNQDX20::NRepository
