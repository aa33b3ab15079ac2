// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/instance_adder.h>

#include <qdxcore/status.h>
#include <qdxmodel/visit.h>

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
  std::unique_ptr<TInstance> fInstance = nullptr;

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

void TInstanceAdder::Begin() { fParts->fInstance = TInstance::Make(*fParts->fClass); }

bool TInstanceAdder::Set(std::size_t position, const TCIMValue& value) {
  if (value.GetType() != fParts->TypeAt(position)) return false;
  fParts->fInstance->Store(position, TStoredValue(value, *fParts->fClass));
  return true;
}

bool TInstanceAdder::SetText(std::size_t position, std::string_view text) {
  if (fParts->TypeAt(position) != TCIMValue::TCIMType::kCIMTypeString) return false;
  fParts->fInstance->Store(position, TStoredValue::Text(text));
  return true;
}

bool TInstanceAdder::SetNumber(std::size_t position, std::string_view bytes) {
  const std::size_t size = NModel::SizeOfNumber(fParts->TypeAt(position));
  if (size == 0 || size != bytes.size()) return false;
  fParts->fInstance->Store(position, TStoredValue::Number(bytes));
  return true;
}

void TInstanceAdder::SetNull(std::size_t position) {
  fParts->fInstance->Store(position, TStoredValue::Null());
}

boost::shared_ptr<ICIMInstance> TInstanceAdder::GetInstance() const { return fParts->fInstance; }

bool TInstanceAdder::Commit() {
  std::unique_ptr<TInstance> instance = std::move(fParts->fInstance);
  if (!instance->CommitIfNew()) return false;
  (void)instance.release();  // the class owns it now
  return true;
}

}  // namespace NVORNQDX20
