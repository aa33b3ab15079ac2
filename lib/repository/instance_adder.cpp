// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/instance_adder.h>

#include <qdxcore/status.h>
#include <qdxmodel/visit.h>

#include <typeinfo>
#include <utility>

#include "class.h"
#include "instance.h"
#include "namespace.h"
#include "property.h"
#include "stored_value.h"

namespace NVORNQDX20 {

using NRepository::TClass;
using NRepository::TInstance;
using NRepository::TStoredValue;

struct TInstanceAdder::TParts {
  boost::shared_ptr<TClass> fClass;
  TInstance* fInstance = nullptr;                  // also when it is committed
  std::unique_ptr<TInstance> fOwner = nullptr;     // until a caller gets the instance
  boost::shared_ptr<TInstance> fHandle = nullptr;  // from then on

  TCIMValue::TCIMType TypeAt(std::size_t position) const {
    return fClass->DeclAt(position).GetType();
  }
};

TInstanceAdder::TInstanceAdder(const boost::shared_ptr<ICIMClass>& cimClass)
    : fParts(std::make_unique<TParts>(TParts{boost::dynamic_pointer_cast<TClass>(cimClass)})) {
  if (!fParts->fClass || !fParts->fClass->IsCommitted() || cimClass->IsAbstract({})) {
    throw TExplainedException(kQDXStatusInvalidClass,
                              "no class of a repository that can have instances");
  }
}

TInstanceAdder::~TInstanceAdder() = default;

void TInstanceAdder::Begin() {
  fParts->fHandle.reset();
  fParts->fOwner = TInstance::Make(*fParts->fClass);
  fParts->fInstance = fParts->fOwner.get();
}

bool TInstanceAdder::Set(std::size_t position, const TCIMValue& value) {
  if (value.GetType() != fParts->TypeAt(position)) return false;
  fParts->fInstance->Store(position,
                           [&](TStoredValue& stored) { stored.Set(value, *fParts->fClass); });
  return true;
}

bool TInstanceAdder::SetText(std::size_t position, std::string_view text) {
  if (fParts->TypeAt(position) != TCIMValue::TCIMType::kCIMTypeString) return false;
  fParts->fInstance->Store(position, [text](TStoredValue& stored) { stored.SetText(text); });
  return true;
}

bool TInstanceAdder::SetNumber(std::size_t position, std::string_view bytes) {
  const std::size_t size = NModel::SizeOfNumber(fParts->TypeAt(position));
  if (size == 0 || size != bytes.size()) return false;
  fParts->fInstance->Store(position, [bytes](TStoredValue& stored) { stored.SetNumber(bytes); });
  return true;
}

bool TInstanceAdder::SetReference(std::size_t position, const ICIMInstance& target) {
  // The address of the type, since another library can have its own repository, of another layout.
  if (&typeid(target) != &typeid(TInstance)) return false;
  const auto& instance = static_cast<const TInstance&>(target);
  if (fParts->TypeAt(position) != TCIMValue::TCIMType::kCIMTypeReference ||
      &instance.GetNamespace() != &fParts->fClass->GetNamespace() || !instance.IsCommitted()) {
    return false;
  }
  fParts->fInstance->Store(
      position, [&](TStoredValue& stored) { stored = TStoredValue::ReferenceTo(instance); });
  return true;
}

void TInstanceAdder::SetNull(std::size_t position) {
  fParts->fInstance->Store(position, [](TStoredValue& stored) { stored.SetNull(); });
}

bool TInstanceAdder::SetTime(std::size_t position, const TCIMDateTime& time) {
  if (fParts->TypeAt(position) != TCIMValue::TCIMType::kCIMTypeDateTime) return false;
  fParts->fInstance->Store(position, [&time](TStoredValue& stored) { stored.SetTime(time); });
  return true;
}

boost::shared_ptr<ICIMInstance> TInstanceAdder::GetInstance() const {
  if (fParts->fOwner) {
    fParts->fHandle = fParts->fOwner->Handle();
    (void)fParts->fOwner.release();  // the handle owns it now
  }
  if (fParts->fHandle || fParts->fInstance == nullptr) return fParts->fHandle;
  return fParts->fInstance->Handle();  // committed
}

bool TInstanceAdder::Commit() {
  std::unique_ptr<TInstance> owner = std::move(fParts->fOwner);
  const boost::shared_ptr<TInstance> handle = std::move(fParts->fHandle);
  TInstance* const instance = std::exchange(fParts->fInstance, nullptr);
  if (!instance->CommitIfNew()) return false;
  (void)owner.release();  // the class owns it now
  fParts->fInstance = instance;
  return true;
}

}  // namespace NVORNQDX20
