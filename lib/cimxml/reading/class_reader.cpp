// SPDX-License-Identifier: Apache-2.0
// Reads declarations of qualifiers and classes.
#include "object_readers.h"

#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cstddef>

#include "value_reader.h"
#include "xml/document_limits.h"
#include "xml/qualifier_flags.h"

namespace NVORNQDX20::NCIMXML {
namespace {

template <std::size_t kSize>
std::uint32_t ReadFlags(const TFlag (&flags)[kSize], const TElement& element) {
  std::uint32_t bits = 0;
  for (const TFlag& flag : flags) {
    if (element.GetFlag(flag.fAttribute, flag.fIsDefault)) bits |= flag.fBit;
  }
  return bits;
}

std::uint32_t ReadScope(const TElement& decl) {
  if (decl.Is("QUALIFIER")) return kScopeAny;
  const TElement* const scope = decl.Child("SCOPE");
  return scope == nullptr ? 0 : ReadFlags(kScopes, *scope);
}

bool IsArrayDecl(const TElement& decl) {
  return decl.GetFlag("ISARRAY", false) || decl.Child("VALUE.ARRAY") != nullptr;
}

bool IsProperty(const TElement& element) {
  return element.Is("PROPERTY") || element.Is("PROPERTY.ARRAY") || element.Is("PROPERTY.REFERENCE");
}

/// Reads one CLASS element into a new class of the repository.
class TClassReader {
 public:
  TClassReader(TNamespaceReader& ns, const TElement& element, ICIMClass& target)
      : fNamespace(ns), fElement(element), fTarget(target) {}

  void Read() {
    for (const TElement& child : fElement.fChildren) {
      if (child.Is("QUALIFIER")) {
        AddQualifier(fTarget, child);
      } else if (IsProperty(child)) {
        ReadProperty(child);
      } else if (child.Is("METHOD")) {
        ReadMethod(child);
      } else {
        fElement.RefuseChild(child);
      }
    }
  }

 private:
  void AddQualifier(ICIMNamedElement& target, const TElement& qualifier) {
    const auto decl = fNamespace.QualifierDeclFor(qualifier);
    const TCIMValue& declared = decl->GetDefaultValue();
    const TCIMValue value = ReadValue(fNamespace, declared.GetType(), qualifier);
    const bool isNullArray = value.IsNull() && value.IsArray();
    target
        .AddQualifier(decl,
                      isNullArray ? TCIMValue(value.GetType(), declared.GetMaxArraySize()) : value)
        ->Commit();
  }

  void AddQualifiers(ICIMNamedElement& target, const TElement& element) {
    for (const TElement& child : element.fChildren) {
      if (child.Is("QUALIFIER")) AddQualifier(target, child);
    }
  }

  bool HasProperty(const std::string& name) const {
    try {
      return fTarget.GetPropertyDecl(name, {}) != nullptr;
    } catch (const TQDXException&) {
      return false;
    }
  }

  static bool IsStatic(const TElement& property) {
    return std::any_of(property.fChildren.begin(), property.fChildren.end(),
                       [](const TElement& child) {
                         return child.Is("QUALIFIER") && child.Get("NAME") == "Static" &&
                                child.Child("VALUE") != nullptr &&
                                NModel::EqualIgnoringCase(child.Child("VALUE")->fText, "true");
                       });
  }

  void ReadProperty(const TElement& property) {
    const std::string& name = property.Get("NAME");
    if (!property.GetFlag("PROPAGATED", false) || !HasProperty(name)) {
      DeclareProperty(property);
    } else if (IsStatic(property)) {
      fTarget.SetStaticPropertyValue(name, ReadPropertyValue(fNamespace, property), {});
    }
  }

  void DeclareProperty(const TElement& property) {
    TCIMValue value = ReadPropertyValue(fNamespace, property);
    if (value.IsReference() && !value.GetReferencedClass()) {
      // A reference property must name a class; if the document names none, it is this class.
      value.SetReferencedClass(fNamespace.ClassNamed(fElement.Get("NAME"), fElement).fClass);
    }
    const auto decl = fTarget.CreatePropertyDecl(property.Get("NAME"), value, {});
    AddQualifiers(*decl, property);
    decl->Commit();
  }

  static TCIMType ParameterType(const TElement& parameter) {
    if (parameter.Is("PARAMETER.REFERENCE")) return TCIMType::kCIMTypeReference;
    if (parameter.Is("PARAMETER.REFARRAY")) return ArrayOf(TCIMType::kCIMTypeReference);
    const TCIMType type = TypeAttribute(parameter);
    return parameter.Is("PARAMETER.ARRAY") ? ArrayOf(type) : type;
  }

  void ReadMethod(const TElement& element) {
    TCIMType type = TCIMType::kCIMTypeNone;
    if (element.Find("TYPE") != nullptr) type = TypeAttribute(element);
    const auto method = fTarget.CreateMethodDecl(element.Get("NAME"), type, {});
    AddQualifiers(*method, element);
    for (const TElement& child : element.fChildren) {
      if (child.Is("QUALIFIER")) continue;
      if (child.fName.substr(0, 9) != "PARAMETER") element.RefuseChild(child);
      const auto parameter = method->CreateParameterDecl(child.Get("NAME"), ParameterType(child));
      AddQualifiers(*parameter, child);
      parameter->Commit();
    }
  }

  TNamespaceReader& fNamespace;
  const TElement& fElement;
  ICIMClass& fTarget;
};

}  // namespace

boost::shared_ptr<ICIMQualifierDecl> ReadQualifierDecl(TNamespaceReader& ns,
                                                       const TElement& element) {
  const std::string& name = element.Get("NAME");
  TCIMType type = TypeAttribute(element);
  if (IsArrayDecl(element)) type = ArrayOf(type);
  const bool isDeclared = element.Is("QUALIFIER.DECLARATION");
  const TCIMValue value = isDeclared ? ReadValue(ns, type, element) : TCIMValue(type, 0);
  return AsPartOf(element, "qualifier " + Shown(name), [&] {
    return ns.GetNamespace()->CreateQualifierDecl(name, value, ReadScope(element),
                                                  ReadFlags(kFlavors, element), {});
  });
}

boost::shared_ptr<ICIMClass> ReadClass(TNamespaceReader& ns, const TElement& element) {
  const std::string& name = element.Get("NAME");
  const std::string* const superclass = element.Find("SUPERCLASS");
  if (element.fChildren.size() > kMaxMembers)
    element.Refuse("a class has more than " + std::to_string(kMaxMembers) + " members");
  return AsPartOf(element, "class " + Shown(name), [&] {
    const auto parent =
        superclass == nullptr ? nullptr : ns.ClassNamed(*superclass, element).fClass;
    auto created = ns.GetNamespace()->CreateClass(name, parent, {});
    ns.GetState().fDeclaring.back().fClass.fClass = created;
    TClassReader(ns, element, *created).Read();
    created->Commit({});
    return created;
  });
}

}  // namespace NVORNQDX20::NCIMXML
