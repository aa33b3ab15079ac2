// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxcore/value.h>

#include "value_payload.h"

#include <memory>
#include <type_traits>
#include <utility>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

/// The CIM type and the payload class of a native type.
template <TCIMType::ECIMType kCIMType, typename TPayloadClass = TCIMNumericValueImpl>
struct TMapping {
  static constexpr TCIMType::ECIMType kType = kCIMType;
  using TPayload = TPayloadClass;
};

template <typename T>
struct TMappingOf;

// clang-format off
template <> struct TMappingOf<bool>           : TMapping<TCIMType::kCIMTypeBoolean> {};
template <> struct TMappingOf<unsigned char>  : TMapping<TCIMType::kCIMTypeUint8> {};
template <> struct TMappingOf<signed char>    : TMapping<TCIMType::kCIMTypeSint8> {};
template <> struct TMappingOf<unsigned short> : TMapping<TCIMType::kCIMTypeUint16> {};
template <> struct TMappingOf<short>          : TMapping<TCIMType::kCIMTypeSint16> {};
template <> struct TMappingOf<unsigned int>   : TMapping<TCIMType::kCIMTypeUint32> {};
template <> struct TMappingOf<int>            : TMapping<TCIMType::kCIMTypeSint32> {};
template <> struct TMappingOf<unsigned long>  : TMapping<TCIMType::kCIMTypeUint64> {};
template <> struct TMappingOf<long>           : TMapping<TCIMType::kCIMTypeSint64> {};
template <> struct TMappingOf<float>          : TMapping<TCIMType::kCIMTypeReal32> {};
template <> struct TMappingOf<double>         : TMapping<TCIMType::kCIMTypeReal64> {};
template <> struct TMappingOf<std::string>
    : TMapping<TCIMType::kCIMTypeString, TCIMStringValueImpl> {};
template <> struct TMappingOf<TCIMDateTime>
    : TMapping<TCIMType::kCIMTypeDateTime, TCIMDateTimeValueImpl> {};
template <> struct TMappingOf<TCIMReference>
    : TMapping<TCIMType::kCIMTypeReference, TCIMReferenceValueImpl> {};
// clang-format on

TCIMType::ECIMType WithoutArrayFlag(TCIMType type) {
  return static_cast<TCIMType::ECIMType>(type &
                                         ~static_cast<unsigned int>(TCIMType::kCIMTypeArray));
}

bool CanHoldContent(TCIMType type) {
  return type >= TCIMType::kCIMTypeBoolean && type <= TCIMType::kCIMTypeReference &&
         type != TCIMType::kCIMTypeChar;
}

}  // namespace

TCIMValue::TCIMValue() : fType(TCIMType::kCIMTypeNone), fMaxArraySize(0) {}
TCIMValue::TCIMValue(bool value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned char value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(signed char value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned short value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(short value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned int value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(int value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned long value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(long value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(float value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(double value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const std::string& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const char* value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const TCIMDateTime& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(TCIMReference& value) : TCIMValue() { Set(value); }

TCIMValue::TCIMValue(TCIMType type, unsigned int maxArraySize)
    : fType(maxArraySize == 0 ? type : TCIMType(type | TCIMType::kCIMTypeArray)),
      fMaxArraySize(maxArraySize) {}

TCIMValue::TCIMValue(TCIMType elementType, unsigned int maxArraySize,
                     const std::vector<TCIMValue>& elements)
    : TCIMValue() {
  Set(elementType, maxArraySize, elements);
}

// What Set(other) does to a null value of no type, without the comparison that it begins with.
TCIMValue::TCIMValue(const TCIMValue& other) : fType(other.fType), fMaxArraySize(0) {
  if (IsArray()) {
    fMaxArraySize = other.fMaxArraySize;
  } else if (!CanHoldContent(fType)) {
    if (fType == TCIMType::kCIMTypeNone) return;
    throw TQDXException(kQDXStatusTypeMismatch);
  }
  if (other.fImpl) fImpl = other.fImpl->Clone();
  if (IsReference()) fReferencedClass = other.fReferencedClass;
}

TCIMValue::TCIMValue(TCIMValue&& other) noexcept
    : fType(other.fType),
      fImpl(std::move(other.fImpl)),
      fReferencedClass(std::move(other.fReferencedClass)),
      fMaxArraySize(other.fMaxArraySize) {
  // Most values have none of these.
  if (fReferencedClass || fMaxArraySize != 0 || IsArray()) DropWhatCopiesDrop();
}

TCIMValue& TCIMValue::operator=(const TCIMValue& other) {
  Set(other);
  return *this;
}

TCIMValue::~TCIMValue() = default;

template <typename T>
void TCIMValue::SetScalar(const T& value) {
  // The new payload first: a failure changes nothing.
  using TPayload = typename TMappingOf<T>::TPayload;
  std::unique_ptr<TCIMValueImpl> payload;
  if constexpr (std::is_same_v<TPayload, TCIMNumericValueImpl>) {
    payload = std::make_unique<TPayload>(TMappingOf<T>::kType, value);
  } else {
    payload = std::make_unique<TPayload>(value);
  }
  fType = TMappingOf<T>::kType;
  fImpl = std::move(payload);
}

void TCIMValue::Set(bool value) { SetScalar(value); }
void TCIMValue::Set(unsigned char value) { SetScalar(value); }
void TCIMValue::Set(signed char value) { SetScalar(value); }
void TCIMValue::Set(unsigned short value) { SetScalar(value); }
void TCIMValue::Set(short value) { SetScalar(value); }
void TCIMValue::Set(unsigned int value) { SetScalar(value); }
void TCIMValue::Set(int value) { SetScalar(value); }
void TCIMValue::Set(unsigned long value) { SetScalar(value); }
void TCIMValue::Set(long value) { SetScalar(value); }
void TCIMValue::Set(float value) { SetScalar(value); }
void TCIMValue::Set(double value) { SetScalar(value); }
void TCIMValue::Set(const std::string& value) { SetScalar(value); }
void TCIMValue::Set(const char* value) {
  if (value == nullptr) throw TQDXException(kQDXStatusValueIsNULL);
  SetScalar(std::string(value));
}
void TCIMValue::Set(const TCIMDateTime& value) { SetScalar(value); }

void TCIMValue::Set(TCIMReference& value) {
  // The class first: a reference without one changes nothing.
  boost::shared_ptr<ICIMClass> referencedClass = value.GetClass();
  SetScalar(value);
  fReferencedClass = std::move(referencedClass);
}

void TCIMValue::Set(TCIMType elementType, unsigned int maxArraySize,
                    const std::vector<TCIMValue>& elements) {
  // The elements may be this value's own: the old payload lives until they are copied.
  auto payload = std::make_unique<TCIMArrayValueImpl>(elements);
  const std::vector<TCIMValue>& copied = *payload;
  const std::unique_ptr<TCIMValueImpl> old = std::exchange(fImpl, std::move(payload));
  fType = TCIMType(elementType | TCIMType::kCIMTypeArray);
  fMaxArraySize = maxArraySize;

  const TCIMType wanted = WithoutArrayFlag(elementType);
  for (const TCIMValue& element : copied) {
    if (element.fType != wanted) {
      LogErrorAndThrow(kQDXStatusInvalidProperty,
                       {"Core: ERROR: Attempting to create array of type ", wanted.ToString(),
                        ", but element is of type ", element.fType.ToString(), "."});
    }
  }
}

void TCIMValue::Set(const TCIMValue& other) {
  // Identity first: a NaN, or an array with one, does not equal itself.
  if (this == &other || *this == other) return;

  if (!other.IsArray() && !CanHoldContent(other.fType)) {
    fType = other.fType;
    fImpl.reset();
    throw TQDXException(kQDXStatusTypeMismatch);
  }
  // Either value may be an element of the other: the copy is whole before anything changes, and the
  // old payload lives until the end.
  std::unique_ptr<TCIMValueImpl> payload = other.fImpl ? other.fImpl->Clone() : nullptr;
  const std::unique_ptr<TCIMValueImpl> old = std::exchange(fImpl, std::move(payload));
  fType = other.fType;
  if (IsArray()) fMaxArraySize = other.fMaxArraySize;
  if (IsReference()) fReferencedClass = other.fReferencedClass;
}

void TCIMValue::SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize) {
  fType = type;
  if (IsArray()) fMaxArraySize = maxArraySize;
  fImpl.reset();
}

void TCIMValue::SetReferencedClass(boost::shared_ptr<ICIMClass> referencedClass) {
  if (fImpl) throw TQDXException(kQDXStatusInvalidOpSequence);
  fReferencedClass = std::move(referencedClass);
}

/// Drops what Set(other) does not copy, so that a move and a copy have the same result.
void TCIMValue::DropWhatCopiesDrop() noexcept {
  if (!IsReference()) fReferencedClass.reset();
  if (!IsArray()) {
    fMaxArraySize = 0;
  } else if (fImpl) {
    std::vector<TCIMValue>& elements = *fImpl;
    for (TCIMValue& element : elements) element.DropWhatCopiesDrop();
  }
}

template <typename T>
T TCIMValue::Convert() const {
  if (!fImpl) throw TQDXException(kQDXStatusValueIsNULL);
  if (fType != TMappingOf<T>::kType) throw TQDXException(kQDXStatusTypeMismatch);
  return *fImpl;
}

TCIMValue::operator bool() const { return Convert<bool>(); }
TCIMValue::operator unsigned char() const { return Convert<unsigned char>(); }
TCIMValue::operator signed char() const { return Convert<signed char>(); }
TCIMValue::operator unsigned short() const { return Convert<unsigned short>(); }
TCIMValue::operator short() const { return Convert<short>(); }
TCIMValue::operator unsigned int() const { return Convert<unsigned int>(); }
TCIMValue::operator int() const { return Convert<int>(); }
TCIMValue::operator unsigned long() const { return Convert<unsigned long>(); }
TCIMValue::operator long() const { return Convert<long>(); }
TCIMValue::operator float() const { return Convert<float>(); }
TCIMValue::operator double() const { return Convert<double>(); }
TCIMValue::operator std::string() const { return Convert<std::string>(); }
TCIMValue::operator TCIMDateTime() const { return Convert<TCIMDateTime>(); }
TCIMValue::operator TCIMReference() const { return Convert<TCIMReference>(); }

TCIMValue::operator std::vector<TCIMValue>&() const {
  if (!fImpl) throw TQDXException(kQDXStatusValueIsNULL);
  // Not kQDXStatusNotArray, on purpose: every wrong conversion fails alike.
  if (!IsArray()) throw TQDXException(kQDXStatusTypeMismatch);
  return *fImpl;
}

const std::string* TCIMValue::FindString() const noexcept {
  if (!fImpl || fType != TCIMType::kCIMTypeString) return nullptr;
  return &static_cast<const TCIMStringValueImpl&>(*fImpl).GetContent();
}

const TCIMReference* TCIMValue::FindReference() const noexcept {
  if (!fImpl || fType != TCIMType::kCIMTypeReference) return nullptr;
  return &static_cast<const TCIMReferenceValueImpl&>(*fImpl).GetContent();
}

bool TCIMValue::operator==(const TCIMValue& other) const {
  if (IsNull() != other.IsNull() || fType != other.fType) return false;
  if (TCIMNumericValueImpl::IsIn(*this)) {
    return static_cast<const TCIMNumericValueImpl&>(*fImpl).HasNumberOf(
        static_cast<const TCIMNumericValueImpl&>(*other.fImpl));
  }
  if (!IsNull()) return *fImpl == other;
  if (IsReference()) return fReferencedClass == other.fReferencedClass;
  return !IsArray() || fMaxArraySize == other.fMaxArraySize;
}

bool TCIMValue::operator<(const TCIMValue& other) const {
  if (IsNull() || other.IsNull()) return IsNull() && !other.IsNull();
  if (fType != other.fType) {
    return static_cast<std::int32_t>(fType) < static_cast<std::int32_t>(other.fType);
  }
  return *fImpl < other;
}

bool TCIMValue::operator!=(const TCIMValue& other) const { return !(*this == other); }
bool TCIMValue::operator>(const TCIMValue& other) const {
  return !(*this == other) && !(*this < other);
}
bool TCIMValue::operator>=(const TCIMValue& other) const { return !(*this < other); }
bool TCIMValue::operator<=(const TCIMValue& other) const { return *this == other || *this < other; }

std::string TCIMValue::ToString(unsigned char radix) const {
  if (!fImpl) throw TQDXException(kQDXStatusValueIsNULL);
  return fImpl->ToString(radix);
}

}  // namespace NVORNQDX20
