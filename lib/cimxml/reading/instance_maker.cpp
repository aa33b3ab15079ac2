// SPDX-License-Identifier: Apache-2.0
// Makes instances.
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "class_table.h"
#include "object_makers.h"
#include "object_path.h"
#include "value_reader.h"
#include "xml/literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

bool IsReal(TCIMType type) {
  return type == TCIMType::kCIMTypeReal32 || type == TCIMType::kCIMTypeReal64;
}

/// Makes one instance and adds it to the namespace. Texts and numbers, which most values are, go
/// from the document into the instance without a TCIMValue.
class TInstanceMaker {
 public:
  TInstanceMaker(TSpace& space, const ICIMClass& cimClass, TClassTable& table,
                 const TElement& instance)
      : fSpace(space), fClass(cimClass), fTable(table), fElement(instance) {
    fTable.Begin();
  }

  void SetKeysFromName(const TElement& name) {
    if (!NModel::EqualIgnoringCase(ClassNameOf(name), fElement.Get("CLASSNAME"))) {
      fIsContradictory = true;
    }
    GetKeyBindings(name, fTable.fBindings);
    std::size_t place = 0;
    for (const TKeyBinding& binding : fTable.fBindings) {
      const TSlot* const slot = binding.HasName()
                                    ? fTable.FindNext(*binding.fName, fTable.fKeyOrder, place++)
                                    : fTable.Find(OnlyKeyOf(fClass, name));
      if (slot == nullptr) {  // other keys than the declared ones
        fIsContradictory = true;
      } else {
        SetKey(*slot, *binding.fValue);
      }
    }
  }

  void SetProperty(const TElement& property) {
    const TSlot& slot = SlotOf(property);
    AddGiven(slot, property);
    if (FindEmbeddedObject(property) != nullptr) RequireEmbedded(*slot.fDecl, property);
    const TKey* const key = FindKey(slot);
    if (!IsPlain(slot)) {
      if (key != nullptr || !SetTime(slot, property)) SetOtherValue(slot, key, property);
    } else if (key == nullptr) {
      const TElement* const usual = FindUsualValue(property);
      const TElement* const value = usual != nullptr ? usual : FindScalar(fSpace, property);
      if (value == nullptr || !SetPlainValue(slot, *value, property)) {
        fTable.fAdder.SetNull(slot.fPosition);
      }
    } else if (HasTextOf(*key, property)) {
      SetKeyAgain(slot, property.fChildren.front(), property);
    } else {
      SetOtherValue(slot, key, property);
    }
  }

  void Commit(bool isNameOnly) {
    const auto instance = fUnheld.empty() ? nullptr : fTable.fAdder.GetInstance();
    if (!fTable.fAdder.Commit()) {
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
    fSpace.GetMemory().AddHeld(fSpace.Reasons().Add(fClass, *instance, fUnheld), fElement);
  }

 private:
  using TSlot = TClassTable::TSlot;
  using TKey = TClassTable::TKey;
  using TGiven = TClassTable::TGiven;

  static bool IsPlain(const TSlot& slot) { return slot.fIsText || slot.fIsNumber; }

  const TSlot& SlotOf(const TElement& property) {
    const std::string& name = property.Get("NAME");
    const TSlot* const slot = fTable.FindNext(name, fTable.fPropertyOrder, fTable.fGiven.size());
    const std::string* const keyword = property.Find("TYPE");
    const bool isDeclared = slot != nullptr && (IsPlain(*slot) || slot->fIsTime) &&
                            property.Is("PROPERTY") && keyword != nullptr &&
                            *keyword == slot->fKeyword;
    if (isDeclared) return *slot;
    const TCIMType type = TypeOfProperty(property);
    if (slot == nullptr) {
      property.Refuse("class " + Shown(fClass.GetName({})) + " has no property " + Shown(name));
    }
    if (type != slot->fType) {
      property.Refuse("property " + Shown(name) + " is declared with another type");
    }
    return *slot;
  }

  const TKey* FindKey(const TSlot& slot) const {
    for (const TKey& each : fTable.fKeys) {
      if (each.fSlot == &slot) return &each;
    }
    return nullptr;
  }

  void SetKey(const TSlot& slot, const TElement& element) {
    if (FindKey(slot) != nullptr) {
      (void)ReadKeyValue(fSpace, slot.fType, element);
      fIsContradictory = true;
    } else if (IsPlain(slot) && element.Is("KEYVALUE")) {
      if (!SetPlainValue(slot, element, element)) element.Refuse("a key cannot be null");
      fTable.fKeys.push_back({&slot, &element, std::nullopt});
    } else {
      const TCIMValue value = ReadKeyValue(fSpace, slot.fType, element);
      fTable.fKeys.push_back({&slot, &element, value});
      fTable.fAdder.Set(slot.fPosition, value);
    }
  }

  /// Returns false, and sets nothing, for null.
  bool SetPlainValue(const TSlot& slot, const TElement& element, const TElement& holder) {
    if (IsNullText(fSpace, slot.fType, element, holder)) return false;
    if (!element.fChildren.empty()) RefuseText(slot.fType, element);
    if (slot.fIsText) {
      fTable.fAdder.SetText(slot.fPosition, element.fText);
    } else {
      const std::optional<TNumber> number = ReadNumber(slot.fType, element.fText);
      if (!number) RefuseText(slot.fType, element);
      fTable.fAdder.SetNumber(slot.fPosition, number->Bytes());
    }
    return true;
  }

  /// Returns the VALUE of a property that has nothing else, as most have; null of another one.
  static const TElement* FindUsualValue(const TElement& property) {
    constexpr std::size_t kUsual = 2;  // NAME and TYPE
    if (property.fAttributes.size() > kUsual || property.fChildren.size() != 1) return nullptr;
    const TElement& value = property.fChildren.front();
    return value.Is("VALUE") && value.fChildren.empty() ? &value : nullptr;
  }

  /// Returns whether the value of a property surely equals the key, which most documents repeat.
  static bool HasTextOf(const TKey& key, const TElement& property) {
    const TElement* const value = FindUsualValue(property);
    return value != nullptr && value->fText == key.fElement->fText &&
           !IsReal(key.fSlot->fType);  // one that is not a number does not equal itself
  }

  /// Sets a key to the value that its instance's name has.
  void SetKeyAgain(const TSlot& slot, const TElement& element, const TElement& holder) {
    if (fIsAscending) {
      (void)IsNullText(fSpace, slot.fType, element, holder);  // it is not, but takes memory
    } else {
      (void)SetPlainValue(slot, element, holder);  // it may have had another one in between
    }
  }

  /// Sets a date-time; returns false, and does nothing, if it is not the usual one.
  bool SetTime(const TSlot& slot, const TElement& property) {
    const TElement* const value = slot.fIsTime ? FindUsualValue(property) : nullptr;
    if (value == nullptr) return false;
    const auto time = ReadTime(value->fText);
    if (!time) return false;
    (void)IsNullText(fSpace, slot.fType, *value, property);  // it is not, but takes memory
    fTable.fAdder.SetTime(slot.fPosition, *time);
    return true;
  }

  /// Sets any value; `key` is what the name of the instance says, or null.
  void SetOtherValue(const TSlot& slot, const TKey* key, const TElement& property) {
    const TCIMValue value = ReadPropertyValue(fSpace, slot.fType, property);
    std::vector<TUnheldDateTime> unheld = FindUnheldDateTimes(value, property);
    if (!unheld.empty()) fUnheld.push_back({&property, std::move(unheld)});
    if (key != nullptr) {
      if (value.IsNull()) return;
      const auto& known = key->fValue ? key->fValue : ReadLiteral(slot.fType, key->fElement->fText);
      if (value != *known) fIsContradictory = true;
    }
    fTable.fAdder.Set(slot.fPosition, value);
  }

  /// The declaration keeps what a text is, so it is lost if the declaration is another one.
  void RequireEmbedded(const ICIMPropertyDecl& decl, const TElement& property) {
    if (StringKindOf(property) == NDescribe::StringKindOf(decl)) return;
    TCountedWarning& warning = fSpace.GetState().fNotEmbedded;
    warning.Add(warning.GetCount() == 0 ? PlaceOf(property, property) : std::string());
  }

  void AddGiven(const TSlot& slot, const TElement& property) {
    std::vector<TGiven>& given = fTable.fGiven;
    const bool isAfter = given.empty() || given.back().fSlot->fPosition < slot.fPosition;
    fIsAscending = fIsAscending && isAfter;
    given.push_back({&slot, &property});
  }

  void WarnOfRepeatedProperties() {
    if (fIsAscending) return;
    std::vector<TGiven>& given = fTable.fGiven;
    std::stable_sort(given.begin(), given.end(), [](const TGiven& left, const TGiven& right) {
      return left.fSlot->fPosition < right.fSlot->fPosition;
    });
    for (std::size_t i = 1; i < given.size(); ++i) {
      if (given[i].fSlot != given[i - 1].fSlot) continue;
      const TElement& property = *given[i].fElement;
      fSpace.GetState().Warn(property, "property " + Shown(property.Get("NAME")) +
                                           " is given twice; the last value is taken");
    }
  }

  TSpace& fSpace;
  const ICIMClass& fClass;
  TClassTable& fTable;
  const TElement& fElement;
  bool fIsContradictory = false;  // a property contradicts the instance's name
  bool fIsAscending = true;       // the properties have the order of the class, so none is repeated
  std::vector<TMissingReasons::TUnheld> fUnheld;
};

/// Returns what the instances of the class share, which is made for the first one.
TClassTable& TableOf(TSpace& space, const TReadClass& read, const TElement& instance) {
  if (!read.fTable) {
    constexpr std::size_t kSlotBytes = 160;
    read.fTable = std::make_shared<TClassTable>(read.fClass);
    space.GetMemory().AddHeld(read.fProperties * kSlotBytes, instance);
  }
  return *read.fTable;
}

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
    TInstanceMaker maker(space, *read.fClass, TableOf(space, read, instance), instance);
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
