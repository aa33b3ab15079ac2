// SPDX-License-Identifier: Apache-2.0
// Makes declarations of qualifiers and classes.
#include <qdxcore/reference_parameter.h>
#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "object_makers.h"
#include "object_path.h"
#include "value_reader.h"
#include "xml/document_limits.h"
#include "xml/marks.h"
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

/// Reads a value that has no place for a reason; so one that cannot be held is counted.
TCIMValue ReadCounted(TSpace& space, TCIMType type, const TElement& holder) {
  TCIMValue value = ReadValue(space, type, holder);
  for (const TUnheldDateTime& unheld : FindUnheldDateTimes(value, holder)) {
    space.GetState().fUnheldDateTimes.Add(PlaceOf(*unheld.fValue, holder));
  }
  return value;
}

boost::shared_ptr<ICIMQualifierDecl> QualifierDeclFor(TSpace& space, const TElement& qualifier) {
  try {
    return space.GetNamespace()->GetQualifierDecl(qualifier.Get("NAME"), {});
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() != kQDXStatusNotFound) throw;
  }
  return MakeQualifierDecl(space, qualifier);
}

/// Fills one new class of the repository from its CLASS element.
class TClassMaker {
 public:
  TClassMaker(TSpace& space, const TElement& element, const boost::shared_ptr<ICIMClass>& target)
      : fSpace(space), fElement(element), fTarget(target) {}

  void Fill() {
    for (const TElement& child : fElement.fChildren) {
      Attempt({child}, [&] { Add(child); });
    }
  }

  /// What is still to be resolved when all classes have been made.
  std::vector<TUnresolved> TakeUnresolved() { return std::move(fUnresolved); }

 private:
  using TNames = NModel::TNameMap<bool>;

  /// For messages: <QUALIFIER> "q" of <PROPERTY> "p".
  struct TPart {
    const TElement& fElement;
    const TElement* fOwner = nullptr;  ///< Null if it is the class.
    const char* fAspect = "";          ///< Such as "the value of ".
  };

  /// Leaves out a part of the class, and records it, if `work` throws: the instances need the
  /// others.
  template <typename TWork>
  void Attempt(const TPart& part, TWork&& work) {
    try {
      AsPartOf(part.fElement, work);
    } catch (const TDocumentError& error) {
      if (error.fIsFatal) throw;
      const std::string owner = part.fOwner == nullptr ? "" : " of " + NameOfHolder(*part.fOwner);
      fSpace.GetState().Warn(error.fPosition, part.fAspect + NameOfHolder(part.fElement) + owner +
                                                  " of class " + Shown(fElement.Get("NAME")) +
                                                  " is left out: " + error.fReason);
    }
  }

  void Add(const TElement& child) {
    if (child.Is("QUALIFIER")) {
      AddQualifier(*fTarget, child, ScopeOfClass());
    } else if (IsProperty(child)) {
      AddProperty(child);
    } else if (child.Is("METHOD")) {
      AddMethod(child);
    } else {
      fElement.RefuseChild(child);
    }
  }

  /// `scope` has the bits of which the qualifier needs one.
  void AddQualifier(ICIMNamedElement& target, const TElement& qualifier, std::uint32_t scope) {
    const auto decl = QualifierDeclFor(fSpace, qualifier);
    if ((decl->GetScope() & scope) == 0) {
      fSpace.GetState().fDefects.Add(qualifier.fPosition, "qualifier " + Shown(decl->GetName()) +
                                                              " is outside of its declared scope");
    }
    const TCIMValue& declared = decl->GetDefaultValue();
    const TCIMValue value = ReadCounted(fSpace, declared.GetType(), qualifier);
    const bool isNullArray = value.IsNull() && value.IsArray();
    target
        .AddQualifier(decl,
                      isNullArray ? TCIMValue(value.GetType(), declared.GetMaxArraySize()) : value)
        ->Commit();
  }

  /// A superclass can be an indication, which the interface does not report; so a qualifier for
  /// indications is taken on every class.
  std::uint32_t ScopeOfClass() const {
    const bool isAssociation = IsQualified(fElement, "Association") || fTarget->IsAssociation({});
    return isAssociation ? kScopeAssociation : kScopeClass | kScopeIndication;
  }

  static std::uint32_t ScopeOfMember(const TElement& element) {
    if (element.Is("METHOD")) return kScopeMethod;
    if (element.Is("PROPERTY.REFERENCE") || element.Is("PROPERTY.REFARRAY")) return kScopeReference;
    return IsProperty(element) ? kScopeProperty : kScopeParameter;
  }

  void AddQualifiers(ICIMNamedElement& target, const TElement& element) {
    const std::uint32_t scope = ScopeOfMember(element);
    for (const TElement& child : element.fChildren) {
      if (!child.Is("QUALIFIER")) continue;
      Attempt({child, &element}, [&] {
        if (!IsMark(child, element)) AddQualifier(target, child, scope);
      });
    }
  }

  bool IsMark(const TElement& qualifier, const TElement& element) const {
    const std::string& name = qualifier.Get("NAME");
    if (element.Is("METHOD")) return NModel::EqualIgnoringCase(name, kNoReturnValue);
    return NModel::EqualIgnoringCase(name, kStatic) && IsProperty(element) &&
           IsQualified(element, kStatic) && !IsDeclared(kStatic);
  }

  bool IsDeclared(const std::string& qualifier) const {
    try {
      fSpace.GetNamespace()->GetQualifierDecl(qualifier, {});
      return true;
    } catch (const TQDXException& e) {
      if (e.GetStatusCode() != kQDXStatusNotFound) throw;
      return false;
    }
  }

  /// Keeps what the value of a string does not show. `decl` must have its other qualifiers.
  template <typename TDecl>
  void AddStringKind(TDecl& decl, const TElement& element) {
    const auto kind = StringKindOf(element);
    const std::string* const embedded = FindEmbeddedObject(element);
    if (embedded != nullptr && kind == NDescribe::EStringKind::kText) {
      fSpace.GetState().Warn(element, "EmbeddedObject=" + Shown(*embedded) + " of " +
                                          NameOfHolder(element) + " is ignored");
    }
    if (kind == NDescribe::EStringKind::kText || kind == NDescribe::StringKindOf(decl)) return;
    Attempt({element, nullptr, "the kind of text of "}, [&] {
      constexpr std::size_t kQualifierBytes = 256;
      fSpace.GetMemory().AddHeld(kQualifierBytes, element);
      NDescribe::AddStringKind(*fSpace.GetNamespace(), decl, kind);
    });
  }

  bool HasProperty(const std::string& name) const {
    try {
      return fTarget->GetPropertyDecl(name, {}) != nullptr;
    } catch (const TQDXException& e) {
      if (e.GetStatusCode() == kQDXStatusOutOfMemory) throw;
      return false;
    }
  }

  void AddProperty(const TElement& property) {
    const std::string& name = property.Get("NAME");
    const bool isInherited = property.GetFlag("PROPAGATED", false) && HasProperty(name);
    // The class's own value may follow its own declaration.
    TNames& names = isInherited ? fOwnValues : fOwnDeclarations;
    if (!names.emplace(name, true).second) {
      fSpace.GetState().Warn(property, "property " + Shown(name) + " of class " +
                                           Shown(fElement.Get("NAME")) +
                                           " is declared twice; the first declaration is taken");
    } else if (!isInherited) {
      DeclareProperty(property);
    } else if (IsQualified(property, kStatic)) {
      SetStaticValue(property);
    }
  }

  void SetStaticValue(const TElement& property) {
    const TCIMType type = TypeOfProperty(property);
    if (type == TCIMType::kCIMTypeReference) {
      fUnresolved.push_back({fTarget, property.Get("NAME"), property, true});
    } else {
      fTarget->SetStaticPropertyValue(property.Get("NAME"), ReadCounted(fSpace, type, property),
                                      {});
    }
  }

  void DeclareProperty(const TElement& property) {
    const TCIMType type = TypeOfProperty(property);
    const bool isReference = type == TCIMType::kCIMTypeReference;
    TCIMValue value(type, 0);
    if (!isReference) {
      Attempt({property, nullptr, "the value of "},
              [&] { value = ReadCounted(fSpace, type, property); });
    } else {
      // The classes of a document may refer to each other in a circle, or to their own subclasses.
      // So a reference gets its class when all are made; until then, or if none is named, it is
      // this class.
      value.SetReferencedClass(fTarget);
      if (NamesClass(property)) {
        fUnresolved.push_back({fTarget, property.Get("NAME"), property, false});
      }
    }
    const auto decl = fTarget->CreatePropertyDecl(property.Get("NAME"), value, {});
    AddQualifiers(*decl, property);
    AddStringKind(*decl, property);
    decl->Commit();
    if (IsQualified(property, kStatic)) SetStaticValue(property);
  }

  static TCIMType ParameterType(const TElement& parameter) {
    if (parameter.Is("PARAMETER.REFERENCE")) return TCIMType::kCIMTypeReference;
    if (parameter.Is("PARAMETER.REFARRAY")) return ArrayOf(TCIMType::kCIMTypeReference);
    const TCIMType type = TypeAttribute(parameter);
    return parameter.Is("PARAMETER.ARRAY") ? ArrayOf(type) : type;
  }

  void SetReferencedClass(ICIMParameterDecl& parameter, const TElement& element,
                          const TElement& method) {
    const std::string* const name = element.Find("REFERENCECLASS");
    if (name == nullptr || ElementType(parameter.GetType()) != TCIMType::kCIMTypeReference) return;
    Attempt({element, &method, "the referenced class of "},
            [&] { SetReferencedClassName(parameter, *name); });
  }

  void AddMethod(const TElement& element) {
    TCIMType type = TCIMType::kCIMTypeNone;
    const bool hasType = element.Find("TYPE") != nullptr && !IsQualified(element, kNoReturnValue);
    if (hasType) type = TypeAttribute(element);
    const auto method = fTarget->CreateMethodDecl(element.Get("NAME"), type, {});
    AddQualifiers(*method, element);
    if (hasType) AddStringKind(*method, element);
    for (const TElement& child : element.fChildren) {
      if (child.Is("QUALIFIER")) continue;
      Attempt({child, &element}, [&] {
        if (child.fName.substr(0, 9) != "PARAMETER") element.RefuseChild(child);
        const auto parameter = method->CreateParameterDecl(child.Get("NAME"), ParameterType(child));
        SetReferencedClass(*parameter, child, element);
        AddQualifiers(*parameter, child);
        AddStringKind(*parameter, child);
        parameter->Commit();
      });
    }
  }

  TSpace& fSpace;
  const TElement& fElement;
  const boost::shared_ptr<ICIMClass> fTarget;
  TNames fOwnDeclarations;
  TNames fOwnValues;
  std::vector<TUnresolved> fUnresolved;
};

TCIMValue ResolvedValue(TSpace& space, const TElement& source) {
  if (IsProperty(source)) return ReadPropertyValue(space, TypeOfProperty(source), source);
  const TElement& name = NameOf(source);
  TCIMValue null(TCIMType::kCIMTypeReference, 0);
  null.SetReferencedClass(
      space.GetSpaces().SpaceOf(source, space).GetClass(ClassNameOf(name), name).fClass);
  return null;
}

}  // namespace

boost::shared_ptr<ICIMQualifierDecl> MakeQualifierDecl(TSpace& space, const TElement& element) {
  const std::string& name = element.Get("NAME");
  TCIMType type = TypeAttribute(element);
  if (IsArrayDecl(element)) type = ArrayOf(type);
  const bool isDeclared = element.Is("QUALIFIER.DECLARATION");
  const TCIMValue value = isDeclared ? ReadCounted(space, type, element) : TCIMValue(type, 0);
  return AsPartOf(element, [&] {
    auto decl = space.GetNamespace()->CreateQualifierDecl(name, value, ReadScope(element),
                                                          ReadFlags(kFlavors, element), {});
    decl->Commit();
    return decl;
  });
}

boost::shared_ptr<ICIMQualifierDecl> KeyDecl(TSpace& space) {
  TElement key;
  key.fName = "QUALIFIER";
  key.fAttributes = {{"NAME", "Key"}, {"TYPE", "boolean"}, {"OVERRIDABLE", "false"}};
  return QualifierDeclFor(space, key);
}

void MakeClass(TSpace& space, const TElement& element) {
  const std::string& name = element.Get("NAME");
  const std::string* const superclass = element.Find("SUPERCLASS");
  if (element.fChildren.size() > kMaxMembers)
    element.Refuse("a class has more than " + std::to_string(kMaxMembers) + " members");
  const TReadClass* const parent =
      superclass == nullptr ? nullptr : &space.GetClass(*superclass, element);
  if (parent != nullptr && parent->fDepth >= kMaxClassDepth)
    element.Refuse("more than " + std::to_string(kMaxClassDepth - 1) + " superclasses");
  AsPartOf(element, [&] {
    const auto created =
        space.GetNamespace()->CreateClass(name, parent == nullptr ? nullptr : parent->fClass, {});
    TClassMaker maker(space, element, created);
    maker.Fill();
    created->Commit({});
    std::vector<TUnresolved> unresolved = maker.TakeUnresolved();
    const bool hasValue = std::any_of(unresolved.begin(), unresolved.end(), [](const auto& each) {
      return FindValueOf(each.fSource) != nullptr;
    });
    AddMadeClass(space, created, parent, element, hasValue);
    for (TUnresolved& each : unresolved) space.Unresolved().push_back(std::move(each));
  });
}

void AddMadeClass(TSpace& space, const boost::shared_ptr<ICIMClass>& made,
                  const TReadClass* superclass, const TElement& usedBy, bool hasUnresolvedValue) {
  std::vector<boost::shared_ptr<ICIMPropertyDecl>> decls;
  made->EnumeratePropertyDecls(TAddToVectorCallback(decls), {});
  constexpr std::size_t kClassBytes = 1024;
  std::size_t names = 2 * made->GetName({}).size();
  for (std::size_t i = superclass == nullptr ? 0 : superclass->fProperties; i < decls.size(); ++i) {
    names += decls[i]->GetName().size();
  }
  space.GetMemory().AddHeld(kClassBytes + names, usedBy);
  space.GetMemory().AddValues(2 * decls.size(), usedBy);  // a class has a table of its properties
  TReadClass read{made, decls.size(), 1, hasUnresolvedValue,
                  space.GetState().fChoice.Has(made->GetName({}))};
  if (superclass != nullptr) {
    read.fDepth += superclass->fDepth;
    read.fIsUnresolved = read.fIsUnresolved || superclass->fIsUnresolved;
    read.fIsChosen = read.fIsChosen || superclass->fIsChosen;
  }
  space.AddClass(made->GetName({}), read);
}

void Resolve(TSpace& space, const TUnresolved& unresolved) {
  AsPartOf(unresolved.fSource, [&] {
    const TCIMValue value = ResolvedValue(space, unresolved.fSource);
    if (unresolved.fIsStatic) {
      unresolved.fClass->SetStaticPropertyValue(unresolved.fProperty, value, {});
    } else {
      SetReferenceDefault(*unresolved.fClass, unresolved.fProperty, value);
    }
  });
}

}  // namespace NVORNQDX20::NCIMXML
