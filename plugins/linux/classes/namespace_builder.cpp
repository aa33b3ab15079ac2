// SPDX-License-Identifier: Apache-2.0
#include "namespace_builder.h"

#include <qdxcore/logger.h>
#include <qdxrepository/repository.h>

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

const char* const kMissingClassName = "VORNSG_UnavailableValue";

/// Far more than a machine has, and far fewer than a file of the maximum size can list.
constexpr std::size_t kMaxInstances = 4096;

TClassSpec MissingClass() {
  return {kMissingClassName,
          "A value that this machine does not have, or does not tell, and why.",
          {{"ClassName", TType::kCIMTypeString, true, "The class of the instance that lacks it."},
           {"Instance", TType::kCIMTypeString, true,
            "The key of that instance; empty where the class has only one."},
           {"PropertyName", TType::kCIMTypeString, true,
            "The property that is null; empty where the class lacks instances."},
           {"Reason", TType::kCIMTypeString, false, "What stood in the way."}}};
}

}  // namespace

TNamespaceBuilder::TNamespaceBuilder(const std::string& name)
    : fNamespace(MakeRepositoryNamespace(name)),
      fKey(DeclareQualifier("Key", TCIMValue(false), kScopeProperty | kScopeReference,
                            kFlavorToSubclass)),
      fDescription(DeclareQualifier("Description", TCIMValue(TType::kCIMTypeString, 0), kScopeAny,
                                    kFlavorOverridable | kFlavorToSubclass | kFlavorTranslatable)),
      fUnit(DeclareQualifier("PUnit", TCIMValue(TType::kCIMTypeString, 0), kScopeProperty,
                             kFlavorOverridable | kFlavorToSubclass)),
      fAbstract(DeclareQualifier("Abstract", TCIMValue(false), kScopeClass | kScopeAssociation,
                                 kFlavorOverridable)),
      fAssociation(DeclareQualifier("Association", TCIMValue(false), kScopeAssociation,
                                    kFlavorToSubclass)) {}

boost::shared_ptr<ICIMQualifierDecl> TNamespaceBuilder::DeclareQualifier(
    const std::string& name, const TCIMValue& defaultValue, std::uint32_t scope,
    std::uint32_t flavor) {
  auto qualifier = fNamespace->CreateQualifierDecl(name, defaultValue, scope, flavor, {});
  qualifier->Commit();
  return qualifier;
}

boost::shared_ptr<ICIMClass> TNamespaceBuilder::DeclareClass(const TClassSpec& spec) {
  const auto superclass = spec.fSuperclass != nullptr ? GetClass(spec.fSuperclass) : nullptr;
  auto cimClass = fNamespace->CreateClass(spec.fName, superclass, {});
  if (spec.fKind == TClassSpec::kAbstract) cimClass->AddQualifier(fAbstract, true)->Commit();
  if (spec.fKind == TClassSpec::kAssociation) cimClass->AddQualifier(fAssociation, true)->Commit();
  cimClass->AddQualifier(fDescription, TCIMValue(spec.fDescription))->Commit();
  for (const TPropertySpec& property : spec.fProperties) DeclareProperty(*cimClass, property);
  cimClass->Commit({});
  fCounts[spec.fName] = 0;
  return cimClass;
}

TCIMValue TNamespaceBuilder::DefaultOf(const TPropertySpec& spec) const {
  TCIMValue null(TType(spec.fType), 0);
  if (spec.fReferencedClass != nullptr) null.SetReferencedClass(GetClass(spec.fReferencedClass));
  return null;
}

void TNamespaceBuilder::DeclareProperty(ICIMClass& cimClass, const TPropertySpec& spec) {
  auto property = cimClass.CreatePropertyDecl(spec.fName, DefaultOf(spec), {});
  if (spec.fKey) property->AddQualifier(fKey, TCIMValue(true))->Commit();
  property->AddQualifier(fDescription, TCIMValue(spec.fDescription))->Commit();
  if (spec.fUnit != nullptr) property->AddQualifier(fUnit, TCIMValue(spec.fUnit))->Commit();
  property->Commit();
}

boost::shared_ptr<ICIMClass> TNamespaceBuilder::GetClass(const std::string& name) const {
  return fNamespace->GetClass(name, {});
}

bool TNamespaceBuilder::AddInstance(ICIMClass& cimClass, const std::vector<TPropertyValue>& values,
                                    const std::string& instance) {
  const std::size_t count = ++fCounts[cimClass.GetName({})];
  if (count == kMaxInstances + 1) {
    NoteMissingInstances(
        cimClass, "more than " + std::to_string(kMaxInstances) + ": the others are left out");
  }
  if (count > kMaxInstances) return false;
  CreateInstance(cimClass, values, instance);
  return true;
}

void TNamespaceBuilder::CreateInstance(ICIMClass& cimClass,
                                       const std::vector<TPropertyValue>& values,
                                       const std::string& instance) {
  const std::string& className = cimClass.GetName({});
  auto created = cimClass.CreateInstance({});
  for (const TPropertyValue& value : values) {
    // A property that is not set keeps the declared default: null of the declared type.
    if (!value.fValue.IsNull()) created->SetPropertyValue(value.fName, value.fValue, {});
    if (!value.fReason.empty()) NoteMissing({className, instance, value.fName, value.fReason});
  }
  created->Commit({});
}

void TNamespaceBuilder::NoteMissingInstances(const ICIMClass& cimClass, const std::string& reason) {
  NoteMissing({cimClass.GetName({}), "", "", reason});
}

TCIMValue TNamespaceBuilder::ReferenceTo(const std::string& className,
                                         const std::vector<TPropertyValue>& keys) const {
  TCIMReference reference(fNamespace, {});
  reference.SetClass(GetClass(className));
  for (const TPropertyValue& key : keys) reference.AddKeyValue(key.fName, key.fValue);
  return TCIMValue(reference);
}

void TNamespaceBuilder::NoteMissing(const TMissingValue& missing) {
  LogMessage(ILogger::kLogWarning,
             {"linux: ", missing.fClass, missing.fInstance.empty() ? "" : " ", missing.fInstance,
              missing.fProperty.empty() ? "" : ".", missing.fProperty, ": ", missing.fReason});
  fMissing.push_back(missing);
}

boost::shared_ptr<ICIMNamespace> TNamespaceBuilder::Finish() {
  const auto missingClass = DeclareClass(MissingClass());
  for (const TMissingValue& missing : fMissing) {
    CreateInstance(*missingClass,
                   {{"ClassName", missing.fClass},
                    {"Instance", missing.fInstance},
                    {"PropertyName", missing.fProperty},
                    {"Reason", missing.fReason}},
                   "");
  }
  return fNamespace;
}

}  // namespace NVORNQDX20
