// SPDX-License-Identifier: Apache-2.0
#include "instance_reader.h"

#include <qdxcore/status.h>

#include "object_path.h"
#include "value_reader.h"

namespace NVORNQDX20::NCIMXML {
namespace {

void SetProperty(TNamespaceBuilder& ns, const ICIMClass& cimClass, ICIMInstance& target,
                 const TElement& property) {
  const std::string& name = property.Get("NAME");
  const TCIMType declared = DeclOf(cimClass, name, property)->GetType();
  const TCIMType type = TypeOfProperty(property);
  if (type != declared) {
    property.Refuse("property " + Shown(name) + " is declared with another type");
  }
  target.SetPropertyValue(name, ReadPropertyValue(ns, property), {});
}

void SetKeysFromName(TNamespaceBuilder& ns, const ICIMClass& cimClass, ICIMInstance& target,
                     const TElement& name) {
  for (const TKeyBinding& binding : KeyBindingsOf(name)) {
    const std::string& key = binding.fName.empty() ? OnlyKeyOf(cimClass, name) : binding.fName;
    const TCIMType type = DeclOf(cimClass, key, *binding.fValue)->GetType();
    target.SetPropertyValue(key, ReadKeyValue(ns, type, *binding.fValue), {});
  }
}

}  // namespace

const TElement& InstanceOf(const TElement& object) {
  if (object.Is("INSTANCE")) return object;
  const TElement* const instance = object.Child("INSTANCE");
  if (instance == nullptr) object.Refuse("an object without instance");
  return *instance;
}

void ReadInstance(TNamespaceBuilder& ns, const TElement& object) {
  const TElement& instance = InstanceOf(object);
  const std::string& className = instance.Get("CLASSNAME");
  const TReadClass read = ns.ClassNamed(className, object);
  constexpr std::size_t kInstanceBytes = 128;
  ns.State().AddHeld(kInstanceBytes, instance);
  ns.State().AddValues(read.fProperties, instance);
  AsPartOf(instance, "instance of " + Shown(className), [&] {
    const auto created = read.fClass->CreateInstance({});
    const TElement* const name = FindName(object);
    if (name != nullptr) SetKeysFromName(ns, *read.fClass, *created, *name);
    for (const TElement& child : instance.fChildren) {
      // An instance has no qualifiers of its own.
      if (!child.Is("QUALIFIER")) SetProperty(ns, *read.fClass, *created, child);
    }
    created->Commit({});
  });
}

}  // namespace NVORNQDX20::NCIMXML
