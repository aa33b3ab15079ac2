// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/declaration.h>

#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include <cstdint>

#include "structure.h"

namespace NVORNQDX20::NDescribe {
namespace {

using TType = TCIMValue::TCIMType;

/// A qualifier as DSP0004 defines it.
struct TQualifier {
  const char* fName;
  unsigned int fType;
  std::uint32_t fScope;
  std::uint32_t fFlavor;
};

constexpr std::uint32_t kOverridden = kFlavorOverridable | kFlavorToSubclass;
constexpr unsigned int kTexts = static_cast<unsigned int>(TType::kCIMTypeString) |
                                static_cast<unsigned int>(TType::kCIMTypeArray);

constexpr TQualifier kKeyQualifier = {"Key", TType::kCIMTypeBoolean,
                                      kScopeProperty | kScopeReference, kFlavorToSubclass};
constexpr TQualifier kDescription = {"Description", TType::kCIMTypeString, kScopeAny,
                                     kOverridden | kFlavorTranslatable};
constexpr TQualifier kUnit = {"PUnit", TType::kCIMTypeString, kScopeProperty, kOverridden};
constexpr TQualifier kAbstract = {"Abstract", TType::kCIMTypeBoolean,
                                  kScopeClass | kScopeAssociation, kFlavorOverridable};
constexpr TQualifier kAssociation = {"Association", TType::kCIMTypeBoolean, kScopeAssociation,
                                     kFlavorToSubclass};
constexpr TQualifier kValueMap = {"ValueMap", kTexts, kScopeProperty, kOverridden};
constexpr TQualifier kValues = {"Values", kTexts, kScopeProperty,
                                kOverridden | kFlavorTranslatable};
constexpr TQualifier kCounter = {"Counter", TType::kCIMTypeBoolean, kScopeProperty, kOverridden};
constexpr TQualifier kGauge = {"Gauge", TType::kCIMTypeBoolean, kScopeProperty, kOverridden};
constexpr TQualifier kVolatile = {kVolatileQualifier, TType::kCIMTypeBoolean, kScopeProperty,
                                  kOverridden};
constexpr TQualifier kSecret = {kSecretQualifier, TType::kCIMTypeString, kScopeProperty,
                                kOverridden};
constexpr TQualifier kPart = {kPartQualifier, TType::kCIMTypeString,
                              kScopeClass | kScopeAssociation, kFlavorOverridable};

/// The namespace's qualifiers; those that it does not have are declared.
class TQualifiers {
 public:
  /// Not by GetQualifierDecl, which throws for each that is not there.
  explicit TQualifiers(ICIMNamespace& ns) : fNamespace(ns) {
    ns.EnumerateQualifierDecls(TAddToVectorCallback(fDecls), {});
  }

  /// Returns the namespace's declaration if it has one, which may differ in scope and flavor.
  const boost::shared_ptr<ICIMQualifierDecl>& Declared(const TQualifier& qualifier) {
    for (const auto& decl : fDecls) {
      if (NModel::EqualIgnoringCase(decl->GetName(), qualifier.fName)) return decl;
    }
    const TCIMValue initial = qualifier.fType == TType::kCIMTypeBoolean
                                  ? TCIMValue(false)
                                  : TCIMValue(TType(qualifier.fType), 0);
    fDecls.push_back(fNamespace.CreateQualifierDecl(qualifier.fName, initial, qualifier.fScope,
                                                    qualifier.fFlavor, {}));
    fDecls.back()->Commit();
    return fDecls.back();
  }

  template <typename TElement>
  void Qualify(TElement& element, const TQualifier& qualifier, const TCIMValue& value) {
    element.AddQualifier(Declared(qualifier), value)->Commit();
  }

 private:
  ICIMNamespace& fNamespace;
  std::vector<boost::shared_ptr<ICIMQualifierDecl>> fDecls;
};

TCIMValue Texts(const std::vector<TCIMValue>& texts) {
  return TCIMValue(TType(TType::kCIMTypeString), 0, texts);
}

void QualifyAsEnumeration(TQualifiers& qualifiers, ICIMPropertyDecl& property,
                          const TEnumeration& enumeration) {
  std::vector<TCIMValue> numbers;
  std::vector<TCIMValue> names;
  for (const auto& [number, name] : enumeration) {
    numbers.emplace_back(std::to_string(number));
    names.emplace_back(name);
  }
  qualifiers.Qualify(property, kValueMap, Texts(numbers));
  qualifiers.Qualify(property, kValues, Texts(names));
}

using TClass = boost::shared_ptr<ICIMClass>;

TCIMValue InitialValue(ICIMNamespace& ns, const TClass& cimClass,
                       const TPropertyDeclaration& declaration) {
  TCIMValue initial = declaration.fDefault;
  const std::string& target = declaration.fReferencedClass;
  if (target.empty()) return initial;
  const bool isOwn = NModel::EqualIgnoringCase(target, cimClass->GetName({}));
  initial.SetReferencedClass(isOwn ? cimClass : ns.GetClass(target, {}));
  return initial;
}

/// Adds the qualifiers that say more than what a namespace checks.
void Explain(TQualifiers& qualifiers, ICIMPropertyDecl& property,
             const TPropertyDeclaration& declaration) {
  if (!declaration.fDescription.empty()) {
    qualifiers.Qualify(property, kDescription, declaration.fDescription);
  }
  if (!declaration.fUnit.empty()) qualifiers.Qualify(property, kUnit, declaration.fUnit);
  if (!declaration.fEnumeration.empty()) {
    QualifyAsEnumeration(qualifiers, property, declaration.fEnumeration);
  }
  if (declaration.fBehavior == EBehavior::kCounter) qualifiers.Qualify(property, kCounter, true);
  if (declaration.fBehavior == EBehavior::kGauge) qualifiers.Qualify(property, kGauge, true);
  if (declaration.fIsVolatile) qualifiers.Qualify(property, kVolatile, true);
  if (declaration.fSecret != ESecret::kNone) {
    qualifiers.Qualify(property, kSecret, SecretName(declaration.fSecret));
  }
}

enum class EDetail { kAll, kStructure };

void DeclareProperty(ICIMNamespace& ns, TQualifiers& qualifiers, const TClass& cimClass,
                     const TPropertyDeclaration& declaration, EDetail detail) {
  const TCIMValue initial = InitialValue(ns, cimClass, declaration);
  const auto property = cimClass->CreatePropertyDecl(declaration.fName, initial, {});
  if (declaration.fIsKey) qualifiers.Qualify(*property, kKeyQualifier, true);
  if (detail == EDetail::kAll) Explain(qualifiers, *property, declaration);
  property->Commit();
}

TClass Declare(ICIMNamespace& ns, const TClassDeclaration& declaration, EDetail detail) {
  const auto superclass =
      declaration.fSuperclass.empty() ? nullptr : ns.GetClass(declaration.fSuperclass, {});
  auto declared = ns.CreateClass(declaration.fName, superclass, {});
  TQualifiers qualifiers(ns);
  if (declaration.fIsAbstract) qualifiers.Qualify(*declared, kAbstract, true);
  if (declaration.fIsAssociation) qualifiers.Qualify(*declared, kAssociation, true);
  if (detail == EDetail::kAll && !declaration.fDescription.empty()) {
    qualifiers.Qualify(*declared, kDescription, declaration.fDescription);
  }
  if (!declaration.fPart.fName.empty())
    qualifiers.Qualify(*declared, kPart, declaration.fPart.fName);
  for (const TPropertyDeclaration& property : declaration.fProperties) {
    DeclareProperty(ns, qualifiers, declared, property, detail);
  }
  declared->Commit({});
  return declared;
}

}  // namespace

const char* SecretName(ESecret secret) {
  switch (secret) {
    case ESecret::kNone:
      return "";
    case ESecret::kSerial:
      return "serial";
    case ESecret::kHostName:
      return "host name";
    case ESecret::kAddress:
      return "address";
    case ESecret::kUser:
      return "user";
    case ESecret::kCommandLine:
      return "command line";
    case ESecret::kMountSource:
      return "mount source";
  }
  return "";
}

boost::shared_ptr<ICIMClass> DeclareClass(ICIMNamespace& ns, const TClassDeclaration& declaration) {
  return Declare(ns, declaration, EDetail::kAll);
}

bool NDetail::AreSameName(const std::string& one, const std::string& other) {
  return NModel::EqualIgnoringCase(one, other);
}

const char* NDetail::Given(const char* text, const char* what, const char* whose) {
  if (text != nullptr) return text;
  throw TExplainedException(kQDXStatusInvalidClass,
                            std::string(what) + whose + " is a null pointer");
}

void DeclareVolatileQualifier(ICIMNamespace& ns) { (void)TQualifiers(ns).Declared(kVolatile); }

boost::shared_ptr<ICIMInstance> AddInstance(ICIMClass& cimClass, const TValues& values) {
  auto added = cimClass.CreateInstance({});
  for (const auto& [name, value] : values) {
    if (!value.IsNull()) added->SetPropertyValue(name, value, {});
  }
  added->Commit({});
  return added;
}

void NDetail::DeclareStructure(ICIMNamespace& ns, const TClassDeclaration& declaration) {
  Declare(ns, declaration, EDetail::kStructure);
}

}  // namespace NVORNQDX20::NDescribe
