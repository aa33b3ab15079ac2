// SPDX-License-Identifier: Apache-2.0
// Declares classes that a document uses without declaring them.
#include "object_readers.h"

#include <qdxmodel/names.h>

#include <utility>

#include "document.h"
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
  const TElement* fReference;
  bool fIsKey;
  bool fIsGuessed;  ///< The type was derived from the numbers seen so far.
};

/// A number without TYPE gets the largest type.
TCIMType TypeOfNumber(const TElement& value) {
  for (const TCIMType type :
       {TCIMType::kCIMTypeUint64, TCIMType::kCIMTypeSint64, TCIMType::kCIMTypeReal64}) {
    if (ReadLiteral(type, value.fText)) return type;
  }
  value.Refuse(Shown(value.fText) + " is no number");
}

bool IsGuessed(const TElement& value) {
  const std::string* const valueType = value.Find("VALUETYPE");
  return value.Find("TYPE") == nullptr && valueType != nullptr && *valueType == "numeric";
}

/// Returns the type that holds both numbers.
TCIMType CommonType(TCIMType left, TCIMType right) {
  if (left == right) return left;
  const bool isReal = left == TCIMType::kCIMTypeReal64 || right == TCIMType::kCIMTypeReal64;
  return isReal ? TCIMType::kCIMTypeReal64 : TCIMType::kCIMTypeSint64;
}

TCIMType TypeOfKey(const TElement& value) {
  if (value.Is("VALUE.REFERENCE")) return TCIMType::kCIMTypeReference;
  if (value.Find("TYPE") != nullptr) return TypeAttribute(value);
  const std::string* const valueType = value.Find("VALUETYPE");
  if (valueType == nullptr || *valueType == "string") return TCIMType::kCIMTypeString;
  if (*valueType == "boolean") return TCIMType::kCIMTypeBoolean;
  return TypeOfNumber(value);
}

class TSynthesis {
 public:
  /// Adds the properties of an instance, then the keys of its name.
  void AddUse(const TElement& usedBy) {
    const TElement* const instance = usedBy.Is("INSTANCE") ? &usedBy : usedBy.Child("INSTANCE");
    if (instance != nullptr) {
      for (const TElement& child : instance->fChildren) {
        if (!child.Is("QUALIFIER")) AddProperty(child);
      }
    }
    const TElement* const name = usedBy.Is("INSTANCENAME") ? &usedBy : FindName(usedBy);
    if (name != nullptr && instance != nullptr) AddKeys(*name);
    if (name == &usedBy) AddKeys(usedBy);
  }

  const std::vector<TProperty>& Properties() const { return fProperties; }

 private:
  TProperty& At(const std::string& name, TCIMType type) {
    const auto [found, isNew] = fPositions.emplace(name, fProperties.size());
    if (isNew) fProperties.push_back({name, type, nullptr, false, false});
    return fProperties[found->second];
  }

  void AddProperty(const TElement& element) {
    TProperty& property = At(element.Get("NAME"), TypeOfProperty(element));
    if (std::exchange(property.fIsGuessed, false)) property.fType = TypeOfProperty(element);
    const bool tellsClass =
        element.Find("REFERENCECLASS") != nullptr || element.Child("VALUE.REFERENCE") != nullptr;
    if (tellsClass && property.fReference == nullptr) property.fReference = &element;
  }

  void AddKeys(const TElement& name) {
    for (const TKeyBinding& binding : KeyBindingsOf(name)) {
      if (binding.fName.empty()) name.Refuse("a key without name, of a class without declaration");
      const std::size_t known = fProperties.size();
      const TCIMType type = TypeOfKey(*binding.fValue);
      TProperty& property = At(binding.fName, type);
      if (fProperties.size() != known) property.fIsGuessed = IsGuessed(*binding.fValue);
      if (property.fIsGuessed) property.fType = CommonType(property.fType, type);
      property.fIsKey = true;
      if (property.fReference == nullptr) property.fReference = binding.fValue;
    }
  }

  std::vector<TProperty> fProperties;
  NModel::TNameMap<std::size_t> fPositions;
};

boost::shared_ptr<ICIMClass> ReferencedClass(TNamespaceReader& ns, const TElement& reference) {
  const std::string* const named = reference.Find("REFERENCECLASS");
  if (named != nullptr) return ns.ClassNamed(*named, reference).fClass;
  const bool isPath = reference.Is("VALUE.REFERENCE");
  const TElement& path = isPath ? reference : *reference.Child("VALUE.REFERENCE");
  const TElement& name = NameOf(path);
  return ns.GetDocument().NamespaceOf(path, ns).ClassNamed(ClassNameOf(name), name).fClass;
}

TCIMValue NullOf(TNamespaceReader& ns, const TProperty& property,
                 const boost::shared_ptr<ICIMClass>& owner) {
  TCIMValue null(property.fType, 0);
  if (!null.IsReference()) return null;
  // A reference of unknown class refers to its own class.
  null.SetReferencedClass(
      property.fReference == nullptr ? owner : ReferencedClass(ns, *property.fReference));
  return null;
}

}  // namespace

boost::shared_ptr<ICIMClass> SynthesizeClass(TNamespaceReader& ns, const std::string& name,
                                             const std::vector<const TElement*>& uses) {
  TSynthesis synthesis;
  for (const TElement* usedBy : uses) synthesis.AddUse(*usedBy);
  if (synthesis.Properties().size() > kMaxMembers) {
    uses.back()->Refuse("a class has more than " + std::to_string(kMaxMembers) + " members");
  }
  return AsPartOf(*uses.back(), "class " + Shown(name), [&] {
    auto created = ns.GetNamespace()->CreateClass(name, nullptr, {});
    ns.GetState().fDeclaring.back().fClass.fClass = created;
    for (const TProperty& property : synthesis.Properties()) {
      const auto decl =
          created->CreatePropertyDecl(property.fName, NullOf(ns, property, created), {});
      if (property.fIsKey) decl->AddQualifier(ns.KeyDecl(), true)->Commit();
      decl->Commit();
    }
    created->Commit({});
    return created;
  });
}

}  // namespace NVORNQDX20::NCIMXML
