// SPDX-License-Identifier: Apache-2.0
/// Fills a namespace in a line or two: classes with keys, and instances.
#ifndef TESTS_SUPPORT_CLASS_BUILDER_H_
#define TESTS_SUPPORT_CLASS_BUILDER_H_

#include <qdxdescribe/declaration.h>
#include <qdxrepository/repository.h>

namespace NVORNQDX20 {

using TNamespace = boost::shared_ptr<ICIMNamespace>;
using TProperties = std::vector<std::pair<std::string, TCIMValue>>;

/// A null string.
inline const TCIMValue kNoText(TCIMValue::TCIMType::kCIMTypeString, 0);

/// An empty namespace that knows the qualifiers Key, Association, Abstract and Override.
inline TNamespace MakeNamespace() {
  TNamespace ns = MakeRepositoryNamespace("test");
  for (const std::string name : {"Key", "Association", "Abstract", "Override"}) {
    const TCIMValue value = name == "Override" ? kNoText : TCIMValue(false);
    ns->CreateQualifierDecl(name, value, kScopeAny, kFlavorOverridable, {})->Commit();
  }
  return ns;
}

template <typename TElement>
TElement Qualify(const TNamespace& ns, const TElement& element, const std::string& name,
                 const TCIMValue& value) {
  element->AddQualifier(ns->GetQualifierDecl(name, {}), value)->Commit();
  return element;
}

/// A committed class; `keys` and `others` are its properties with their default values.
inline boost::shared_ptr<ICIMClass> AddClass(
    const TNamespace& ns, const std::string& name, const TProperties& keys,
    const TProperties& others = {}, const boost::shared_ptr<ICIMClass>& superclass = nullptr,
    bool isAssociation = false, bool isAbstract = false) {
  NDescribe::TClassDeclaration declaration{name, {}, {}, {}, isAbstract, isAssociation};
  if (superclass) declaration.fSuperclass = superclass->GetName({});
  for (const auto& [key, value] : keys) {
    declaration.fProperties.emplace_back(key, value);
    declaration.fProperties.back().fIsKey = true;
  }
  for (const auto& [other, value] : others) declaration.fProperties.emplace_back(other, value);
  return NDescribe::DeclareClass(*ns, declaration);
}

/// A committed class below another one, which has these properties, without qualifiers, too.
inline boost::shared_ptr<ICIMClass> AddDerived(const TNamespace& ns, const std::string& name,
                                               const boost::shared_ptr<ICIMClass>& superclass,
                                               const TProperties& own) {
  return AddClass(ns, name, {}, own, superclass);
}

/// A committed instance.
inline boost::shared_ptr<ICIMInstance> AddInstance(const TNamespace& ns,
                                                   const std::string& className,
                                                   const TProperties& values) {
  const auto added = ns->GetClass(className, {})->CreateInstance({});
  for (const auto& [name, value] : values) added->SetPropertyValue(name, value, {});
  added->Commit({});
  return added;
}

/// A reference to what stands at the path.
inline TCIMValue ReferenceTo(const TNamespace& ns, const std::string& path) {
  TCIMReference reference(ns, path, {});
  return TCIMValue(reference);
}

/// A null reference to a class.
inline TCIMValue NullReference(const TNamespace& ns, const std::string& className) {
  TCIMValue value(TCIMValue::TCIMType::kCIMTypeReference, 0);
  value.SetReferencedClass(ns->GetClass(className, {}));
  return value;
}

}  // namespace NVORNQDX20

#endif  // TESTS_SUPPORT_CLASS_BUILDER_H_
