// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include "payload_memory.h"

#include <cstddef>
#include <memory>
#include <utility>

namespace NVORNQDX20 {
namespace {

[[noreturn]] void InvalidSequence() { throw TQDXException(kQDXStatusInvalidOpSequence); }

/// The body of every reference, in memory that is kept like that of values.
class TBody final : public TCIMReferenceImpl {
 public:
  using TCIMReferenceImpl::TCIMReferenceImpl;

  static void* operator new(std::size_t) { return TPayloadMemory::Take<sizeof(TBody)>(); }
  static void operator delete(void* memory) { TPayloadMemory::Keep<sizeof(TBody)>(memory); }

  /// The pointer's own deleter would give the memory to the allocator.
  static void Delete(std::unique_ptr<TCIMReferenceImpl>& body) {
    delete static_cast<TBody*>(body.release());
  }
};

}  // namespace

TCIMReference::TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options)
    : fBody(new TBody(*this, std::move(ns), std::move(options))) {}

TCIMReference::TCIMReference(boost::shared_ptr<ICIMNamespace> ns, const std::string& path,
                             TOptionsMap options)
    : TCIMReference(std::move(ns), std::move(options)) {
  SetPath(path);
}

TCIMReference::TCIMReference(const TCIMReference& other) : fBody(new TBody(*this, *other.fBody)) {}

TCIMReference& TCIMReference::operator=(const TCIMReference& other) {
  std::unique_ptr<TCIMReferenceImpl> body(new TBody(*this, *other.fBody));
  fBody.swap(body);
  TBody::Delete(body);
  return *this;
}

TCIMReference::~TCIMReference() { TBody::Delete(fBody); }

void TCIMReference::SetNamespace(boost::shared_ptr<ICIMNamespace> ns) {
  fBody->SetNamespace(std::move(ns));
}
boost::shared_ptr<ICIMNamespace> TCIMReference::GetNamespace() const {
  return fBody->GetNamespace();
}
void TCIMReference::Clear() { fBody->Clear(); }
void TCIMReference::SetPath(const std::string& path) { fBody->SetPath(path); }
void TCIMReference::SetClassName(const std::string& name) { fBody->SetClassName(name); }
void TCIMReference::SetClass(boost::shared_ptr<ICIMClass> cimClass) {
  fBody->SetClass(std::move(cimClass));
}
boost::shared_ptr<ICIMClass> TCIMReference::GetClass() const { return fBody->GetClass(); }
std::string TCIMReference::GetClassName() const { return fBody->GetClassName(); }
void TCIMReference::AddKeyValue(const std::string& name, const TCIMValue& value) {
  fBody->AddKeyValue(name, value);
}
void TCIMReference::EnumerateKeyBindings(const TKeyBindingCallback& callback) const {
  fBody->EnumerateKeyBindings(callback);
}
std::string TCIMReference::GetPath() const { return fBody->GetPath(); }
boost::shared_ptr<ICIMElement> TCIMReference::GetCIMElement() const {
  return fBody->GetCIMElement();
}
bool TCIMReference::operator==(const TCIMReference& other) const { return *fBody == other; }
bool TCIMReference::operator<(const TCIMReference& other) const { return *fBody < other; }

TCIMReferenceImpl::TCIMReferenceImpl(TCIMReference& owner, boost::shared_ptr<ICIMNamespace> ns,
                                     TOptionsMap options)
    : fOwner(owner), fNamespace(std::move(ns)), fOptions(std::move(options)) {}

TCIMReferenceImpl::TCIMReferenceImpl(TCIMReference& owner, const TCIMReferenceImpl& other)
    : fOwner(owner),
      fNamespace(other.fNamespace),
      fOptions(other.fOptions),
      fClass(other.fClass),
      fKeyBindings(other.fKeyBindings),
      fInstance(other.fInstance) {}

void TCIMReferenceImpl::SetNamespace(boost::shared_ptr<ICIMNamespace> ns) {
  fNamespace = std::move(ns);
}

void TCIMReferenceImpl::Clear() {
  fNamespace.reset();
  fClass.reset();
  fKeyBindings.clear();
  fInstance.reset();
}

void TCIMReferenceImpl::SetPath(const std::string& path) {
  if (!fNamespace || fClass || !fKeyBindings.empty()) InvalidSequence();
  std::uint64_t position = 0;
  ParsePath(this, path, position);
}

void TCIMReferenceImpl::SetClassName(const std::string& name) {
  if (!fNamespace || !fKeyBindings.empty()) InvalidSequence();
  // Null is stored, too: an unknown class is noticed when it is used.
  fClass = fNamespace->GetClass(name, fOptions);
}

void TCIMReferenceImpl::SetClass(boost::shared_ptr<ICIMClass> cimClass) {
  if (!fKeyBindings.empty()) InvalidSequence();
  fClass = std::move(cimClass);
}

boost::shared_ptr<ICIMClass> TCIMReferenceImpl::GetClass() const {
  if (!fClass) throw TQDXException(kQDXStatusInvalidReference);
  return fClass;
}

std::string TCIMReferenceImpl::GetClassName() const { return fClass->GetName({}); }

void TCIMReferenceImpl::RequireDeclaredType(const std::string& name,
                                            TCIMValue::TCIMType type) const {
  if (!fClass) InvalidSequence();
  const TCIMValue::TCIMType declared = fClass->GetPropertyDecl(name, {})->GetType();
  if (declared != type) {
    LogErrorAndThrow(kQDXStatusTypeMismatch, {"Core: Declaration type: ", declared.ToString(),
                                              " Value type: ", type.ToString()});
  }
}

// A name that is bound already keeps its value: emplace_hint() does nothing then. Most come in the
// order of the bindings, each at the end.
void TCIMReferenceImpl::AddKeyValue(const std::string& name, const TCIMValue& value) {
  RequireDeclaredType(name, value.GetType());
  fKeyBindings.emplace_hint(fKeyBindings.end(), name, value);
}

void TCIMReferenceImpl::AddKeyValue(const std::string& name, TCIMValue&& value) {
  RequireDeclaredType(name, value.GetType());
  fKeyBindings.emplace_hint(fKeyBindings.end(), name, std::move(value));
}

void TCIMReferenceImpl::AddKeyValue(std::string&& name, TCIMValue&& value) {
  RequireDeclaredType(name, value.GetType());
  fKeyBindings.emplace_hint(fKeyBindings.end(), std::move(name), std::move(value));
}

void TCIMReferenceImpl::EnumerateKeyBindings(const TKeyBindingCallback& callback) const {
  for (const auto& binding : fKeyBindings) {
    if (!callback(binding)) return;
  }
}

boost::shared_ptr<ICIMElement> TCIMReferenceImpl::GetCIMElement() {
  if (fKeyBindings.empty()) return fClass;
  if (!fInstance) fInstance = fClass->GetInstance(fOwner, {});
  if (!fInstance) throw TQDXException(kQDXStatusNotFound);
  return fInstance;
}

bool TCIMReferenceImpl::operator==(const TCIMReference& other) const {
  const TCIMReferenceImpl& right = *other.GetBody();
  return fClass == right.fClass && fKeyBindings == right.fKeyBindings;
}

bool TCIMReferenceImpl::operator<(const TCIMReference& other) const {
  const TCIMReferenceImpl& right = *other.GetBody();
  if (fClass == right.fClass) return fKeyBindings < right.fKeyBindings;
  return fClass.owner_before(right.fClass);
}

}  // namespace NVORNQDX20
