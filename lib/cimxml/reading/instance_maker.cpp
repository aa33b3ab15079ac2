// SPDX-License-Identifier: Apache-2.0
// Makes instances.
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "object_makers.h"
#include "object_path.h"
#include "value_reader.h"

namespace NVORNQDX20::NCIMXML {
namespace {

/// Makes one instance and adds it to the namespace.
class TInstanceMaker {
 public:
  TInstanceMaker(TSpace& space, const boost::shared_ptr<ICIMClass>& cimClass,
                 const TElement& instance)
      : fSpace(space),
        fClass(*cimClass),
        fElement(instance),
        fTarget(cimClass->CreateInstance({})) {
    fGiven.reserve(instance.fChildren.size());
  }

  void SetKeysFromName(const TElement& name) {
    if (!NModel::EqualIgnoringCase(ClassNameOf(name), fElement.Get("CLASSNAME"))) {
      fIsContradictory = true;
    }
    for (const TKeyBinding& binding : KeyBindingsOf(name)) {
      const std::string& key = binding.fName.empty() ? OnlyKeyOf(fClass, name) : binding.fName;
      const auto decl = FindDecl(fClass, key);
      if (!decl) {  // other keys than the declared ones
        fIsContradictory = true;
        continue;
      }
      const TCIMValue value = ReadKeyValue(fSpace, decl->GetType(), *binding.fValue);
      if (!fKeys.emplace(key, value).second) {
        fIsContradictory = true;
        continue;
      }
      fTarget->SetPropertyValue(key, value, {});
    }
  }

  void SetProperty(const TElement& property) {
    const std::string& name = property.Get("NAME");
    const TCIMType type = TypeOfProperty(property);
    const auto decl = DeclOf(fClass, name, property);
    if (type != decl->GetType()) {
      property.Refuse("property " + Shown(name) + " is declared with another type");
    }
    fGiven.emplace_back(decl.get(), &property);
    if (FindEmbeddedObject(property) != nullptr) RequireEmbedded(*decl, property);
    const TCIMValue value = ReadPropertyValue(fSpace, property);
    std::vector<TUnheldDateTime> unheld = FindUnheldDateTimes(value, property);
    if (!unheld.empty()) fUnheld.push_back({&property, std::move(unheld)});
    const auto key = fKeys.empty() ? fKeys.end() : fKeys.find(name);
    if (key != fKeys.end()) {
      if (value.IsNull()) return;
      if (value != key->second) fIsContradictory = true;
    }
    fTarget->SetPropertyValue(name, value, {});
  }

  void Commit(bool isNameOnly) {
    if (!CommitTarget()) {
      if (isNameOnly) return;
      fElement.Refuse("another instance has the same keys");
    }
    if (fIsContradictory) {
      fSpace.GetState().fContradictions.Add("line " + std::to_string(fElement.fPosition.fLine));
      fSpace.GetState().fDefects.Add(fElement.fPosition,
                                     "it has another class or other keys than its name");
    }
    WarnOfRepeatedProperties();
    if (fUnheld.empty()) return;
    fSpace.GetMemory().AddHeld(fSpace.Reasons().Add(fClass, *fTarget, fUnheld), fElement);
  }

 private:
  /// The declaration keeps what a text is, so it is lost if the declaration is another one.
  void RequireEmbedded(const ICIMPropertyDecl& decl, const TElement& property) {
    if (StringKindOf(property) == NDescribe::StringKindOf(decl)) return;
    TCountedWarning& warning = fSpace.GetState().fNotEmbedded;
    warning.Add(warning.GetCount() == 0 ? PlaceOf(property, property) : std::string());
  }

  /// Returns false if there is such an instance.
  bool CommitTarget() {
    try {
      fTarget->Commit({});
      return true;
    } catch (const TQDXException& e) {
      if (e.GetStatusCode() != kQDXStatusAlreadyExists) throw;
      return false;
    }
  }

  void WarnOfRepeatedProperties() {
    if (!HasRepeatedProperties()) return;
    const auto byDecl = [](const auto& left, const auto& right) {
      return std::less<>()(left.first, right.first);
    };
    std::stable_sort(fGiven.begin(), fGiven.end(), byDecl);
    for (std::size_t i = 1; i < fGiven.size(); ++i) {
      if (fGiven[i].first != fGiven[i - 1].first) continue;
      const TElement& property = *fGiven[i].second;
      fSpace.GetState().Warn(property, "property " + Shown(property.Get("NAME")) +
                                           " is given twice; the last value is taken");
    }
  }

  /// Sorting takes longer than comparing a few. With many, returns true without a look.
  bool HasRepeatedProperties() const {
    constexpr std::size_t kFew = 32;
    if (fGiven.size() > kFew) return true;
    for (std::size_t i = 1; i < fGiven.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        if (fGiven[i].first == fGiven[j].first) return true;
      }
    }
    return false;
  }

  TSpace& fSpace;
  const ICIMClass& fClass;
  const TElement& fElement;
  const boost::shared_ptr<ICIMInstance> fTarget;
  bool fIsContradictory = false;      // a property contradicts the instance's name
  NModel::TNameMap<TCIMValue> fKeys;  // from the instance's name
  std::vector<std::pair<const ICIMPropertyDecl*, const TElement*>> fGiven;
  std::vector<TMissingReasons::TUnheld> fUnheld;
};

/// The keys that a message has.
constexpr std::size_t kMostKeys = 4;

/// Formats a value of a key for a message.
std::string ShownValue(const TElement& value) {
  return value.Is("VALUE.REFERENCE") ? "..." : Shown(value.fText);
}

/// The keys of an instance without name, as far as its class is known.
std::string KeysAmongProperties(const TSpace& space, const TElement& instance) {
  std::size_t count = 0;
  const std::string* const className = instance.Find("CLASSNAME");
  const TReadClass* const made = className == nullptr ? nullptr : space.FindClass(*className);
  std::string keys;
  if (made == nullptr) return keys;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(*made->fClass)) {
    if (!isKey) continue;
    if (++count > kMostKeys) return keys + ",...";
    for (const TElement& child : instance.fChildren) {
      const std::string* const name = IsProperty(child) ? child.Find("NAME") : nullptr;
      const TElement* const value = child.Child("VALUE");
      const bool isGiven =
          name != nullptr && value != nullptr && NModel::EqualIgnoringCase(*name, decl->GetName());
      if (!isGiven) continue;
      keys += (keys.empty() ? "." : ",") + *name + "=" + Shown(value->fText);
      break;
    }
  }
  return keys;
}

std::string KeysOfName(const TElement& name) {
  std::size_t count = 0;
  std::string keys;
  for (const TElement& child : name.fChildren) {
    const std::string* const key = child.Find("NAME");
    if (key == nullptr || child.fChildren.empty()) continue;
    keys += keys.empty() ? "." : ",";
    if (++count > kMostKeys) return keys + "...";
    keys += Plain(*key) + "=" + ShownValue(child.fChildren.front());
  }
  return keys;
}

}  // namespace

const TElement* FindInstance(const TElement& object) {
  return object.Is("INSTANCE") ? &object : object.Child("INSTANCE");
}

void MakeInstance(TSpace& space, const TElement& object) {
  const TElement& instance = *FindInstance(object);
  const TReadClass& read = space.GetClass(instance.Get("CLASSNAME"), instance);
  if (!read.fIsChosen) return;
  constexpr std::size_t kInstanceBytes = 128;
  space.GetMemory().AddHeld(kInstanceBytes, instance);
  space.GetMemory().AddValues(read.fProperties, instance);
  AsPartOf(instance, [&] {
    TInstanceMaker maker(space, read.fClass, instance);
    const TElement* const name = FindName(object);
    if (name != nullptr) maker.SetKeysFromName(*name);
    for (const TElement& child : instance.fChildren) {
      // Qualifiers of instances are ignored.
      if (!child.Is("QUALIFIER")) maker.SetProperty(child);
    }
    // The document may have the whole instance, too.
    maker.Commit(object.Is("OBJECTPATH"));
  });
}

std::string Described(const TSpace& space, const TElement& object) {
  if (object.Is("CLASS") || object.Is("QUALIFIER.DECLARATION")) {
    const std::string* const name = object.Find("NAME");
    const std::string kind = object.Is("CLASS") ? "class" : "qualifier";
    return name == nullptr ? "a " + kind + " without name" : kind + " " + Shown(*name);
  }
  const TElement* const instance = FindInstance(object);
  const std::string* const className = instance == nullptr ? nullptr : instance->Find("CLASSNAME");
  if (className == nullptr) return "<" + std::string(object.fName) + ">";
  const TElement* const name = FindName(object);
  std::string keys = name == nullptr ? std::string() : KeysOfName(*name);
  if (keys.empty()) keys = KeysAmongProperties(space, *instance);
  return keys.empty() ? "an instance of class " + Shown(*className)
                      : "instance " + Plain(*className) + keys;
}

}  // namespace NVORNQDX20::NCIMXML
