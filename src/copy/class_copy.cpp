// SPDX-License-Identifier: Apache-2.0
// Copies classes, and what they declare, to another namespace.
#include <qdxcore/copy.h>
#include <qdxcore/reference_parameter.h>
#include <qdxcore/status.h>

#include <cstdint>
#include <string>
#include <vector>

#include "target.h"

using namespace NVORNQDX20;

// Providers can observe the order of the calls, so each call is a statement of its own: the order
// in which arguments are evaluated is not specified.

namespace {

boost::shared_ptr<ICIMClass> TargetSuperclass(const ICIMClass& cimClass,
                                              const boost::shared_ptr<ICIMNamespace>& target) {
  if (cimClass.IsRootClass({})) return nullptr;
  return NCopy::TargetClass(cimClass.GetSuperclass({}), target);
}

/// Returns whether the class has a property of this name, its own or an inherited one.
bool HasProperty(const ICIMClass& cimClass, const std::string& name) {
  try {
    cimClass.GetPropertyDecl(name, {});
    return true;
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() == kQDXStatusNotFound) return false;
    // A new exception with the status alone instead of a rethrow, on purpose: a provider may have
    // thrown a derived class. Pinned by Copy.EndsWhereANamespaceFails.
    throw TQDXException(e.GetStatusCode());
  }
}

bool Overrides(const ICIMPropertyDecl& decl) {
  try {
    decl.GetQualifier("OVERRIDE");
    return true;
  } catch (const TQDXException&) {
    return false;
  }
}

void CopyInstances(const ICIMClass& cimClass, const boost::shared_ptr<ICIMNamespace>& target) {
  std::vector<boost::shared_ptr<ICIMInstance>> instances;
  cimClass.EnumerateInstances(TAddToVectorCallback<ICIMInstance>(instances), false, {});
  for (const auto& instance : instances) TCIMCopy::CopyInstance(instance, target);
}

}  // namespace

void TCIMCopy::CopyClasses(boost::shared_ptr<ICIMNamespace> source,
                           boost::shared_ptr<ICIMNamespace> target) {
  source->EnumerateQualifierDecls(TCopyQualifierDecls{target}, {});
  for (const bool associations : {false, true}) {
    source->EnumerateClasses(TCopyClassTree{target, associations}, {});
  }
}

void TCIMCopy::CopyClass(boost::shared_ptr<ICIMClass> cimClass,
                         boost::shared_ptr<ICIMNamespace> target) {
  const boost::shared_ptr<ICIMClass> superclass = TargetSuperclass(*cimClass, target);
  const boost::shared_ptr<ICIMClass> copy =
      target->CreateClass(cimClass->GetName({}), superclass, {});
  cimClass->EnumerateQualifiers(TCopyQualifier{copy, target});
  cimClass->EnumeratePropertyDecls(TCopyPropertyDecl{copy, target}, {});
  cimClass->EnumerateStaticProperties(TCopyStaticProperty{copy, target}, {});
  cimClass->EnumerateMethodDecls(TCopyMethodDecl{copy, target}, {});
  copy->Commit({});
}

bool TCopyQualifierDecls::operator()(boost::shared_ptr<ICIMQualifierDecl> decl) const {
  const std::uint32_t flavor = decl->GetFlavor();
  const std::uint32_t scope = decl->GetScope();
  const TCIMValue& defaultValue = decl->GetDefaultValue();
  fTarget->CreateQualifierDecl(decl->GetName(), defaultValue, scope, flavor, {})->Commit();
  return true;
}

bool TCopyClassTree::operator()(boost::shared_ptr<ICIMClass> root) const {
  const TCopyClass copyClass{fTarget, fAssociations};
  copyClass(root);
  root->EnumerateSubclasses(copyClass, true, {});
  return true;
}

bool TCopyClass::operator()(boost::shared_ptr<ICIMClass> cimClass) const {
  if (cimClass->IsAssociation({}) != fAssociations) return true;
  TCIMCopy::CopyClass(cimClass, fTarget);
  // A plug-in supplies the instances of such a class: only its declaration is copied.
  const bool hasPlugin = cimClass->GetQualifier("PLUGINNAME") != nullptr;
  const bool isAbstract = cimClass->IsAbstract({});
  if (!hasPlugin && !isAbstract) CopyInstances(*cimClass, fTarget);
  return true;
}

bool TCopyQualifier::operator()(boost::shared_ptr<ICIMQualifier> qualifier) const {
  const boost::shared_ptr<const ICIMQualifierDecl> decl = qualifier->GetDecl();
  const boost::shared_ptr<ICIMQualifierDecl> targetDecl =
      NCopy::Required(fTarget->GetQualifierDecl(decl->GetName(), {}));
  const TCIMValue value = TCIMCopy::CopyValue(qualifier->GetValue(), fTarget);
  fTargetElement->AddQualifier(targetDecl, value)->Commit();
  return true;
}

bool TCopyPropertyDecl::operator()(boost::shared_ptr<ICIMPropertyDecl> decl) const {
  if (HasProperty(*fTargetClass, decl->GetName()) && !Overrides(*decl)) return true;
  const TCIMValue defaultValue = TCIMCopy::CopyValue(decl->GetDefaultValue(), fTarget);
  const boost::shared_ptr<ICIMPropertyDecl> copy =
      fTargetClass->CreatePropertyDecl(decl->GetName(), defaultValue, {});
  decl->EnumerateQualifiers(TCopyQualifier{copy, fTarget});
  copy->Commit();
  return true;
}

bool TCopyStaticProperty::operator()(boost::shared_ptr<ICIMProperty> property) const {
  const TCIMValue value = TCIMCopy::CopyValue(property->GetValue(), fTarget);
  fTargetClass->SetStaticPropertyValue(property->GetDecl()->GetName(), value, {});
  return true;
}

bool TCopyMethodDecl::operator()(boost::shared_ptr<ICIMMethodDecl> decl) const {
  const std::string& name = decl->GetName();
  const boost::shared_ptr<ICIMMethodDecl> copy =
      fTargetClass->CreateMethodDecl(name, decl->GetReturnType(), {});
  decl->EnumerateParameterDecls(TCopyParameterDecl{copy, fTarget});
  decl->EnumerateQualifiers(TCopyQualifier{copy, fTarget});
  return true;
}

bool TCopyParameterDecl::operator()(boost::shared_ptr<ICIMParameterDecl> decl) const {
  const std::string& name = decl->GetName();
  const boost::shared_ptr<ICIMParameterDecl> copy =
      fTargetMethod->CreateParameterDecl(name, decl->GetType());
  const std::string referenced = GetReferencedClassName(*decl);
  if (!referenced.empty()) SetReferencedClassName(*copy, referenced);
  decl->EnumerateQualifiers(TCopyQualifier{copy, fTarget});
  copy->Commit();
  return true;
}
