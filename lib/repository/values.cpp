// SPDX-License-Identifier: Apache-2.0
#include "values.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxmodel/type.h>

#include <memory>
#include <new>
#include <typeinfo>
#include <utility>
#include <vector>

#include "class.h"
#include "namespace.h"

namespace NVORNQDX20::NRepository {
namespace {

using TCIMType = TCIMValue::TCIMType;

/// One direction of the copy: the namespace and the class that a copied reference gets.
class TRebinding {
 public:
  explicit TRebinding(const TNamespace& ns) : fNamespace(ns) {}
  virtual ~TRebinding() = default;
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace() const = 0;
  virtual boost::shared_ptr<ICIMClass> Class(TClass& cimClass) const = 0;

  TCIMValue Copy(const TCIMValue& value) const;
  TClass* OwnClass(const boost::shared_ptr<ICIMClass>& cimClass) const;

 private:
  TCIMValue CopyArray(const TCIMValue& value) const;
  TCIMValue CopyNull(const TCIMValue& value) const;
  TCIMValue CopyReference(const TCIMValue& value) const;

  const TNamespace& fNamespace;
};

TCIMValue TRebinding::Copy(const TCIMValue& value) const {
  if (!HoldsReferences(value.GetType())) return value;
  if (value.IsArray()) return value.IsNull() ? value : CopyArray(value);
  return value.IsNull() ? CopyNull(value) : CopyReference(value);
}

TClass* TRebinding::OwnClass(const boost::shared_ptr<ICIMClass>& cimClass) const {
  // The address of the type, since another library can have its own repository, of another layout.
  const ICIMClass* const any = cimClass.get();
  if (any == nullptr || &typeid(*any) != &typeid(TClass)) return nullptr;
  auto* const own = static_cast<TClass*>(cimClass.get());
  return &own->GetNamespace() == &fNamespace ? own : nullptr;
}

TCIMValue TRebinding::CopyArray(const TCIMValue& value) const {
  const std::vector<TCIMValue>& elements = value;
  std::vector<TCIMValue> copies;
  copies.reserve(elements.size());
  for (const TCIMValue& element : elements) copies.push_back(Copy(element));
  return TCIMValue(TCIMType::kCIMTypeReference, value.GetMaxArraySize(), copies);
}

TCIMValue TRebinding::CopyNull(const TCIMValue& value) const {
  TClass* const own = OwnClass(value.GetReferencedClass());
  if (own == nullptr) return value;
  TCIMValue copy(TCIMType::kCIMTypeReference, 0);
  copy.SetReferencedClass(Class(*own));
  return copy;
}

TCIMValue TRebinding::CopyReference(const TCIMValue& value) const {
  const TCIMReference& reference = *value.FindReference();
  TClass* const own = OwnClass(reference.GetClass());
  if (own == nullptr) return value;
  TCIMReference copy(reference);  // copies the options, which have no setter
  copy.Clear();
  copy.SetNamespace(GetNamespace());
  copy.SetClass(Class(*own));
  for (const auto& [name, key] : reference.GetBody()->GetKeyBindings()) {
    // In the declared spelling, since references compare key names byte by byte.
    copy.AddKeyValue(own->GetPropertyDecl(name, {})->GetName(), Copy(key));
  }
  return TCIMValue(copy);
}

class TWeakening final : public TRebinding {
 public:
  explicit TWeakening(const TClass& user) : TRebinding(user.GetNamespace()), fUser(user) {}
  boost::shared_ptr<ICIMNamespace> GetNamespace() const override { return nullptr; }
  boost::shared_ptr<ICIMClass> Class(TClass& cimClass) const override {
    RequireLasting(cimClass);
    return boost::shared_ptr<ICIMClass>(boost::shared_ptr<void>(), &cimClass);
  }

  /// Throws kQDXStatusInvalidReference if the class may be destroyed before the value.
  void RequireLasting(const TClass& cimClass) const {
    if (cimClass.IsCommitted() || &cimClass == &fUser) return;
    throw TExplainedException(kQDXStatusInvalidReference,
                              cimClass.Description() + " is not committed: " + fUser.Description() +
                                  " cannot refer to it yet");
  }

 private:
  const TClass& fUser;
};

class TBinding final : public TRebinding {
 public:
  explicit TBinding(TNamespace& ns) : TRebinding(ns), fNamespace(ns) {}
  boost::shared_ptr<ICIMNamespace> GetNamespace() const override { return fNamespace.Handle(); }
  boost::shared_ptr<ICIMClass> Class(TClass& cimClass) const override { return cimClass.Handle(); }

 private:
  TNamespace& fNamespace;
};

}  // namespace

bool IsDeclarable(TCIMType type) {
  return NModel::HasKeyword(type) && NModel::ElementType(type) != TCIMType::kCIMTypeChar;
}

TExplainedException Undeclarable(const std::string& description, TCIMType type) {
  return {kQDXStatusInvalidProperty, description + " cannot be " + NModel::TypeText(type)};
}

TExplainedException TypeMismatch(TCIMType given, TCIMType declared, const IDescribed& element) {
  return {kQDXStatusTypeMismatch, element.Description() + " is " + NModel::TypeText(declared) +
                                      ", not " + NModel::TypeText(given)};
}

TCIMValue WeakCopy(const TCIMValue& value, const TClass& user) {
  return TWeakening(user).Copy(value);
}

TClass* OwnClass(const boost::shared_ptr<ICIMClass>& cimClass, const TClass& user) {
  const TWeakening weakening(user);
  TClass* const own = weakening.OwnClass(cimClass);
  if (own != nullptr) weakening.RequireLasting(*own);
  return own;
}

TCIMValue BoundCopy(const TCIMValue& value, TNamespace& ns) { return TBinding(ns).Copy(value); }

void Replace(TCIMValue& target, TCIMValue&& source) noexcept {
  const TCIMValue old(std::move(target));  // ends last, since that can reach the target again
  target.~TCIMValue();  // NOLINT(bugprone-use-after-move): it is destroyed, not used
  new (&target) TCIMValue(std::move(source));
}

}  // namespace NVORNQDX20::NRepository
