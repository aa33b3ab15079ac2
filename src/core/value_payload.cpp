// SPDX-License-Identifier: Apache-2.0
#include "value_payload.h"

#include <qdxcore/status.h>

#include <charconv>

namespace NVORNQDX20 {
namespace {

[[noreturn]] void TypeMismatch() { throw TQDXException(kQDXStatusTypeMismatch); }

std::string Format(bool value, int) { return value ? "true" : "false"; }

/// As the classic streams write it: 6 significant digits, "1e-05", no zeros at the end.
std::string Format(double value, int radix) {
  if (radix != 10) throw TQDXException(kQDXStatusNotSupported);
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
  return std::string(text, end.ptr);
}

std::string Format(float value, int radix) { return Format(double{value}, radix); }

template <typename T>
std::string Format(T value, int radix) {
  // Signed numbers are refused in other radices, rather than shown as two's complement.
  if (std::is_signed_v<T> && radix != 10) throw TQDXException(kQDXStatusNotSupported);
  char text[24];
  const auto end = std::to_chars(text, text + sizeof text, value, radix);
  if (radix != 16) return std::string(text, end.ptr);

  const auto length = static_cast<std::size_t>(end.ptr - text);
  std::string padded(2 * sizeof(T) - length, '0');
  for (const char* c = text; c != end.ptr; ++c) {
    padded += static_cast<char>(*c >= 'a' ? *c - 'a' + 'A' : *c);
  }
  return padded;
}

}  // namespace

TCIMValueImpl::~TCIMValueImpl() = default;
TCIMValueImpl::operator bool() const { TypeMismatch(); }
TCIMValueImpl::operator unsigned char() const { TypeMismatch(); }
TCIMValueImpl::operator signed char() const { TypeMismatch(); }
TCIMValueImpl::operator unsigned short() const { TypeMismatch(); }
TCIMValueImpl::operator short() const { TypeMismatch(); }
TCIMValueImpl::operator unsigned int() const { TypeMismatch(); }
TCIMValueImpl::operator int() const { TypeMismatch(); }
TCIMValueImpl::operator unsigned long() const { TypeMismatch(); }
TCIMValueImpl::operator long() const { TypeMismatch(); }
TCIMValueImpl::operator float() const { TypeMismatch(); }
TCIMValueImpl::operator double() const { TypeMismatch(); }
TCIMValueImpl::operator std::string() const { TypeMismatch(); }
TCIMValueImpl::operator TCIMDateTime() const { TypeMismatch(); }
TCIMValueImpl::operator TCIMReference() const { TypeMismatch(); }
TCIMValueImpl::operator std::vector<TCIMValue>&() const { TypeMismatch(); }

template <typename T>
T TCIMNumericValueImpl::Get() const {
  const T* const number = std::get_if<T>(&fNumber);
  if (number == nullptr) TypeMismatch();
  return *number;
}

std::string TCIMNumericValueImpl::ToString(unsigned char radix) const {
  if (radix != 10 && radix != 16 && radix != 8) throw TQDXException(kQDXStatusNotSupported);
  return std::visit([radix](auto number) { return Format(number, radix); }, fNumber);
}

bool TCIMNumericValueImpl::operator==(const TCIMValue& other) const {
  return other.GetType() == GetType() && !other.IsNull() &&
         fNumber == PayloadOf<TCIMNumericValueImpl>(other).fNumber;
}

bool TCIMNumericValueImpl::operator<(const TCIMValue& other) const {
  return fNumber < PayloadOf<TCIMNumericValueImpl>(other).fNumber;
}

std::string TCIMStringValueImpl::ToString(unsigned char) const { return fContent; }

std::string TCIMDateTimeValueImpl::ToString(unsigned char) const { return fContent.ToString(); }

TCIMValue TCIMReferenceValueImpl::ToValue(std::unique_ptr<TCIMReferenceValueImpl> payload) {
  TCIMValue value(TCIMValue::TCIMType::kCIMTypeReference, 0);
  value.SetReferencedClass(payload->fContent.GetClass());
  SetPayloadOf(value, std::move(payload));
  return value;
}

std::string TCIMReferenceValueImpl::ToString(unsigned char) const { return fContent.GetPath(); }

std::string TCIMArrayValueImpl::ToString(unsigned char radix) const {
  std::string text = "{ ";
  for (const TCIMValue& element : fElements) {
    if (&element != &fElements.front()) text += ", ";
    text += element.ToString(radix);
  }
  text += " }";
  return text;
}

bool TCIMArrayValueImpl::operator==(const TCIMValue& other) const {
  return other.IsArray() && !other.IsNull() &&
         fElements == PayloadOf<TCIMArrayValueImpl>(other).fElements;
}

bool TCIMArrayValueImpl::operator<(const TCIMValue&) const {
  throw TQDXException(kQDXStatusNotImplemented);
}

}  // namespace NVORNQDX20
