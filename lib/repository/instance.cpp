// SPDX-License-Identifier: Apache-2.0
#include "instance.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <memory>
#include <utility>

#include <boost/smart_ptr/make_shared.hpp>

#include "class.h"
#include "failure_reasons.h"
#include "namespace.h"
#include "property.h"
#include "values.h"

namespace NVORNQDX20::NRepository {

/// A handle of an instance that was not committed when the handle was made.
class TInstance::THold {
 public:
  THold(boost::shared_ptr<TNamespace> ns, const TInstance& instance)
      : fNamespace(std::move(ns)), fInstance(instance) {
    ++fInstance.fHolds;
  }
  THold(const THold&) = delete;
  THold& operator=(const THold&) = delete;
  ~THold() {
    if (--fInstance.fHolds == 0 && !fInstance.fIsCommitted) delete &fInstance;
  }

 private:
  const boost::shared_ptr<TNamespace> fNamespace;  // has the class: outlives the instance
  const TInstance& fInstance;
};

/// A property without a piece of memory for each caller: it lives as long as its instance.
class TInstance::TReadProperty final : public TReadValue {
 public:
  TReadProperty(const TInstance& instance, std::size_t slot)
      : TReadValue(instance.StoredAt(slot).WithoutOwner(instance.DeclAt(slot).GetType())),
        fInstance(instance),
        fSlot(slot) {}

  boost::shared_ptr<const ICIMPropertyDecl> GetDecl() const override {
    return fInstance.DeclAt(fSlot).Handle();
  }

 private:
  const TInstance& fInstance;
  const std::size_t fSlot;
};

std::unique_ptr<TInstance> TInstance::Make(TClass& cimClass) {
  static_assert(sizeof(TInstance) % alignof(TStoredValue) == 0);
  return std::unique_ptr<TInstance>(new (TRoom{cimClass.SlotCount()}) TInstance(cimClass));
}

TInstance::TInstance(TClass& cimClass) : fClass(cimClass) {
  std::uninitialized_default_construct_n(Values(), fClass.SlotCount());
}

TInstance::~TInstance() { std::destroy_n(Values(), fClass.SlotCount()); }

void* TInstance::operator new(std::size_t size, TRoom room) {
  return ::operator new(size + room.fSlots * sizeof(TStoredValue));
}

void TInstance::Commit(TOptionsMap) {
  if (!CommitIfNew()) throw Taken(Description());
}

bool TInstance::CommitIfNew() {
  if (fIsCommitted) throw CommittedAlready(Description());
  for (const std::size_t slot : fClass.GetKeySlots()) {
    const TStoredValue& key = Values()[slot];
    if (key.IsSet() ? key.IsNull() : fClass.InitialValueAt(slot).IsNull()) {
      throw TExplainedException(kQDXStatusInvalidInstance,
                                "an instance lacks its key, " + DeclAt(slot).Description());
    }
  }
  for (const std::size_t slot : fClass.GetKeySlots()) {
    // Store a key that comes from a static or default value, so that it does not change with it.
    TStoredValue& key = Values()[slot];
    if (!key.IsSet()) key = TStoredValue(fClass.InitialValueAt(slot), fClass);
  }
  fIsCommitted = fClass.AddInstance(*this);
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
  Store(slot, [&](TStoredValue& stored) { stored.Set(value, fClass); });
}

void TInstance::EnumerateProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                    TOptionsMap) const {
  for (std::size_t slot = 0; slot < fClass.SlotCount(); ++slot) {
    if (!callback(MakeProperty(slot))) return;
  }
}

void TInstance::ReadValue(std::size_t slot, const TValueCallback& callback) const {
  const TStoredValue& stored = Values()[slot];
  if (const TReadValue* const read = stored.FindRead()) return callback(read->GetValue());
  if (!stored.IsSet() && !HoldsReferences(DeclAt(slot).GetType())) {
    return callback(fClass.InitialValueAt(slot));
  }
  callback(BoundValueAt(slot));  // the callback may set another one
}

bool TInstance::FindPlainValue(std::size_t slot, TPlainValue& found) const {
  return StoredAt(slot).FindPlain(DeclAt(slot).GetType(), found);
}

bool TInstance::FindPlainReference(std::size_t slot, TPlainReference& found) const {
  found.fNamespace = &GetNamespace();
  return StoredAt(slot).FindPlainReference(found);
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
  return StoredAt(slot).IsSet() ? Read(slot).GetValue() : fClass.InitialValueAt(slot);
}

TCIMValue TInstance::BoundValueAt(std::size_t slot) const {
  const TStoredValue& stored = Values()[slot];
  if (stored.IsSet()) return stored.ToValue(DeclAt(slot).GetType(), GetNamespace());
  return BoundCopy(fClass.InitialValueAt(slot), GetNamespace());
}

boost::shared_ptr<TInstance> TInstance::Handle() const {
  auto* const self = const_cast<TInstance*>(this);
  if (fIsCommitted) return boost::shared_ptr<TInstance>(GetNamespace().Handle(), self);
  return boost::shared_ptr<TInstance>(boost::make_shared<THold>(GetNamespace().Handle(), *this),
                                      self);
}

void TInstance::SetRead(std::size_t slot, const TStoredValue& value) {
  Values()[slot].SetRead(value, DeclAt(slot).GetType());
}

TReadValue& TInstance::Read(std::size_t slot) const {
  TStoredValue& stored = Values()[slot];
  if (stored.FindRead() == nullptr) stored.Keep(std::make_unique<TReadProperty>(*this, slot));
  return *stored.FindRead();
}

boost::shared_ptr<ICIMProperty> TInstance::MakeProperty(std::size_t slot) const {
  if (StoredAt(slot).IsSet() && !HoldsReferences(DeclAt(slot).GetType())) {
    return boost::shared_ptr<ICIMProperty>(Handle(), &Read(slot));
  }
  return boost::make_shared<TProperty<TInstance>>(Handle(), slot);
}

}  // namespace NVORNQDX20::NRepository
