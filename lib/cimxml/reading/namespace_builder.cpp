// SPDX-License-Identifier: Apache-2.0
#include "namespace_builder.h"

#include <algorithm>
#include <utility>

#include "object_path.h"
#include "value_reader.h"
#include "xml/document_limits.h"

namespace NVORNQDX20::NCIMXML {
namespace {

/// Of a container, for a name.
constexpr std::size_t kNodeBytes = 64;

bool MayHoldReference(const TElement& element) {
  return !element.Is("PROPERTY") && !element.Is("PROPERTY.ARRAY") && !element.Is("KEYVALUE");
}

/// Returns false if there is surely no reference in an instance or its name.
bool MayHaveReferences(const TElement& object) {
  for (const TElement& child : object.fChildren) {
    const bool isPlain = !MayHoldReference(child) || child.Is("QUALIFIER");
    const bool isKey = child.Is("KEYBINDING") && child.fChildren.size() == 1 &&
                       !MayHoldReference(child.fChildren.front());
    const bool isPart = child.Is("INSTANCE") || child.Is("INSTANCENAME");
    const bool hasNone = isPlain || isKey || (isPart && !MayHaveReferences(child));
    if (!hasNone) return true;
  }
  return false;
}

/// Returns the class in the name within a reference; null if there is none.
const std::string* FindClassName(const TElement& name) {
  return name.Find(name.Is("CLASSNAME") ? "NAME" : "CLASSNAME");
}

/// Returns the class that a reference property must refer to, whether it has a value or not; null
/// if it names none. The value of a class is enough: it may refer to another namespace, and then
/// the class is there.
const std::string* FindPropertyClass(const TElement& property, bool isOfInstance) {
  if (!property.Is("PROPERTY.REFERENCE")) return nullptr;
  const bool isUsed = isOfInstance || FindValueOf(property) == nullptr;
  return isUsed ? property.Find("REFERENCECLASS") : nullptr;
}

/// Calls `visit(builder, className, element)` for each class that the references within the object
/// name, also in keys of other references, until it returns false. The element is the name in a
/// reference, or a reference property. Returns whether all were visited.
template <typename TVisit>
bool ForEachReference(IBuilders& builders, TNamespaceBuilder& own, const TElement& object,
                      TVisit&& visit) {
  const bool isInstance = FindInstance(object) != nullptr;
  std::vector<std::pair<const TElement*, TNamespaceBuilder*>> open{{&object, &own}};
  while (!open.empty()) {
    const auto [element, builder] = open.back();
    open.pop_back();
    const std::string* const propertyClass = FindPropertyClass(*element, isInstance);
    if (propertyClass != nullptr && !visit(*builder, *propertyClass, *element)) return false;
    for (const TElement& child : element->fChildren) {
      if (!MayHoldReference(child)) continue;
      if (!child.Is("VALUE.REFERENCE")) {
        open.emplace_back(&child, builder);
        continue;
      }
      const TElement* const name = FindName(child);
      if (name == nullptr) continue;
      TNamespaceBuilder& target = builders.BuilderOf(child, *builder);
      const std::string* const className = FindClassName(*name);
      if (className != nullptr && !visit(target, *className, *name)) return false;
      open.emplace_back(name, &target);
    }
  }
  return true;
}

std::string Undeclared(const std::string& name) {
  return "class " + Shown(name) + ", which is not declared,";
}

/// A property with its name and whether it is a key.
TSubclass SubclassOf(const TElement& cimClass, const TSubclass* parent) {
  TSubclass subclass{&cimClass, parent, parent == nullptr ? 1 : parent->fDepth + 1, {}};
  for (const TElement& child : cimClass.fChildren) {
    const std::string* const name = IsProperty(child) ? child.Find("NAME") : nullptr;
    if (name != nullptr) subclass.fProperties[*name] = IsQualified(child, "Key");
  }
  return subclass;
}

bool HasKeys(const TSubclass& subclass) {
  return std::any_of(subclass.fProperties.begin(), subclass.fProperties.end(),
                     [](const auto& property) { return property.second; });
}

}  // namespace

template <typename TWork>
bool TNamespaceBuilder::Attempt(const TElement& object, TWork&& work) {
  const TDefects::TMaking making(GetState().fDefects, *this, object);
  try {
    work();
    return true;
  } catch (const TDocumentError& error) {
    if (error.fIsFatal) throw;
    const bool isShown = GetState().fLeftOut.HasRoom() || GetState().fDefects.AreWanted();
    GetState().LeaveOut(isShown ? Described(*this, object) : "", error);
    return false;
  }
}

void TNamespaceBuilder::AddQualifierDecl(const TElement& element) {
  Attempt(element, [&] { MakeQualifierDecl(*this, element); });
}

void TNamespaceBuilder::AddClass(TElement&& element, std::size_t bytes) {
  Attempt(element, [&] {
    const std::string& name = element.Get("NAME");
    if (Declares(name)) element.Refuse("it is declared twice");
    GetMemory().BeginObject(0);
    GetMemory().AddHeld(bytes + 3 * (kNodeBytes + name.size()), element);
    fDeclared.emplace(name, true);
    fSourceOrder.push_back(name);
    TElement& source = fSources[name].fElement;
    source = Compact(std::move(element), bytes);
    const std::string* const superclass = source.Find("SUPERCLASS");
    if (superclass == nullptr) return;
    GetMemory().AddHeld(kNodeBytes + superclass->size(), source);
    fSubclasses[*superclass].push_back(&source);
  });
}

bool TNamespaceBuilder::Declares(const std::string& className) const {
  return fDeclared.count(className) != 0;
}

void TNamespaceBuilder::AddInstance(TElement&& object, std::size_t bytes) {
  Attempt(object, [&] {
    if (IsReady(object)) {
      MakeInstance(*this, object);
    } else {
      Wait(fWaitingInstances, std::move(object), bytes);
    }
  });
}

void TNamespaceBuilder::AddInstanceName(TElement&& object, std::size_t bytes) {
  Wait(fInstanceNames, std::move(object), bytes);
}

void TNamespaceBuilder::Wait(std::deque<TElement>& queue, TElement&& object, std::size_t bytes) {
  GetMemory().BeginObject(0);
  GetMemory().AddHeld(bytes, object);
  queue.push_back(Compact(std::move(object), bytes));
}

bool TNamespaceBuilder::IsReady(const TElement& object) {
  const std::string& name = FindInstance(object)->Get("CLASSNAME");
  if (!MakeClassIfPossible(name)) return false;
  const TReadClass& read = *FindClass(name);
  if (read.fIsUnresolved && read.fIsChosen) return false;  // its keys may have such a value
  if (!MayHaveReferences(object)) return true;
  return ForEachReference(fBuilders, *this, object,
                          [](TNamespaceBuilder& target, const std::string& className, auto&) {
                            return target.MakeClassIfPossible(className);
                          });
}

bool TNamespaceBuilder::MakeClassIfPossible(const std::string& name) {
  std::vector<std::string> chain;
  for (const std::string* next = &name; next != nullptr && FindClass(*next) == nullptr;) {
    const auto source = fSources.find(*next);
    const bool isPossible =
        source != fSources.end() && !source->second.fIsFaulty && chain.size() < kMaxClassDepth;
    if (!isPossible) return false;
    chain.push_back(*next);
    next = source->second.fElement.Find("SUPERCLASS");
  }
  return std::all_of(chain.rbegin(), chain.rend(),
                     [this](const std::string& each) { return MakeDeclared(each); });
}

bool TNamespaceBuilder::MakeDeclared(const std::string& name) {
  TSource& source = fSources.at(name);
  source.fIsFaulty = !Attempt(source.fElement, [&] { NCIMXML::MakeClass(*this, source.fElement); });
  if (source.fIsFaulty) return false;
  if (!fKeepsSources) fSources.erase(name);
  return true;
}

void TNamespaceBuilder::MakeClass(const std::string& name, const TElement& usedBy) {
  ++fWalk;
  std::vector<std::string> chain;  // what is not made yet, from the class up
  const std::string* next = &name;
  while (next != nullptr && FindClass(*next) == nullptr) {
    const auto found = fSources.find(*next);
    if (found == fSources.end() || found->second.fIsFaulty) break;
    TSource& source = found->second;
    if (std::exchange(source.fWalk, fWalk) == fWalk) {
      source.fIsFaulty = !Attempt(
          source.fElement, [&source] { source.fElement.Refuse("it is derived from itself"); });
      break;
    }
    chain.push_back(*next);
    next = source.fElement.Find("SUPERCLASS");
  }
  // The name may be an attribute of a class that is erased when it is made.
  const bool isRooted = next == nullptr || FindClass(*next) != nullptr;
  if (!isRooted) MakeUndeclared(std::string(*next), usedBy);
  for (auto each = chain.rbegin(); each != chain.rend(); ++each) {
    const bool isMade = FindClass(*each) != nullptr || MakeDeclared(*each);
    const bool isNeeded = &*each != &chain.front() || fUses.count(*each) != 0;
    if (!isMade && isNeeded) MakeUndeclared(*each, usedBy);
  }
}

void TNamespaceBuilder::AddUses(const std::string& name, const TSubclass* subclass,
                                std::vector<TClassUse>& uses) {
  const auto noted = fUses.find(name);
  if (noted == fUses.end()) return;
  for (const TElement* use : noted->second.fElements) uses.push_back({use, subclass});
}

void TNamespaceBuilder::MakeUndeclared(const std::string& name, const TElement& usedBy) {
  try {
    MakeFromUses(name, usedBy);
  } catch (const TDocumentError& error) {
    if (error.fIsFatal) throw;
    GetState().LeaveOut(Undeclared(name), error);
  }
}

void TNamespaceBuilder::MakeFromUses(const std::string& name, const TElement& usedBy) {
  std::vector<TClassUse> uses;
  AddUses(name, nullptr, uses);
  bool mayHaveKeys = true;
  NModel::TNameMap<bool> seen{{name, true}};
  std::deque<TSubclass> subclasses;
  const auto addSubclasses = [&](const std::string& superclass, const TSubclass* parent) {
    const auto found = fSubclasses.find(superclass);
    if (found == fSubclasses.end()) return;
    for (const TElement* each : found->second) {
      if (!seen.emplace(each->Get("NAME"), true).second) continue;
      subclasses.push_back(SubclassOf(*each, parent));
      AddUses(each->Get("NAME"), &subclasses.back(), uses);
      mayHaveKeys = mayHaveKeys && !HasKeys(subclasses.back());
    }
  };
  addSubclasses(name, nullptr);
  // Deeper ones cannot be made; to look at them for each class that is left out would take the
  // square of their number.
  for (std::size_t i = 0; i < subclasses.size(); ++i) {
    if (subclasses[i].fDepth >= kMaxClassDepth) break;
    addSubclasses(subclasses[i].fElement->Get("NAME"), &subclasses[i]);
  }
  MakeUndeclaredClass(*this, name, usedBy, uses, mayHaveKeys);
}

TNamespaceBuilder::TUses& TNamespaceBuilder::NoteUse(const std::string& className,
                                                     const TElement& usedBy) {
  const auto [noted, isNew] = fUses.try_emplace(className);
  if (isNew) {
    GetMemory().AddHeld(2 * (kNodeBytes + className.size()), usedBy);
    noted->second.fFirst = &usedBy;
    fUseOrder.push_back(className);
  }
  return noted->second;
}

void TNamespaceBuilder::NoteUsesIn(const TElement& object) {
  try {
    const TElement* const instance = FindInstance(object);
    if (instance != nullptr) {
      NoteUse(instance->Get("CLASSNAME"), object).fElements.push_back(&object);
    }
    const auto note = [](TNamespaceBuilder& target, const std::string& className, auto& name) {
      TUses& uses = target.NoteUse(className, name);
      if (!IsProperty(name)) uses.fElements.push_back(&name);
      return true;
    };
    ForEachReference(fBuilders, *this, object, note);
  } catch (const TDocumentError& error) {
    // The fault is recorded when the object is made.
    if (error.fIsFatal) throw;
  }
}

void TNamespaceBuilder::NoteUses() {
  fKeepsSources = true;
  for (const TElement& object : fWaitingInstances) NoteUsesIn(object);
  for (const TElement& object : fInstanceNames) NoteUsesIn(object);
  for (const std::string& name : fSourceOrder) {
    const auto source = fSources.find(name);
    if (source != fSources.end()) NoteUsesIn(source->second.fElement);
  }
  for (const TUnresolved& each : Unresolved()) NoteUsesIn(each.fSource);
}

void TNamespaceBuilder::MakeClasses() {
  GetMemory().BeginObject(0);
  for (const std::string& name : fSourceOrder) {
    const auto source = fSources.find(name);
    const bool isWaiting =
        source != fSources.end() && !source->second.fIsFaulty && FindClass(name) == nullptr;
    if (isWaiting) MakeClass(name, source->second.fElement);
  }
  for (const std::string& name : fUseOrder) {
    if (FindClass(name) == nullptr) MakeClass(name, *fUses.at(name).fFirst);
  }
}

void TNamespaceBuilder::ResolveReferences() {
  for (const TUnresolved& each : Unresolved()) {
    GetMemory().BeginObject(0);
    TElement owner;
    owner.fName = "CLASS";
    owner.fAttributes = {{"NAME", each.fClass->GetName({})}};
    const TDefects::TMaking making(GetState().fDefects, *this, owner);
    try {
      Resolve(*this, each);
    } catch (const TDocumentError& error) {
      if (error.fIsFatal) throw;
      GetState().LeaveOut("the value of property " + Shown(each.fProperty) + " of class " +
                              Shown(each.fClass->GetName({})),
                          error);
    }
  }
  Unresolved().clear();
}

void TNamespaceBuilder::MakeInstances() {
  for (std::deque<TElement>* queue : {&fWaitingInstances, &fInstanceNames}) {
    for (const TElement& object : *queue) {
      GetMemory().BeginObject(0);
      Attempt(object, [&] { MakeInstance(*this, object); });
    }
  }
}

}  // namespace NVORNQDX20::NCIMXML
