// SPDX-License-Identifier: Apache-2.0
// Makes classes that a document uses without declaring them.
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "object_makers.h"
#include "object_path.h"
#include "value_reader.h"
#include "xml/document_limits.h"
#include "xml/literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

struct TProperty {
  std::string fName;
  TCIMType fType;
  /// The element that gives the class of a reference: a property or a VALUE.REFERENCE. Null for
  /// other types.
  const TElement* fReference = nullptr;
  NDescribe::EStringKind fStringKind = NDescribe::EStringKind::kText;
  bool fIsGuessed = false;        ///< The type was derived from the numbers seen so far.
  bool fIsInName = false;         ///< The name of an instance has it.
  bool fIsInReference = false;    ///< Another name has it.
  std::size_t fInstances = 0;     ///< Instances without fault that have it.
  std::size_t fLastInstance = 0;  ///< The last of them, from 1.
};

bool IsGuessed(const TElement& value) {
  const std::string* const valueType = value.Find("VALUETYPE");
  return value.Find("TYPE") == nullptr && valueType != nullptr && *valueType == "numeric";
}

/// Returns what gives the class of a reference in a property: a property without value, or its
/// VALUE.REFERENCE.
TElement ClassSourceOf(const TElement& reference) {
  const TElement* const value = reference.Child("VALUE.REFERENCE");
  const bool isNamed = !IsProperty(reference) || reference.Find("REFERENCECLASS") != nullptr;
  TElement source = isNamed || value == nullptr ? reference : *value;
  if (IsProperty(source)) source.fChildren.clear();
  return source;
}

/// Returns the type that holds both numbers.
TCIMType CommonType(TCIMType left, TCIMType right) {
  if (left == right) return left;
  const bool isReal = left == TCIMType::kCIMTypeReal64 || right == TCIMType::kCIMTypeReal64;
  return isReal ? TCIMType::kCIMTypeReal64 : TCIMType::kCIMTypeSint64;
}

/// Throws if the text cannot be a value of the type.
void RequireText(TCIMType type, const TElement& value) {
  const bool isText = type == TCIMType::kCIMTypeString || type == TCIMType::kCIMTypeReference;
  if (isText || IsBlank(value.fText) || ReadLiteral(type, value.fText)) return;
  value.Refuse(Shown(value.fText) + " is no " + std::string(KeywordOf(type)));
}

/// Throws if the value of a property cannot be read: then it does not give the property's type.
void RequireReadable(TCIMType type, const TElement& property) {
  const TElement* const value = FindValueOf(property);
  if (value == nullptr) return;
  if (!IsArray(type)) return RequireText(type, *value);
  for (const TElement& each : value->fChildren) RequireText(ElementType(type), each);
}

class TSynthesis {
 public:
  /// Adds the properties of an instance, and the keys of its name. If it throws, the instance does
  /// not matter for keys, and will be left out.
  void AddInstance(const TClassUse& use) {
    fGiven.clear();
    fNamed.clear();
    for (const TElement& child : FindInstance(*use.fElement)->fChildren) {
      if (IsProperty(child)) AddProperty(use, child);
    }
    const TElement* const name = FindName(*use.fElement);
    if (name != nullptr) AddName(use, *name);
    CountInstance(name != nullptr);
  }

  /// Adds the keys of a name; `use` may be an object with a name.
  void AddName(const TClassUse& use, const TElement& name) {
    for (const TKeyBinding& binding : KeyBindingsOf(name)) {
      if (!binding.HasName()) name.Refuse("a key without name, of a class without declaration");
      if (!IsDeclared(use, *binding.fName)) AddKey(binding, &name == use.fElement);
    }
  }

  const std::vector<TProperty>& Properties() const { return fProperties; }

  bool IsKey(const TProperty& property) const {
    const bool isNamed = fHasNames ? property.fIsInName : property.fIsInReference;
    return isNamed && property.fInstances == fInstanceCount && !IsArray(property.fType);
  }

 private:
  static bool IsDeclared(const TClassUse& use, const std::string& name) {
    const TSubclass* declaring = use.fClass;
    while (declaring != nullptr && declaring->fProperties.count(name) == 0) {
      declaring = declaring->fParent;
    }
    return declaring != nullptr;
  }

  TProperty& At(const std::string& name, TCIMType type) {
    const auto [found, isNew] = fPositions.emplace(name, fProperties.size());
    if (isNew) fProperties.push_back({name, type});
    return fProperties[found->second];
  }

  void CountInstance(bool hasName) {
    ++fInstanceCount;
    fHasNames = fHasNames || hasName;
    for (const std::size_t each : fGiven) {
      TProperty& property = fProperties[each];
      if (std::exchange(property.fLastInstance, fInstanceCount) != fInstanceCount) {
        ++property.fInstances;
      }
    }
    for (const std::size_t each : fNamed) fProperties[each].fIsInName = true;
  }

  std::size_t PositionOf(const TProperty& property) const {
    return static_cast<std::size_t>(&property - fProperties.data());
  }

  void AddProperty(const TClassUse& use, const TElement& element) {
    const std::string& name = element.Get("NAME");
    if (IsDeclared(use, name)) return;
    const TCIMType type = TypeOfProperty(element);
    if (fPositions.count(name) == 0) RequireReadable(type, element);
    TProperty& property = At(name, type);
    if (std::exchange(property.fIsGuessed, false)) property.fType = type;
    if (property.fStringKind == NDescribe::EStringKind::kText) {
      property.fStringKind = StringKindOf(element);
    }
    if (FindValueOf(element) != nullptr) fGiven.push_back(PositionOf(property));
    if (NamesClass(element) && property.fReference == nullptr) property.fReference = &element;
  }

  void AddKey(const TKeyBinding& binding, bool isReference) {
    const std::size_t known = fProperties.size();
    const TCIMType type = TypeOfKey(*binding.fValue);
    if (fPositions.count(*binding.fName) == 0) RequireText(type, *binding.fValue);
    TProperty& property = At(*binding.fName, type);
    if (fProperties.size() != known) property.fIsGuessed = IsGuessed(*binding.fValue);
    if (property.fIsGuessed) property.fType = CommonType(property.fType, type);
    const bool isReferenceKey = binding.fValue->Is("VALUE.REFERENCE");
    if (isReferenceKey && property.fReference == nullptr) property.fReference = binding.fValue;
    if (isReference) {
      property.fIsInReference = true;
    } else {
      fGiven.push_back(PositionOf(property));
      fNamed.push_back(PositionOf(property));
    }
  }

  std::vector<TProperty> fProperties;
  NModel::TNameMap<std::size_t> fPositions;
  std::size_t fInstanceCount = 0;   // without fault
  bool fHasNames = false;           // one of them has a name
  std::vector<std::size_t> fGiven;  // by the instance that is being added
  std::vector<std::size_t> fNamed;  // of them, those in its name
};

/// A use with a fault is reported when its own object is made; what precedes the fault is added.
template <typename TWork>
void IgnoringFaults(TWork&& work) {
  try {
    work();
  } catch (const TDocumentError& error) {
    if (error.fIsFatal) throw;
  }
}

TSynthesis Collected(const std::vector<TClassUse>& uses) {
  TSynthesis synthesis;
  for (const TClassUse& use : uses) {
    if (FindInstance(*use.fElement) == nullptr) continue;
    IgnoringFaults([&] { synthesis.AddInstance(use); });
  }
  for (const TClassUse& use : uses) {
    if (FindInstance(*use.fElement) != nullptr) continue;
    IgnoringFaults([&] { synthesis.AddName(use, *use.fElement); });
  }
  return synthesis;
}

}  // namespace

void MakeUndeclaredClass(TSpace& space, const std::string& name, const TElement& usedBy,
                         const std::vector<TClassUse>& uses, bool mayHaveKeys) {
  const TSynthesis synthesis = Collected(uses);
  if (synthesis.Properties().size() > kMaxMembers) {
    usedBy.Refuse("a class has more than " + std::to_string(kMaxMembers) + " members");
  }
  AsPartOf(usedBy, [&] {
    const auto created = space.GetNamespace()->CreateClass(name, nullptr, {});
    std::vector<TUnresolved> unresolved;
    for (const TProperty& property : synthesis.Properties()) {
      TCIMValue null(property.fType, 0);
      if (null.IsReference()) {
        null.SetReferencedClass(created);
        if (property.fReference != nullptr) {
          unresolved.push_back({created, property.fName, ClassSourceOf(*property.fReference)});
        }
      }
      const auto decl = created->CreatePropertyDecl(property.fName, null, {});
      if (mayHaveKeys && synthesis.IsKey(property)) {
        decl->AddQualifier(KeyDecl(space), true)->Commit();
      }
      if (property.fStringKind != NDescribe::EStringKind::kText) {
        NDescribe::AddStringKind(*space.GetNamespace(), *decl, property.fStringKind);
      }
      decl->Commit();
    }
    created->Commit({});
    AddMadeClass(space, created, nullptr, usedBy, false);
    for (TUnresolved& each : unresolved) space.Unresolved().push_back(std::move(each));
  });
}

}  // namespace NVORNQDX20::NCIMXML
