// SPDX-License-Identifier: Apache-2.0
#include "class.h"

#include <qdxcore/copy.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxmodel/type.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include <boost/smart_ptr/make_shared.hpp>

#include "instance.h"
#include "namespace.h"
#include "ownership.h"
#include "values.h"

namespace NVORNQDX20::NRepository {

TClass::TClass(TNamespace& ns, const std::string& name, TClass* superclass)
    : fNamespace(ns),
      fName(name),
      fSuperclass(superclass),
      fQualifiers(*this, *this, superclass == nullptr ? nullptr : &superclass->fQualifiers) {
  RequireCIMName(name);
  if (superclass != nullptr) fProperties = superclass->fProperties;
}

boost::shared_ptr<ICIMQualifier> TClass::AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                      const TCIMValue& value) {
  return fQualifiers.Add(decl, value);
}

void TClass::Commit(TOptionsMap) {
  fQualifiers.RequireOpen();
  std::vector<std::size_t> keySlots = FindKeySlots();
  std::vector<TStoredValue::TType> keyTypes;
  keyTypes.reserve(keySlots.size());
  for (const std::size_t slot : keySlots) keyTypes.push_back(DeclAt(slot).GetType());
  const bool isAbstract = IsAbstract({});
  fNamespace.Add(shared_from_this());
  fInstances.SetKeySlots(std::move(keySlots), std::move(keyTypes));
  fIsAbstract = isAbstract;
  fIsCommitted = true;
}

const std::string& TClass::GetName(TOptionsMap) const { return fName; }

bool TClass::IsAssociation(TOptionsMap) const {
  const TClass* cimClass = this;
  while (cimClass != nullptr && !cimClass->fQualifiers.IsTrue("Association")) {
    cimClass = cimClass->fSuperclass;
  }
  return cimClass != nullptr;
}

bool TClass::IsAbstract(TOptionsMap) const {
  return fIsCommitted ? fIsAbstract : fQualifiers.IsTrue("Abstract");
}

bool TClass::IsRootClass(TOptionsMap) const { return fSuperclass == nullptr; }

boost::shared_ptr<ICIMClass> TClass::GetSuperclass(TOptionsMap) const {
  if (fSuperclass == nullptr) return nullptr;
  return fSuperclass->Handle();
}

void TClass::EnumerateSubclasses(const TEnumerationCallback<ICIMClass>& callback, bool deep,
                                 TOptionsMap) const {
  std::vector<const TClass*> classes(fSubclasses.begin(), fSubclasses.end());
  if (deep) {
    classes = WithDescendants();
    classes.erase(classes.begin());
  }
  for (const TClass* cimClass : classes) {
    if (!callback(cimClass->Handle())) return;
  }
}

boost::shared_ptr<ICIMQualifier> TClass::GetQualifier(const std::string& name) const {
  return fQualifiers.Handle(fQualifiers.Find(name));
}

void TClass::EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const {
  fQualifiers.Enumerate(callback);
}

boost::shared_ptr<ICIMPropertyDecl> TClass::CreatePropertyDecl(const std::string& name,
                                                               const TCIMValue& defaultValue,
                                                               TOptionsMap) {
  fQualifiers.RequireOpen();
  const TCIMValue::TCIMType type = defaultValue.GetType();
  if (!IsDeclarable(type)) throw Undeclarable("property " + name + " of " + Description(), type);
  fOwnProperties.push_back(
      std::make_unique<TPropertyDecl>(*this, name, defaultValue, fProperties.Find(name)));
  return fOwnProperties.back()->Handle();
}

boost::shared_ptr<const ICIMPropertyDecl> TClass::GetPropertyDecl(const std::string& name,
                                                                  TOptionsMap) const {
  return DeclAt(SlotOf(name)).Handle();
}

void TClass::EnumeratePropertyDecls(const TEnumerationCallback<ICIMPropertyDecl>& callback,
                                    TOptionsMap) const {
  fProperties.ForEach([&](TPropertyDecl& decl) { return callback(decl.Handle()); });
}

void TClass::SetStaticPropertyValue(const std::string& name, const TCIMValue& value, TOptionsMap) {
  const std::size_t slot = SlotOf(name);
  const TPropertyDecl& decl = DeclAt(slot);
  RequireType(value.GetType(), decl.GetType(), decl);
  Replace(fStaticValues[slot], WeakCopy(value, *this));
}

void TClass::EnumerateStaticProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                       TOptionsMap) const {
  for (const auto& [slot, value] : fStaticValues) {
    if (!callback(boost::make_shared<TProperty<TClass>>(Handle(), slot))) return;
  }
}

boost::shared_ptr<ICIMInstance> TClass::CreateInstance(TOptionsMap) {
  if (!fIsCommitted) {
    throw TExplainedException(kQDXStatusInvalidOpSequence,
                              Description() + " is not committed: it cannot have instances yet");
  }
  if (fIsAbstract) {
    throw TExplainedException(kQDXStatusInvalidClass,
                              Description() + " is abstract: it cannot have instances of its own");
  }
  std::unique_ptr<TInstance> instance = TInstance::Make(*this);
  boost::shared_ptr<ICIMInstance> handle = instance->Handle();
  (void)instance.release();  // the handle owns it now
  return handle;
}

boost::shared_ptr<ICIMInstance> TClass::GetInstance(const TCIMReference& path, TOptionsMap) const {
  const auto& bindings = path.GetBody()->GetKeyBindings();
  if (bindings.size() != GetKeySlots().size()) return nullptr;
  TWantedKey few[4];  // without memory of their own for most classes
  std::vector<TWantedKey> many(bindings.size() > std::size(few) ? bindings.size() : 0);
  TWantedKey* const keys = many.empty() ? few : many.data();
  for (const auto& [name, value] : bindings) {
    const std::size_t slot = FindSlot(name);
    const auto key = std::find(GetKeySlots().begin(), GetKeySlots().end(), slot);
    if (key == GetKeySlots().end() || value.IsNull() || value.GetType() != DeclAt(*key).GetType()) {
      return nullptr;
    }
    keys[static_cast<std::size_t>(key - GetKeySlots().begin())].Set(value, *this);
  }
  TInstance* const found = fInstances.Find(keys);
  return found == nullptr ? nullptr : found->Handle();
}

void TClass::EnumerateInstances(const TEnumerationCallback<ICIMInstance>& callback, bool deep,
                                TOptionsMap) const {
  const std::vector<const TClass*> classes =
      deep ? WithDescendants() : std::vector<const TClass*>{this};
  for (const TClass* cimClass : classes) {
    if (!cimClass->fInstances.ForEach([&](TInstance& i) { return callback(i.Handle()); })) return;
  }
}

boost::shared_ptr<ICIMMethodDecl> TClass::CreateMethodDecl(const std::string& name,
                                                           TCIMValue::TCIMType returnType,
                                                           TOptionsMap) {
  fQualifiers.RequireOpen();
  auto method = std::make_unique<TMethodDecl>(*this, name, returnType, FindInheritedMethod(name));
  ReserveOne(fOwnMethods);
  if (!fMethods.Add(*method)) throw Taken(method->Description());
  fOwnMethods.push_back(std::move(method));
  return boost::shared_ptr<ICIMMethodDecl>(Handle(), fOwnMethods.back().get());
}

void TClass::EnumerateMethodDecls(const TEnumerationCallback<ICIMMethodDecl>& callback,
                                  TOptionsMap) const {
  fMethods.ForEach([&](TMethodDecl& method) {
    return callback(boost::shared_ptr<ICIMMethodDecl>(Handle(), &method));
  });
}

boost::shared_ptr<TClass> TClass::MakeHandle() const {
  boost::shared_ptr<TClass> handle =
      HoldWithNamespace(fNamespace.Handle(), boost::const_pointer_cast<TClass>(shared_from_this()));
  fHandle = handle;
  return handle;
}

void TClass::AddProperty(TPropertyDecl& decl) {
  if (fProperties.Add(decl)) return;
  const std::size_t slot = SlotOf(decl.GetName());
  const TPropertyDecl& present = DeclAt(slot);
  if (&present.GetOwner() == this) throw Taken(present.Description());
  if (present.GetType() != decl.GetType()) {
    throw TExplainedException(kQDXStatusTypeMismatch,
                              decl.Description() + " is " + NModel::TypeText(decl.GetType()) +
                                  ", but overrides a " + NModel::TypeText(present.GetType()) +
                                  " of " + present.GetOwner().Description());
  }
  fProperties.Replace(slot, decl);
}

boost::shared_ptr<ICIMInstance> TClass::CopyInstance(const TInstance& source) {
  // Otherwise the copier does it by the operations, of which one fails.
  if (fIsAbstract || !HasSlotsOf(source.GetOwner())) return nullptr;
  std::unique_ptr<TInstance> copy = TInstance::Make(*this);
  for (std::size_t slot = 0; slot < source.GetOwner().SlotCount(); ++slot) {
    copy->Store(slot, [&](TStoredValue& stored) { stored = CopyValue(source, slot); });
  }
  copy->Commit({});
  return copy.release()->Handle();  // the class owns it now
}

bool TClass::HasSlotsOf(const TClass& other) const {
  if (other.SlotCount() > SlotCount()) return false;
  for (std::size_t slot = 0; slot < other.SlotCount(); ++slot) {
    const TPropertyDecl& decl = DeclAt(slot);
    const TPropertyDecl& another = other.DeclAt(slot);
    if (decl.GetType() != another.GetType() || decl.GetName() != another.GetName()) return false;
  }
  return true;
}

/// Returns the value of the same slot of another instance for one of this class.
TStoredValue TClass::CopyValue(const TInstance& source, std::size_t slot) const {
  const TStoredValue& stored = source.StoredAt(slot);
  if (stored.IsSet()) {
    TStoredValue copy = stored.CopyTo(DeclAt(slot).GetType(), fNamespace);
    if (copy.IsSet()) return copy;
  } else if (!HoldsReferences(DeclAt(slot).GetType())) {
    return TStoredValue(source.GetOwner().InitialValueAt(slot), *this);
  }
  return TStoredValue(TCIMCopy::CopyValue(source.BoundValueAt(slot), fNamespace.Handle()), *this);
}

std::size_t TClass::SlotOf(const std::string& name) const {
  const std::size_t slot = FindSlot(name);
  if (slot == kNoSlot) throw NotFound(*this, "property", name);
  return slot;
}

const TCIMValue& TClass::InitialValueAt(std::size_t slot) const {
  const TPropertyDecl& decl = DeclAt(slot);
  // A static value of a class above the declaring class belongs to the overridden declaration.
  for (const TClass* cimClass = this;; cimClass = cimClass->fSuperclass) {
    const auto found = cimClass->fStaticValues.find(slot);
    if (found != cimClass->fStaticValues.end()) return found->second;
    if (cimClass == &decl.GetOwner()) return decl.GetStoredDefault();
  }
}

TCIMValue TClass::BoundValueAt(std::size_t slot) const {
  return BoundCopy(ValueAt(slot), fNamespace);
}

bool TClass::IsKeySlot(std::size_t slot) const {
  return std::find(GetKeySlots().begin(), GetKeySlots().end(), slot) != GetKeySlots().end();
}

std::vector<std::size_t> TClass::FindKeySlots() const {
  std::vector<std::size_t> keys;
  if (fSuperclass != nullptr) keys = fSuperclass->GetKeySlots();
  const bool inheritsKeys = !keys.empty();
  for (std::size_t slot = 0; slot < SlotCount(); ++slot) {
    const TPropertyDecl& decl = DeclAt(slot);
    const bool isNew = &decl.GetOwner() == this && decl.IsKey() &&
                       std::find(keys.begin(), keys.end(), slot) == keys.end();
    if (!isNew) continue;
    const bool isArray = NModel::IsArray(decl.GetType());
    if (inheritsKeys || isArray) {
      throw TExplainedException(
          kQDXStatusInvalidClass,
          decl.Description() + " cannot be a key: " +
              (isArray ? "it is an array" : "the superclass has keys already"));
    }
    keys.push_back(slot);
  }
  return keys;
}

const TMethodDecl* TClass::FindInheritedMethod(const std::string& name) const {
  for (const TClass* cimClass = fSuperclass; cimClass; cimClass = cimClass->fSuperclass) {
    const TMethodDecl* const method = cimClass->fMethods.Find(name);
    if (method != nullptr) return method;
  }
  return nullptr;
}

std::vector<const TClass*> TClass::WithDescendants() const {
  std::vector<const TClass*> classes{this};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const std::vector<TClass*>& subclasses = classes[i]->fSubclasses;
    classes.insert(classes.end(), subclasses.begin(), subclasses.end());
  }
  return classes;
}

void TClass::SetReferenceDefault(const std::string& name, const TCIMValue& value) {
  TPropertyDecl& decl = DeclAt(SlotOf(name));
  if (&decl.GetOwner() != this) throw NotFound(*this, "own property", name);
  RequireType(value.GetType(), decl.GetType(), decl);
  decl.SetReferenceDefault(value);
}

}  // namespace NVORNQDX20::NRepository

namespace NVORNQDX20 {

void SetReferenceDefault(ICIMClass& cimClass, const std::string& property, const TCIMValue& value) {
  auto* const own = dynamic_cast<NRepository::TClass*>(&cimClass);
  if (own == nullptr) {
    throw TExplainedException(kQDXStatusInvalidClass,
                              "class " + cimClass.GetName({}) + " is not of this kind");
  }
  own->SetReferenceDefault(property, value);
}

}  // namespace NVORNQDX20
