// SPDX-License-Identifier: Apache-2.0
// Reads instances.
#include "object_readers.h"

#include <qdxcore/status.h>
#include <qdxmodel/names.h>

#include <string>

#include "object_path.h"
#include "value_reader.h"

namespace NVORNQDX20::NCIMXML {
namespace {

/// Reads one instance and adds it to the namespace.
class TInstanceReader {
 public:
  TInstanceReader(TNamespaceReader& ns, const boost::shared_ptr<ICIMClass>& cimClass,
                  const TElement& instance)
      : fNamespace(ns),
        fClass(*cimClass),
        fElement(instance),
        fTarget(cimClass->CreateInstance({})) {}

  void SetKeysFromName(const TElement& name) {
    if (!NModel::EqualIgnoringCase(ClassNameOf(name), fElement.Get("CLASSNAME"))) {
      fIsContradictory = true;
    }
    for (const TKeyBinding& binding : KeyBindingsOf(name)) {
      const std::string& key = binding.fName.empty() ? OnlyKeyOf(fClass, name) : binding.fName;
      const TCIMType type = DeclOf(fClass, key, *binding.fValue)->GetType();
      const TCIMValue value = ReadKeyValue(fNamespace, type, *binding.fValue);
      fTarget->SetPropertyValue(key, value, {});
      fKeys.emplace(key, value);
    }
  }

  void SetProperty(const TElement& property) {
    const std::string& name = property.Get("NAME");
    const TCIMType declared = DeclOf(fClass, name, property)->GetType();
    if (TypeOfProperty(property) != declared) {
      property.Refuse("property " + Shown(name) + " is declared with another type");
    }
    const TCIMValue value = ReadPropertyValue(fNamespace, property);
    const auto key = fKeys.empty() ? fKeys.end() : fKeys.find(name);
    if (key != fKeys.end()) {
      if (value.IsNull()) return;
      if (value != key->second) fIsContradictory = true;
    }
    fTarget->SetPropertyValue(name, value, {});
  }

  void Commit() {
    if (fIsContradictory) fNamespace.GetState().fContradictions.Add(Place());
    try {
      fTarget->Commit({});
    } catch (const TQDXException& e) {
      if (e.GetStatusCode() != kQDXStatusAlreadyExists) throw;
      fNamespace.GetState().fDuplicates.Add(Place());
    }
  }

 private:
  std::string Place() const { return "line " + std::to_string(fElement.fPosition.fLine); }

  TNamespaceReader& fNamespace;
  const ICIMClass& fClass;
  const TElement& fElement;
  const boost::shared_ptr<ICIMInstance> fTarget;
  bool fIsContradictory = false;      // a property contradicts the instance's name
  NModel::TNameMap<TCIMValue> fKeys;  // from the instance's name
};

}  // namespace

const TElement& InstanceOf(const TElement& object) {
  if (object.Is("INSTANCE")) return object;
  const TElement* const instance = object.Child("INSTANCE");
  if (instance == nullptr) object.Refuse("an object without instance");
  return *instance;
}

void ReadInstance(TNamespaceReader& ns, const TElement& object) {
  const TElement& instance = InstanceOf(object);
  const std::string& className = instance.Get("CLASSNAME");
  const TReadClass read = ns.ClassNamed(className, object);
  constexpr std::size_t kInstanceBytes = 128;
  ns.GetState().AddHeld(kInstanceBytes, instance);
  ns.GetState().AddValues(read.fProperties, instance);
  AsPartOf(instance, "instance of " + Shown(className), [&] {
    TInstanceReader reader(ns, read.fClass, instance);
    const TElement* const name = FindName(object);
    if (name != nullptr) reader.SetKeysFromName(*name);
    for (const TElement& child : instance.fChildren) {
      // Qualifiers of instances are ignored.
      if (!child.Is("QUALIFIER")) reader.SetProperty(child);
    }
    reader.Commit();
  });
}

}  // namespace NVORNQDX20::NCIMXML
