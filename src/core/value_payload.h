// SPDX-License-Identifier: Apache-2.0
/// The contents of values that are not null: one class for each kind of content.
#ifndef SRC_CORE_VALUE_PAYLOAD_H_
#define SRC_CORE_VALUE_PAYLOAD_H_

#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "payload_memory.h"

namespace NVORNQDX20 {

/// The content of a value. Each class overrides the conversions of its kind; all others throw
/// kQDXStatusTypeMismatch.
class TCIMValueImpl {
 public:
  virtual ~TCIMValueImpl();
  virtual operator bool() const;
  virtual operator unsigned char() const;
  virtual operator signed char() const;
  virtual operator unsigned short() const;
  virtual operator short() const;
  virtual operator unsigned int() const;
  virtual operator int() const;
  virtual operator unsigned long() const;
  virtual operator long() const;
  virtual operator float() const;
  virtual operator double() const;
  virtual operator std::string() const;
  virtual operator TCIMDateTime() const;
  virtual operator TCIMReference() const;
  virtual operator std::vector<TCIMValue>&() const;
  virtual std::string ToString(unsigned char radix) const = 0;
  /// Returns false for a value of another type.
  virtual bool operator==(const TCIMValue& other) const = 0;
  /// REQUIRES: the other value has the same type and is not null.
  virtual bool operator<(const TCIMValue& other) const = 0;
  virtual std::unique_ptr<TCIMValueImpl> Clone() const = 0;

 protected:
  TCIMValueImpl() = default;
  TCIMValueImpl(const TCIMValueImpl&) = default;
  TCIMValueImpl& operator=(const TCIMValueImpl&) = delete;

  [[noreturn]] static void TypeMismatch();

  /// Returns the payload of another value. REQUIRES: it is a TPayload.
  template <typename TPayload>
  static const TPayload& PayloadOf(const TCIMValue& value) {
    return static_cast<const TPayload&>(*value.fImpl);
  }
  static void SetPayloadOf(TCIMValue& value, std::unique_ptr<TCIMValueImpl> payload) {
    value.fImpl = std::move(payload);
  }
};

/// Implements Clone() for the derived class TPayload.
template <typename TPayload, typename TBase = TCIMValueImpl>
class TClonable : public TBase {
 public:
  static void* operator new(std::size_t) { return TPayloadMemory::Take<sizeof(TPayload)>(); }
  static void operator delete(void* memory) { TPayloadMemory::Keep<sizeof(TPayload)>(memory); }

  std::unique_ptr<TCIMValueImpl> Clone() const override {
    return std::make_unique<TPayload>(static_cast<const TPayload&>(*this));
  }

 protected:
  using TBase::TBase;
};

/// A boolean or a number.
class TCIMNumericValueImpl final : public TClonable<TCIMNumericValueImpl> {
 public:
  /// REQUIRES: `type` is the type of T.
  template <typename T>
  TCIMNumericValueImpl(TCIMValue::TCIMType type, T value) : fType(type), fNumber(value) {}

  /// Returns whether the value has a payload of this class.
  static bool IsIn(const TCIMValue& value) {
    return !value.IsNull() &&
           value.GetType() - TCIMValue::TCIMType::kCIMTypeBoolean <=
               TCIMValue::TCIMType::kCIMTypeReal64 - TCIMValue::TCIMType::kCIMTypeBoolean;
  }

  operator bool() const override { return Get<bool>(TCIMValue::TCIMType::kCIMTypeBoolean); }
  operator unsigned char() const override {
    return Get<unsigned char>(TCIMValue::TCIMType::kCIMTypeUint8);
  }
  operator signed char() const override {
    return Get<signed char>(TCIMValue::TCIMType::kCIMTypeSint8);
  }
  operator unsigned short() const override {
    return Get<unsigned short>(TCIMValue::TCIMType::kCIMTypeUint16);
  }
  operator short() const override { return Get<short>(TCIMValue::TCIMType::kCIMTypeSint16); }
  operator unsigned int() const override {
    return Get<unsigned int>(TCIMValue::TCIMType::kCIMTypeUint32);
  }
  operator int() const override { return Get<int>(TCIMValue::TCIMType::kCIMTypeSint32); }
  operator unsigned long() const override {
    return Get<unsigned long>(TCIMValue::TCIMType::kCIMTypeUint64);
  }
  operator long() const override { return Get<long>(TCIMValue::TCIMType::kCIMTypeSint64); }
  operator float() const override { return Get<float>(TCIMValue::TCIMType::kCIMTypeReal32); }
  operator double() const override { return Get<double>(TCIMValue::TCIMType::kCIMTypeReal64); }
  std::string ToString(unsigned char radix) const override;
  bool operator==(const TCIMValue& other) const override;
  bool operator<(const TCIMValue& other) const override;

  /// REQUIRES: both have the same type.
  bool HasNumberOf(const TCIMNumericValueImpl& other) const {
    if (fType == TCIMValue::TCIMType::kCIMTypeReal32) return fNumber.fFloat == other.fNumber.fFloat;
    if (fType == TCIMValue::TCIMType::kCIMTypeReal64) {
      return fNumber.fDouble == other.fNumber.fDouble;
    }
    return fNumber.fUnsigned == other.fNumber.fUnsigned;
  }

  /// Writes what ToString returns. Returns the end of the text.
  static constexpr std::size_t kMaxLength = 32;
  char* Write(char* text, unsigned char radix) const;

 private:
  /// Integers are extended to 64 bits, so that those of one type are equal if all bits are.
  union TNumber {
    explicit TNumber(float number) : fUnsigned(0) { fFloat = number; }
    explicit TNumber(double number) : fDouble(number) {}
    template <typename T>
    explicit TNumber(T number) : fSigned(static_cast<std::int64_t>(number)) {}

    std::uint64_t fUnsigned;
    std::int64_t fSigned;
    float fFloat;
    double fDouble;
  };

  template <typename T>
  T Get(TCIMValue::TCIMType::ECIMType type) const {
    if (fType != type) TypeMismatch();
    if constexpr (std::is_same_v<T, float>) {
      return fNumber.fFloat;
    } else if constexpr (std::is_same_v<T, double>) {
      return fNumber.fDouble;
    } else {
      return static_cast<T>(fNumber.fSigned);
    }
  }

  TCIMValue::TCIMType fType;
  TNumber fNumber;
};

/// A kind of content that one class of values makes up: T, of CIM type `kType`.
template <typename TPayload, typename T, TCIMValue::TCIMType::ECIMType kType>
class TContentValueImpl : public TClonable<TPayload> {
 public:
  explicit TContentValueImpl(const T& content) : fContent(content) {}
  explicit TContentValueImpl(T&& content) : fContent(std::move(content)) {}

  operator T() const override { return fContent; }
  const T& GetContent() const { return fContent; }

  bool operator==(const TCIMValue& other) const override {
    return other.GetType() == kType && !other.IsNull() && fContent == ContentOf(other);
  }
  bool operator<(const TCIMValue& other) const override { return fContent < ContentOf(other); }

 protected:
  static const T& ContentOf(const TCIMValue& value) {
    return TCIMValueImpl::PayloadOf<TContentValueImpl>(value).fContent;
  }

  T fContent;
};

class TCIMStringValueImpl final : public TContentValueImpl<TCIMStringValueImpl, std::string,
                                                           TCIMValue::TCIMType::kCIMTypeString> {
 public:
  using TContentValueImpl::TContentValueImpl;
  /// The value that takes over a text.
  static TCIMValue ToValue(std::string&& text);
  std::string ToString(unsigned char radix) const override;
};

class TCIMDateTimeValueImpl final
    : public TContentValueImpl<TCIMDateTimeValueImpl, TCIMDateTime,
                               TCIMValue::TCIMType::kCIMTypeDateTime> {
 public:
  using TContentValueImpl::TContentValueImpl;
  std::string ToString(unsigned char radix) const override;
};

class TCIMReferenceValueImpl final
    : public TContentValueImpl<TCIMReferenceValueImpl, TCIMReference,
                               TCIMValue::TCIMType::kCIMTypeReference> {
 public:
  using TContentValueImpl::TContentValueImpl;
  /// The value of a payload whose reference has its class.
  static TCIMValue ToValue(std::unique_ptr<TCIMReferenceValueImpl> payload);
  TCIMReferenceImpl& Body() { return *fContent.GetBody(); }
  std::string ToString(unsigned char radix) const override;
};

class TCIMArrayValueImpl final : public TClonable<TCIMArrayValueImpl> {
 public:
  explicit TCIMArrayValueImpl(const std::vector<TCIMValue>& elements) : fElements(elements) {}

  operator std::vector<TCIMValue>&() const override { return fElements; }
  std::string ToString(unsigned char radix) const override;
  bool operator==(const TCIMValue& other) const override;
  bool operator<(const TCIMValue& other) const override;

 private:
  mutable std::vector<TCIMValue> fElements;  // callers fill arrays in place, through const values
};

}  // namespace NVORNQDX20

#endif  // SRC_CORE_VALUE_PAYLOAD_H_
