// SPDX-License-Identifier: Apache-2.0
#include "stored_value.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "class.h"
#include "instance.h"
#include "namespace.h"
#include "values.h"

namespace NVORNQDX20::NRepository {
namespace {

using NModel::THasher;
using TType = TStoredValue::TType;

constexpr std::size_t kMaxElements = std::numeric_limits<std::uint32_t>::max();

template <typename T>
void Hash(THasher& hasher, const T& value) {
  hasher.Add(std::hash<T>()(value));
}

void Hash(THasher& hasher, const std::string& value) { hasher.Add(value); }

/// Returns the seconds at UTC, counted from some point long ago. By hand, since timegm() also
/// counts leap seconds if the process's zone does.
std::int64_t SecondsOf(const TCIMDateTime& point) {
  // Years begin in March, so that the leap day is the last day of a year.
  const std::int64_t months = std::int64_t{point.GetYear() + 400} * 12 + point.GetMonth() - 3;
  const std::int64_t years = months / 12;
  const std::int64_t days = years * 365 + years / 4 - years / 100 + years / 400 +
                            (months % 12 * 153 + 2) / 5 + static_cast<std::int32_t>(point.GetDay());
  return ((days * 24 + point.GetHour()) * 60 + point.GetMinute() - point.GetUTCOffset()) * 60 +
         point.GetSecond();
}

/// Unlike with the operator, points that are equal once always are: the process's zone, in which
/// the operator reads all points, can change while they are keys.
bool IsSameTime(const TCIMDateTime& left, const TCIMDateTime& right) {
  if (left.IsInterval() || right.IsInterval()) {
    return left.IsInterval() && right.IsInterval() && left == right;
  }
  return SecondsOf(left) == SecondsOf(right) && left.GetMicroSeconds() == right.GetMicroSeconds();
}

void Hash(THasher& hasher, const TCIMDateTime& value) {
  if (value.IsNull()) throw TQDXException(kQDXStatusInvalidDateTime);
  if (value.IsInterval()) return hasher.Add((value - TCIMDateTime(0, 0, 0, 0, 0)).ToString());
  hasher.Add(static_cast<std::uint64_t>(SecondsOf(value)));
  hasher.Add(value.GetMicroSeconds());
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

/// A reference to an instance of the own namespace, which it does not own. The keys follow in the
/// same piece of memory.
struct TStoredReference {
  struct TKey {
    std::size_t fSlot;
    TStoredValue fValue;
  };

  TKey* begin() const { return reinterpret_cast<TKey*>(const_cast<TStoredReference*>(this) + 1); }
  TKey* end() const { return begin() + fCount; }
  const std::string& NameOf(const TKey& key) const { return fClass.DeclAt(key.fSlot).GetName(); }
  TType TypeOf(const TKey& key) const { return fClass.DeclAt(key.fSlot).GetType(); }

  static TStoredReference* Make(TClass& cimClass, std::size_t room) {
    void* const memory = ::operator new(sizeof(TStoredReference) + room * sizeof(TKey));
    return new (memory) TStoredReference{cimClass, 0};
  }
  /// A key that was added before keeps its value. REQUIRES: there is room.
  void Add(std::size_t slot, TStoredValue&& value) {
    const std::string& name = fClass.DeclAt(slot).GetName();
    TKey* place = end();
    while (place != begin() && NameOf(*std::prev(place)) > name) --place;
    // Names in another case are the same key, and the first one counts.
    if (place != begin() && std::prev(place)->fSlot == slot) return;
    new (end()) TKey{slot, std::move(value)};
    ++fCount;
    std::rotate(place, std::prev(end()), end());
  }

  TClass& fClass;
  std::size_t
      fCount;  // of keys, in ascending bytewise order of their names, as references have them
};

/// The elements follow in the same piece of memory.
struct TStoredValue::TArray {
  TStoredValue* begin() const {
    return reinterpret_cast<TStoredValue*>(const_cast<TArray*>(this) + 1);
  }
  TStoredValue* end() const { return begin() + fCount; }

  static TArray* Make(std::uint32_t maxSize, std::size_t room) {
    void* const memory = ::operator new(sizeof(TArray) + room * sizeof(TStoredValue));
    return new (memory) TArray{maxSize, 0};
  }
  /// Makes an element of the arguments. REQUIRES: there is room.
  template <typename... TArguments>
  void Add(TArguments&&... arguments) {
    new (end()) TStoredValue(std::forward<TArguments>(arguments)...);
    ++fCount;
  }

  std::uint32_t fMaxSize;
  std::uint32_t fCount;
};

struct TStoredValue::TLongText {
  std::size_t fSize;
  char fText[sizeof(std::size_t)];  // as many as the size says
};

void TStoredValue::Set(const TCIMValue& value, const TClass& user) {
  if (value.IsNull()) {
    const bool isBare = value.GetMaxArraySize() == 0 && !value.GetReferencedClass();
    return isBare ? SetNull() : Box(WeakCopy(value, user));
  }
  NModel::VisitType(value.GetType(), [&](auto native) {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T>) {
      SetNumber(static_cast<T>(value));
    } else if constexpr (std::is_same_v<T, std::string>) {
      SetText(*value.FindString());
    } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
      SetTime(static_cast<TCIMDateTime>(value));
    } else if constexpr (std::is_same_v<T, TCIMReference>) {
      SetReference(value, user);
    } else {
      SetArray(value, user);  // no other type without scalars has content
    }
  });
}

void TStoredValue::SetTime(const TCIMDateTime& time) {
  Point(kTime, new TCIMDateTimeImpl(*time.GetBody()));
}

void TStoredValue::SetText(std::string_view text) {
  if (text.size() <= kMaxShortText) {
    std::memcpy(fBytes, text.data(), text.size());
    fSize = static_cast<std::uint8_t>(text.size());
    fKind = kShortText;
    return;
  }
  auto* const copy = static_cast<TLongText*>(::operator new(sizeof(std::size_t) + text.size()));
  copy->fSize = text.size();
  std::memcpy(copy->fText, text.data(), text.size());
  Point(kLongText, copy);
}

TStoredValue TStoredValue::ReferenceTo(const TInstance& instance) {
  TClass& cimClass = instance.GetOwner();
  TStoredValue stored;
  stored.Point(kReference, TStoredReference::Make(cimClass, cimClass.GetKeySlots().size()));
  for (const std::size_t slot : cimClass.GetKeySlots()) {
    const TStoredValue& key = instance.StoredAt(slot);
    // A key that holds a reference of its own is copied by its value.
    TStoredValue copy = key.CopyTo(instance.DeclAt(slot).GetType(), cimClass.GetNamespace());
    if (!copy.IsSet()) copy = TStoredValue(instance.BoundValueAt(slot), cimClass);
    stored.Referred()->Add(slot, std::move(copy));
  }
  return stored;
}

bool TStoredValue::IsNull() const noexcept {
  const TCIMValue* const boxed = FindBoxed();
  return boxed == nullptr ? fKind == kNull : boxed->IsNull();
}

TStoredValue TStoredValue::CopyTo(TType type, const TNamespace& target) const {
  TStoredValue copy;
  switch (fKind) {
    case kUnset:
      break;
    case kNull:
      if (type != TType::kCIMTypeReference) copy.fKind = kNull;
      break;
    case kNumber:
    case kShortText:
      std::memcpy(static_cast<void*>(&copy), static_cast<const void*>(this), sizeof copy);
      break;
    case kLongText:
      copy.SetText(TextOf());
      break;
    case kTime:
      copy.Point(kTime, new TCIMDateTimeImpl(*Target<const TCIMDateTimeImpl>()));
      break;
    case kArray:
      copy.Point(kArray, TArray::Make(Elements()->fMaxSize, Elements()->fCount));
      for (const TStoredValue& each : *Elements())
        copy.Elements()->Add(each.CopyTo(NModel::ElementType(type), target));
      break;
    case kReference:
      return CopyReferenceTo(target);
    case kBoxed:
    case kRead:
      if (!HoldsReferences(Boxed()->GetType())) copy.Box(TCIMValue(*Boxed()));
      break;
  }
  return copy;
}

TStoredValue TStoredValue::CopyReferenceTo(const TNamespace& target) const {
  const TStoredReference& stored = *Referred();
  TClass* const cimClass = target.FindClass(stored.fClass.GetName());
  if (cimClass == nullptr) return {};
  TStoredValue copy;
  copy.Point(kReference, TStoredReference::Make(*cimClass, stored.fCount));
  for (const TStoredReference::TKey& key : stored) {
    const std::size_t slot = cimClass->FindSlot(stored.NameOf(key));
    if (slot == TClass::kNoSlot || cimClass->DeclAt(slot).GetType() != stored.TypeOf(key)) {
      return {};
    }
    TStoredValue value = key.fValue.CopyTo(stored.TypeOf(key), target);
    if (!value.IsSet()) return {};
    copy.Referred()->Add(slot, std::move(value));
  }
  return copy;
}

TCIMValue TStoredValue::ToValue(TType type, TNamespace& ns) const { return MakeValue(type, &ns); }

bool TStoredValue::FindPlain(TType type, TPlainValue& found) const {
  found.fIsNull = fKind == kNull;
  if (fKind == kNull) return type == TType::kCIMTypeString || NModel::SizeOfNumber(type) != 0;
  if (fKind == kNumber) {
    found.fBytes = {reinterpret_cast<const char*>(fBytes), NModel::SizeOfNumber(type)};
    return true;
  }
  if (!IsText()) return false;
  found.fBytes = TextOf();
  return true;
}

bool TStoredValue::FindPlainReference(TPlainReference& found) const {
  if (fKind != kReference) return false;
  const TStoredReference& stored = *Referred();
  found.fClass = stored.fClass.Handle();
  found.fKeys.resize(stored.fCount);
  TPlainKey* next = found.fKeys.data();
  for (const TStoredReference::TKey& key : stored) {
    TPlainKey& plain = *next++;
    plain.fName = &stored.NameOf(key);
    plain.fType = stored.TypeOf(key);
    if (!key.fValue.FindPlain(plain.fType, plain.fValue)) return false;
  }
  return true;
}

void TStoredValue::Keep(std::unique_ptr<TReadValue> read) noexcept {
  TStoredValue kept;
  kept.Point(kRead, read.release());
  *this = std::move(kept);
}

void TStoredValue::SetRead(const TStoredValue& value, TType type) {
  Replace(*Boxed(), value.WithoutOwner(type));
}

TCIMValue TStoredValue::MakeValue(TType type, TNamespace* ns) const {
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
    case kTime: {
      TCIMDateTime time;
      *time.GetBody() = *Target<const TCIMDateTimeImpl>();
      return TCIMValue(time);
    }
    case kArray:
      return MakeArray(NModel::ElementType(type));
    case kReference:
      return MakeReference(ns);
    case kBoxed:
    case kRead:
      return ns == nullptr ? *Boxed() : BoundCopy(*Boxed(), *ns);
    case kNull:
    case kUnset:
      break;
  }
  return TCIMValue(type, 0U);
}

TCIMValue TStoredValue::MakeArray(TType elementType) const {
  TCIMValue value(elementType, Elements()->fMaxSize, {});
  std::vector<TCIMValue>& elements = value;
  elements.reserve(Elements()->fCount);
  for (const TStoredValue& each : *Elements()) {
    elements.push_back(each.MakeValue(elementType, nullptr));
  }
  return value;
}

TCIMValue TStoredValue::MakeReference(TNamespace* ns) const {
  const TStoredReference& stored = *Referred();
  TCIMReference withoutKeys(ns == nullptr ? nullptr : ns->Handle(), {});
  withoutKeys.SetClass(ns == nullptr
                           ? boost::shared_ptr<ICIMClass>(boost::shared_ptr<void>(), &stored.fClass)
                           : stored.fClass.Handle());
  TCIMValue value(withoutKeys);
  TCIMReferenceImpl& reference = *value.FindReference()->GetBody();
  for (const TStoredReference::TKey& key : stored) {
    reference.BindKey(stored.NameOf(key), key.fValue.MakeValue(stored.TypeOf(key), ns));
  }
  return value;
}

bool TStoredValue::Equals(const TStoredValue& other, TType type) const {
  if (IsText() && other.IsText()) return TextOf() == other.TextOf();
  if (fKind == kReference && other.fKind == kReference) {
    const TStoredReference& left = *Referred();
    const TStoredReference& right = *other.Referred();
    return &left.fClass == &right.fClass &&
           std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&left](const auto& one, const auto& two) {
                        return one.fSlot == two.fSlot &&
                               one.fValue.Equals(two.fValue, left.TypeOf(one));
                      });
  }
  if (type == TType::kCIMTypeDateTime && !IsNull() && !other.IsNull()) {
    return IsSameTime(WithoutOwner(type), other.WithoutOwner(type));
  }
  const bool isReal = type == TType::kCIMTypeReal32 || type == TType::kCIMTypeReal64;
  if (fKind == kNumber && other.fKind == kNumber && !isReal) {
    return std::memcmp(fBytes, other.fBytes, sizeof fBytes) == 0;  // what is unused is zero
  }
  return WithoutOwner(type) == other.WithoutOwner(type);
}

void TStoredValue::AddTo(THasher& hasher, TType type) const {
  if (IsText()) return hasher.Add(TextOf());
  if (fKind == kNumber) {
    return NModel::VisitType(type, [&](auto native) {
      using T = typename decltype(native)::TType;
      if constexpr (std::is_arithmetic_v<T>) Hash(hasher, Load<T>());
    });
  }
  if (fKind != kReference) return Hash(hasher, WithoutOwner(type));
  const TStoredReference& stored = *Referred();
  Hash(hasher, static_cast<const ICIMClass*>(&stored.fClass));
  for (const TStoredReference::TKey& key : stored) {
    hasher.Add(stored.NameOf(key));
    key.fValue.AddTo(hasher, stored.TypeOf(key));
  }
}

std::string_view TStoredValue::TextOf() const noexcept {
  if (fKind == kShortText) return {reinterpret_cast<const char*>(fBytes), fSize};
  if (fKind != kLongText) return *Boxed()->FindString();
  const auto* const text = Target<const TLongText>();
  return {text->fText, text->fSize};
}

void TStoredValue::Box(TCIMValue&& value) { Point(kBoxed, new TCIMValue(std::move(value))); }

void TStoredValue::Destroy() noexcept {
  if (fKind == kTime) {
    delete Target<TCIMDateTimeImpl>();
  } else if (fKind == kBoxed) {
    delete Boxed();
  } else if (fKind == kRead) {
    delete Target<TReadValue>();
  } else {
    if (fKind == kArray) std::destroy(Elements()->begin(), Elements()->end());
    if (fKind == kReference) std::destroy(Referred()->begin(), Referred()->end());
    ::operator delete(Target<void>());
  }
}

void TStoredValue::SetArray(const TCIMValue& value, const TClass& user) {
  const std::vector<TCIMValue>& elements = value;
  const TType type = NModel::ElementType(value.GetType());
  const bool isPlain = !HoldsReferences(type) && elements.size() <= kMaxElements &&
                       std::all_of(elements.begin(), elements.end(),
                                   [&](const TCIMValue& each) { return each.GetType() == type; });
  if (!isPlain) return Box(WeakCopy(value, user));
  TStoredValue array;
  array.Point(kArray, TArray::Make(value.GetMaxArraySize(), elements.size()));
  for (const TCIMValue& each : elements) array.Elements()->Add(each, user);
  Take(array);
}

void TStoredValue::SetReference(const TCIMValue& value, const TClass& user) {
  const TCIMReferenceImpl& reference = *value.FindReference()->GetBody();
  TClass* const target = OwnClass(reference.GetClass(), user);
  // A class of another namespace, and options, need the owners that only a TCIMReference has.
  if (target == nullptr || !reference.GetOptions().empty()) return Box(WeakCopy(value, user));
  TStoredValue stored;
  stored.Point(kReference, TStoredReference::Make(*target, reference.GetKeyBindings().size()));
  for (const auto& [name, key] : reference.GetKeyBindings()) {
    stored.Referred()->Add(target->SlotOf(name), TStoredValue(key, user));
  }
  Take(stored);
}

}  // namespace NVORNQDX20::NRepository
