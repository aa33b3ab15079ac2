// SPDX-License-Identifier: Apache-2.0
#include "stored_value.h"

#include <qdxcore/reference.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "class.h"
#include "namespace.h"
#include "values.h"

namespace NVORNQDX20::NRepository {
namespace {

using NModel::THasher;
using TType = TStoredValue::TType;

template <typename T>
void Hash(THasher& hasher, const T& value) {
  hasher.Add(std::hash<T>()(value));
}

void Hash(THasher& hasher, const std::string& value) { hasher.Add(value); }

/// Equal points in time have different texts if their offsets differ, but the same distance to a
/// third point.
void Hash(THasher& hasher, const TCIMDateTime& value) {
  const TCIMDateTime origin =
      value.IsInterval() ? TCIMDateTime(0, 0, 0, 0, 0) : TCIMDateTime(2000, 1, 1, 0, 0, 0, 0, 0);
  hasher.Add(value.IsInterval() ? 1 : 0);
  hasher.Add((value - origin).ToString());
}

void Hash(THasher& hasher, const TCIMValue& value);

void Hash(THasher& hasher, const TCIMReference& value) {
  Hash(hasher, static_cast<const ICIMClass*>(value.GetClass().get()));
  for (const auto& [name, key] : value.GetBody()->GetKeyBindings()) {
    hasher.Add(name);
    Hash(hasher, key);
  }
}

void Hash(THasher& hasher, const TCIMValue& value) {
  if (value.IsNull()) return hasher.Add(0);
  NModel::VisitScalar(value, [&](const auto& native) { Hash(hasher, native); });
}

}  // namespace

/// A reference to an instance of the own namespace, which it does not own.
struct TStoredReference {
  struct TKey {
    std::size_t fSlot;
    TStoredValue fValue;
  };

  const std::string& NameOf(const TKey& key) const { return fClass.DeclAt(key.fSlot).GetName(); }
  TType TypeOf(const TKey& key) const { return fClass.DeclAt(key.fSlot).GetType(); }

  TClass& fClass;
  std::vector<TKey> fKeys;  // in ascending bytewise order of the names, as references have them
};

struct TStoredValue::TLongText {
  std::size_t fSize;
  char fText[sizeof(std::size_t)];  // as many as the size says
};

// Delegates, so that a key that fails leaves no memory behind: this object is complete by then.
TStoredValue::TStoredValue(const TCIMValue& value, const TClass& user) : TStoredValue() {
  const TType type = value.GetType();
  if (const std::string* const text = value.FindString()) {
    *this = Text(*text);
  } else if (value.FindReference() != nullptr) {
    SetReference(value, user);
  } else if (type == TType::kCIMTypeDateTime || HoldsReferences(type) || value.IsArray()) {
    const bool isPlain =
        value.IsNull() && value.GetMaxArraySize() == 0 && !value.GetReferencedClass();
    if (isPlain) {
      fKind = kNull;
    } else {
      Box(WeakCopy(value, user));
    }
  } else if (value.IsNull()) {
    fKind = kNull;
  } else {
    *this = NModel::VisitScalar(value, [&](const auto& native) -> TStoredValue {
      if constexpr (std::is_arithmetic_v<std::decay_t<decltype(native)>>) return Number(native);
      return {};  // the other types were handled above
    });
  }
}

TStoredValue TStoredValue::Null() noexcept {
  TStoredValue stored;
  stored.fKind = kNull;
  return stored;
}

TStoredValue TStoredValue::Text(std::string_view text) {
  TStoredValue stored;
  if (text.size() <= kMaxShortText) {
    std::memcpy(stored.fBytes, text.data(), text.size());
    stored.fSize = static_cast<std::uint8_t>(text.size());
    stored.fKind = kShortText;
    return stored;
  }
  auto* const copy = static_cast<TLongText*>(::operator new(sizeof(std::size_t) + text.size()));
  copy->fSize = text.size();
  std::memcpy(copy->fText, text.data(), text.size());
  stored.Point(kLongText, copy);
  return stored;
}

TStoredValue TStoredValue::Reference(TClass& cimClass) {
  TStoredValue stored;
  stored.Point(kReference, new TStoredReference{cimClass, {}});
  return stored;
}

void TStoredValue::AddKey(std::size_t slot, TStoredValue&& value) {
  TStoredReference& reference = *Referred();
  const std::string& name = reference.fClass.DeclAt(slot).GetName();
  auto& keys = reference.fKeys;
  auto place = keys.end();
  while (place != keys.begin() && reference.NameOf(*std::prev(place)) > name) --place;
  // Names in another case are the same key, and the first one counts.
  if (place != keys.begin() && std::prev(place)->fSlot == slot) return;
  keys.insert(place, {slot, std::move(value)});
}

bool TStoredValue::IsNull() const noexcept {
  return fKind == kNull || (fKind == kBoxed && Boxed()->IsNull());
}

TCIMValue TStoredValue::ToValue(TType type, TNamespace& ns) const {
  if (fKind == kBoxed) return BoundCopy(*Boxed(), ns);
  if (fKind != kReference) return WithoutOwner(type);
  const TStoredReference& stored = *Referred();
  TCIMReference withoutKeys(ns.Handle(), {});
  withoutKeys.SetClass(stored.fClass.Handle());
  TCIMValue value(withoutKeys);
  TCIMReferenceImpl& reference = *value.FindReference()->GetBody();
  for (const TStoredReference::TKey& key : stored.fKeys) {
    reference.BindKey(stored.NameOf(key), key.fValue.ToValue(stored.TypeOf(key), ns));
  }
  return value;
}

const TCIMValue& TStoredValue::Get(TType type) {
  if (fKind != kBoxed) {
    TStoredValue boxed;
    boxed.Box(WithoutOwner(type));
    *this = std::move(boxed);
  }
  return *Boxed();
}

/// The stored form of values.h.
TCIMValue TStoredValue::WithoutOwner(TType type) const {
  switch (fKind) {
    case kNumber:
      return NModel::VisitType(type, [this](auto native) {
        using T = typename decltype(native)::TType;
        if constexpr (std::is_arithmetic_v<T>) {
          return TCIMValue(Load<T>());
        } else {
          return TCIMValue();  // no number has such a type
        }
      });
    case kShortText:
    case kLongText:
      return TCIMValue(std::string(TextOf()));
    case kBoxed:
      return *Boxed();
    case kReference: {
      const TStoredReference& stored = *Referred();
      TCIMReference withoutKeys(nullptr, {});
      withoutKeys.SetClass(boost::shared_ptr<ICIMClass>(boost::shared_ptr<void>(), &stored.fClass));
      TCIMValue value(withoutKeys);
      TCIMReferenceImpl& reference = *value.FindReference()->GetBody();
      for (const TStoredReference::TKey& key : stored.fKeys) {
        reference.BindKey(stored.NameOf(key), key.fValue.WithoutOwner(stored.TypeOf(key)));
      }
      return value;
    }
    case kNull:
    case kUnset:
      break;
  }
  return TCIMValue(type, 0U);
}

bool TStoredValue::Equals(const TStoredValue& other, TType type) const {
  if (IsText() && other.IsText()) return TextOf() == other.TextOf();
  if (fKind == kReference && other.fKind == kReference) {
    const TStoredReference& left = *Referred();
    const TStoredReference& right = *other.Referred();
    return &left.fClass == &right.fClass &&
           std::equal(left.fKeys.begin(), left.fKeys.end(), right.fKeys.begin(), right.fKeys.end(),
                      [&left](const auto& one, const auto& two) {
                        return one.fSlot == two.fSlot &&
                               one.fValue.Equals(two.fValue, left.TypeOf(one));
                      });
  }
  const bool isReal = type == TType::kCIMTypeReal32 || type == TType::kCIMTypeReal64;
  if (fKind == kNumber && other.fKind == kNumber && !isReal) {
    return std::memcmp(fBytes, other.fBytes, sizeof fBytes) == 0;  // what is unused is zero
  }
  return WithoutOwner(type) == other.WithoutOwner(type);
}

void TStoredValue::AddTo(THasher& hasher, TType type) const {
  if (IsText()) return hasher.Add(TextOf());
  if (fKind != kReference) return Hash(hasher, WithoutOwner(type));
  const TStoredReference& stored = *Referred();
  Hash(hasher, static_cast<const ICIMClass*>(&stored.fClass));
  for (const TStoredReference::TKey& key : stored.fKeys) {
    hasher.Add(stored.NameOf(key));
    key.fValue.AddTo(hasher, stored.TypeOf(key));
  }
}

std::string_view TStoredValue::TextOf() const noexcept {
  if (fKind == kShortText) return {reinterpret_cast<const char*>(fBytes), fSize};
  const auto* const text = Target<const TLongText>();
  return {text->fText, text->fSize};
}

void TStoredValue::Box(TCIMValue&& value) { Point(kBoxed, new TCIMValue(std::move(value))); }

void TStoredValue::Destroy() noexcept {
  if (fKind == kLongText) ::operator delete(Target<TLongText>());
  if (fKind == kReference) delete Referred();
  if (fKind == kBoxed) delete Boxed();
}

void TStoredValue::SetReference(const TCIMValue& value, const TClass& user) {
  const TCIMReferenceImpl& reference = *value.FindReference()->GetBody();
  TClass* const target = OwnClass(reference.GetClass(), user);
  // A class of another namespace, and options, need the owners that only a TCIMReference has.
  if (target == nullptr || !reference.GetOptions().empty()) return Box(WeakCopy(value, user));
  *this = Reference(*target);
  Referred()->fKeys.reserve(reference.GetKeyBindings().size());
  for (const auto& [name, key] : reference.GetKeyBindings()) {
    AddKey(target->SlotOf(name), TStoredValue(key, user));
  }
}

}  // namespace NVORNQDX20::NRepository
