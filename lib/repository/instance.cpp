// SPDX-License-Identifier: Apache-2.0
#include "instance.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <boost/smart_ptr/make_shared.hpp>

#include "class.h"
#include "failure_reasons.h"
#include "namespace.h"
#include "ownership.h"
#include "property.h"
#include "values.h"

namespace NVORNQDX20::NRepository {

TInstance::TInstance(TClass& cimClass)
    : fClass(cimClass), fValues(std::make_unique<TStoredValue[]>(cimClass.SlotCount())) {}

void TInstance::Commit(TOptionsMap) {
  if (!CommitIfNew()) throw Taken(Description());
}

bool TInstance::CommitIfNew() {
  if (fIsCommitted) throw CommittedAlready(Description());
  for (const std::size_t slot : fClass.GetKeySlots()) {
    const TStoredValue& key = fValues[slot];
    if (key.IsSet() ? key.IsNull() : fClass.InitialValueAt(slot).IsNull()) {
      throw TExplainedException(kQDXStatusInvalidInstance,
                                "an instance lacks its key, " + DeclAt(slot).Description());
    }
  }
  for (const std::size_t slot : fClass.GetKeySlots()) {
    // Store a key that comes from a static or default value, so that it does not change with it.
    TStoredValue& key = fValues[slot];
    if (!key.IsSet()) key = TStoredValue(fClass.InitialValueAt(slot), fClass);
  }
  fIsCommitted = fClass.AddInstance(shared_from_this());
  return fIsCommitted;
}

boost::shared_ptr<ICIMClass> TInstance::GetClass(TOptionsMap) const { return fClass.Handle(); }

boost::shared_ptr<ICIMProperty> TInstance::GetProperty(const std::string& name, TOptionsMap) const {
  return MakeProperty(fClass.SlotOf(name));
}

void TInstance::SetPropertyValue(const std::string& name, const TCIMValue& value, TOptionsMap) {
  const std::size_t slot = fClass.SlotOf(name);
  if (fIsCommitted && fClass.IsKeySlot(slot)) {
    throw TExplainedException(kQDXStatusInvalidOpSequence,
                              Description() + " is committed already: its key " +
                                  DeclAt(slot).GetName() + " cannot change");
  }
  const TPropertyDecl& decl = DeclAt(slot);
  RequireType(value.GetType(), decl.GetType(), decl);
  Store(slot, TStoredValue(value, fClass));
}

void TInstance::EnumerateProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                    TOptionsMap) const {
  for (std::size_t slot = 0; slot < fClass.SlotCount(); ++slot) {
    if (!callback(MakeProperty(slot))) return;
  }
}

void TInstance::ReadValue(std::size_t slot, const TValueCallback& callback) const {
  const TStoredValue& stored = fValues[slot];
  const TCIMValue* const present =
      stored.IsSet() ? stored.FindBoxed() : &fClass.InitialValueAt(slot);
  if (present != nullptr && !HoldsReferences(present->GetType())) return callback(*present);
  callback(BoundValueAt(slot));
}

std::string TInstance::Description() const {
  TCIMReference path(nullptr, {});
  path.SetClass(fClass.Handle());
  for (const std::size_t slot : fClass.GetKeySlots()) {
    path.AddKeyValue(DeclAt(slot).GetName(), BoundValueAt(slot));
  }
  return "instance " + path.GetPath();
}

TNamespace& TInstance::GetNamespace() const { return fClass.GetNamespace(); }

TPropertyDecl& TInstance::DeclAt(std::size_t slot) const { return fClass.DeclAt(slot); }

const TCIMValue& TInstance::ValueAt(std::size_t slot) const {
  TStoredValue& stored = fValues[slot];
  return stored.IsSet() ? stored.Get(DeclAt(slot).GetType()) : fClass.InitialValueAt(slot);
}

TCIMValue TInstance::BoundValueAt(std::size_t slot) const {
  const TStoredValue& stored = fValues[slot];
  if (stored.IsSet()) return stored.ToValue(DeclAt(slot).GetType(), GetNamespace());
  return BoundCopy(fClass.InitialValueAt(slot), GetNamespace());
}

boost::shared_ptr<TInstance> TInstance::Handle() const {
  const auto self = boost::const_pointer_cast<TInstance>(shared_from_this());
  if (!fIsCommitted) return HoldWithNamespace(GetNamespace().Handle(), self);
  return boost::shared_ptr<TInstance>(GetNamespace().Handle(), self.get());
}

boost::shared_ptr<ICIMProperty> TInstance::MakeProperty(std::size_t slot) const {
  return boost::make_shared<TProperty<TInstance>>(Handle(), slot);
}

}  // namespace NVORNQDX20::NRepository
