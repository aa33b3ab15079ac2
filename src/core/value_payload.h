// SPDX-License-Identifier: Apache-2.0
/// The contents of values that are not null: one class for each kind of content.
#ifndef SRC_CORE_VALUE_PAYLOAD_H_
#define SRC_CORE_VALUE_PAYLOAD_H_

#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

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
  std::unique_ptr<TCIMValueImpl> Clone() const override {
    return std::make_unique<TPayload>(static_cast<const TPayload&>(*this));
  }

 protected:
  using TBase::TBase;
};

/// A boolean or a number. The alternatives are in the order of their type codes.
class TCIMNumericValueImpl final : public TClonable<TCIMNumericValueImpl> {
 public:
  template <typename T>
  explicit TCIMNumericValueImpl(T value) : fNumber(value) {}

  operator bool() const override { return Get<bool>(); }
  operator unsigned char() const override { return Get<unsigned char>(); }
  operator signed char() const override { return Get<signed char>(); }
  operator unsigned short() const override { return Get<unsigned short>(); }
  operator short() const override { return Get<short>(); }
  operator unsigned int() const override { return Get<unsigned int>(); }
  operator int() const override { return Get<int>(); }
  operator unsigned long() const override { return Get<unsigned long>(); }
  operator long() const override { return Get<long>(); }
  operator float() const override { return Get<float>(); }
  operator double() const override { return Get<double>(); }
  std::string ToString(unsigned char radix) const override;
  bool operator==(const TCIMValue& other) const override;
  bool operator<(const TCIMValue& other) const override;

 private:
  using TNumber = std::variant<bool, unsigned char, signed char, unsigned short, short,
                               unsigned int, int, unsigned long, long, float, double>;
  static_assert(
      std::is_same_v<double, std::variant_alternative_t<TCIMValue::TCIMType::kCIMTypeReal64 -
                                                            TCIMValue::TCIMType::kCIMTypeBoolean,
                                                        TNumber>>);

  template <typename T>
  T Get() const;
  TCIMValue::TCIMType GetType() const {
    return static_cast<unsigned int>(fNumber.index()) + TCIMValue::TCIMType::kCIMTypeBoolean;
  }

  TNumber fNumber;
};

/// A kind of content that one class of values makes up: T, of CIM type `kType`.
template <typename TPayload, typename T, TCIMValue::TCIMType::ECIMType kType>
class TContentValueImpl : public TClonable<TPayload> {
 public:
  explicit TContentValueImpl(const T& content) : fContent(content) {}

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
