// SPDX-License-Identifier: Apache-2.0
/// The value of a property in an instance, in sixteen bytes.
///
/// A namespace can have a million instances, of which most values are numbers and short texts: they
/// need no memory of their own. Longer texts, date-times, arrays and references to the own
/// namespace need one piece each. What is rare is a TCIMValue in the stored form of values.h. The
/// type is that of the declaration, so it is not stored but passed.
#ifndef LIB_REPOSITORY_STORED_VALUE_H_
#define LIB_REPOSITORY_STORED_VALUE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/values.h>
#include <qdxmodel/hash.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace NVORNQDX20::NRepository {

class TClass;
class TInstance;
class TNamespace;
struct TStoredReference;

/// A value that callers have read, and may keep the address of, and the property that they read. It
/// stays where it is when it is set, and so is owned by the stored value until the end.
class TReadValue : public ICIMProperty {
 public:
  const TCIMValue& GetValue() const override { return fValue; }

 protected:
  explicit TReadValue(TCIMValue&& value) : fValue(std::move(value)) {}

 private:
  friend class TStoredValue;

  TCIMValue fValue;
};

class TStoredValue {
 public:
  using TType = TCIMValue::TCIMType;

  /// Not set: the instance has the value of its class.
  TStoredValue() noexcept = default;
  /// Stores a value for an instance of `user`. Throws what WeakCopy() throws, and
  /// kQDXStatusNotFound for a key that the class of a reference does not declare.
  TStoredValue(const TCIMValue& value, const TClass& user) { Set(value, user); }
  TStoredValue(TStoredValue&& other) noexcept { Take(other); }
  TStoredValue& operator=(TStoredValue&& other) noexcept {
    if (this == &other) return *this;
    if (OwnsMemory()) Destroy();
    Take(other);
    return *this;
  }
  ~TStoredValue() {
    if (OwnsMemory()) Destroy();
  }

  // These store a value in place, where moving one that was just made would wait until all its
  // parts are written. REQUIRES: none is set; a failure changes nothing.

  /// As the constructor.
  void Set(const TCIMValue& value, const TClass& user);
  void SetNull() noexcept { fKind = kNull; }
  void SetText(std::string_view text);
  void SetTime(const TCIMDateTime& time);
  template <typename TNumber>
  void SetNumber(TNumber number) noexcept {
    static_assert(std::is_arithmetic_v<TNumber>);
    SetBytes(&number, sizeof number);
  }
  /// The same from the bytes of the native type, of which there are at most eight.
  void SetNumber(std::string_view bytes) noexcept { SetBytes(bytes.data(), bytes.size()); }

  /// Returns a reference to a committed instance, for another one of its namespace.
  static TStoredValue ReferenceTo(const TInstance& instance);
  bool IsSet() const noexcept { return fKind != kUnset; }
  bool IsNull() const noexcept;
  /// Returns the same value for another namespace, with references to its classes of the same
  /// names. Returns one that is not set for references that only the operations of the object model
  /// can copy: to other namespaces, null ones, and those that do not fit the classes there.
  TStoredValue CopyTo(TType type, const TNamespace& target) const;
  /// Returns the value in the form that callers get. REQUIRES: it is set.
  TCIMValue ToValue(TType type, TNamespace& ns) const;
  /// As IPlainValuesOfInstance; also returns false if the value is not set.
  bool FindPlain(TType type, TPlainValue& found) const;
  /// As IPlainReferencesOfInstance, except for the namespace.
  bool FindPlainReference(TPlainReference& found) const;
  /// Returns the value in the stored form of values.h. REQUIRES: it is set.
  TCIMValue WithoutOwner(TType type) const { return MakeValue(type, nullptr); }
  /// Returns the value if it is stored as one, else null.
  const TCIMValue* FindBoxed() const noexcept {
    return fKind == kBoxed || fKind == kRead ? Boxed() : nullptr;
  }
  /// Returns what Keep() was called with, or null.
  TReadValue* FindRead() const noexcept { return fKind == kRead ? Target<TReadValue>() : nullptr; }
  /// Stores the value as one that callers read. REQUIRES: it is the same, and holds no references.
  void Keep(std::unique_ptr<TReadValue> read) noexcept;
  /// Sets another value of this type where callers read the old one. REQUIRES: FindRead().
  void SetRead(const TStoredValue& value, TType type);

  bool Equals(const TStoredValue& other, TType type) const;
  /// Returns whether this is the text.
  bool IsText(std::string_view text) const noexcept { return IsText() && TextOf() == text; }
  /// Values that are equal have equal hashes.
  void AddTo(NModel::THasher& hasher, TType type) const;

 private:
  enum EKind : std::uint8_t {
    kUnset,
    kNull,
    kNumber,
    kShortText,
    kLongText,  // the first one with memory of its own
    kTime,
    kArray,
    kReference,
    kBoxed,
    kRead
  };
  struct TLongText;
  struct TArray;
  static constexpr std::size_t kMaxShortText = 14;

  template <typename T>
  T Load() const noexcept {
    static_assert(std::is_arithmetic_v<T> && sizeof(T) <= kMaxShortText);
    T content;
    std::memcpy(&content, fBytes, sizeof content);
    return content;
  }
  /// Returns what Point() stored.
  template <typename T>
  T* Target() const noexcept {
    void* target = nullptr;
    std::memcpy(&target, fBytes, sizeof target);
    return static_cast<T*>(target);
  }
  void Point(EKind kind, void* target) noexcept {
    std::memcpy(fBytes, &target, sizeof target);
    fKind = kind;
  }
  TCIMValue* Boxed() const noexcept {
    return fKind == kRead ? &Target<TReadValue>()->fValue : Target<TCIMValue>();
  }
  TArray* Elements() const noexcept { return Target<TArray>(); }
  TStoredReference* Referred() const noexcept { return Target<TStoredReference>(); }
  bool OwnsMemory() const noexcept { return fKind >= kLongText; }
  bool IsText() const noexcept {
    return fKind == kShortText || fKind == kLongText || (FindBoxed() != nullptr && IsBoxedText());
  }
  bool IsBoxedText() const noexcept { return Boxed()->FindString() != nullptr; }
  /// REQUIRES: the value is a text.
  std::string_view TextOf() const noexcept;
  void SetBytes(const void* bytes, std::size_t size) noexcept {
    std::memset(fBytes, 0, sizeof fBytes);
    std::memcpy(fBytes, bytes, size);
    fKind = kNumber;
  }
  void Box(TCIMValue&& value);
  void Destroy() noexcept;
  void Take(TStoredValue& other) noexcept {
    std::memcpy(static_cast<void*>(this), static_cast<const void*>(&other), sizeof other);
    other.fKind = kUnset;
  }
  void SetArray(const TCIMValue& value, const TClass& user);
  void SetReference(const TCIMValue& value, const TClass& user);
  TStoredValue CopyReferenceTo(const TNamespace& target) const;
  /// Returns the value for callers if `ns` is not null, else in the stored form of values.h.
  TCIMValue MakeValue(TType type, TNamespace* ns) const;
  TCIMValue MakeArray(TType elementType) const;
  TCIMValue MakeReference(TNamespace* ns) const;

  alignas(8) unsigned char fBytes[kMaxShortText] = {};
  std::uint8_t fSize = 0;  // of a short text
  EKind fKind = kUnset;
};

static_assert(sizeof(TStoredValue) == 16);

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_STORED_VALUE_H_
