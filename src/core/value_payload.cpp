// SPDX-License-Identifier: Apache-2.0
#include "value_payload.h"

#include <qdxcore/status.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

/// As the classic streams write it: 6 significant digits, "1e-05", no zeros at the end.
char* WriteReal(char* text, double value, int radix) {
  if (radix != 10) throw TQDXException(kQDXStatusNotSupported);
  return std::to_chars(text, text + TCIMNumericValueImpl::kMaxLength, value,
                       std::chars_format::general, 6)
      .ptr;
}

char* WriteSigned(char* text, std::int64_t value, int radix) {
  // Refused in other radices, rather than shown as two's complement.
  if (radix != 10) throw TQDXException(kQDXStatusNotSupported);
  return std::to_chars(text, text + TCIMNumericValueImpl::kMaxLength, value).ptr;
}

/// Hexadecimal numbers have all the digits of a type of `size` bytes.
char* WriteUnsigned(char* text, std::uint64_t value, int radix, int size) {
  char* const end = text + TCIMNumericValueImpl::kMaxLength;
  if (radix == 8) return std::to_chars(text, end, value, radix).ptr;
  if (radix == 10) {
    const auto narrow = static_cast<std::uint32_t>(value);  // divides in half the time
    return narrow == value ? std::to_chars(text, end, narrow).ptr
                           : std::to_chars(text, end, value).ptr;
  }
  for (int shift = 8 * size; shift > 0;) *text++ = "0123456789ABCDEF"[value >> (shift -= 4) & 15];
  return text;
}

}  // namespace

TCIMValueImpl::~TCIMValueImpl() = default;
void TCIMValueImpl::TypeMismatch() { throw TQDXException(kQDXStatusTypeMismatch); }

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

char* TCIMNumericValueImpl::Write(char* text, unsigned char radix) const {
  if (radix != 10 && radix != 16 && radix != 8) throw TQDXException(kQDXStatusNotSupported);
  switch (fType) {
    case TCIMType::kCIMTypeBoolean: {
      const std::string_view word = fNumber.fUnsigned != 0 ? "true" : "false";
      return text + word.copy(text, word.size());
    }
    case TCIMType::kCIMTypeReal32:
      return WriteReal(text, double{fNumber.fFloat}, radix);
    case TCIMType::kCIMTypeReal64:
      return WriteReal(text, fNumber.fDouble, radix);
    case TCIMType::kCIMTypeUint8:
      return WriteUnsigned(text, fNumber.fUnsigned, radix, 1);
    case TCIMType::kCIMTypeUint16:
      return WriteUnsigned(text, fNumber.fUnsigned, radix, 2);
    case TCIMType::kCIMTypeUint32:
      return WriteUnsigned(text, fNumber.fUnsigned, radix, 4);
    case TCIMType::kCIMTypeUint64:
      return WriteUnsigned(text, fNumber.fUnsigned, radix, 8);
    default:
      return WriteSigned(text, fNumber.fSigned, radix);
  }
}

std::string TCIMNumericValueImpl::ToString(unsigned char radix) const {
  char text[kMaxLength];
  return std::string(text, Write(text, radix));
}

bool TCIMNumericValueImpl::operator==(const TCIMValue& other) const {
  return other.GetType() == fType && !other.IsNull() &&
         HasNumberOf(PayloadOf<TCIMNumericValueImpl>(other));
}

bool TCIMNumericValueImpl::operator<(const TCIMValue& other) const {
  const TNumber& right = PayloadOf<TCIMNumericValueImpl>(other).fNumber;
  switch (fType) {
    case TCIMType::kCIMTypeReal32:
      return fNumber.fFloat < right.fFloat;
    case TCIMType::kCIMTypeReal64:
      return fNumber.fDouble < right.fDouble;
    case TCIMType::kCIMTypeUint64:
      return fNumber.fUnsigned < right.fUnsigned;
    default:
      return fNumber.fSigned < right.fSigned;
  }
}

TCIMValue TCIMStringValueImpl::ToValue(std::string&& text) {
  TCIMValue value(TCIMType::kCIMTypeString, 0);
  SetPayloadOf(value, std::make_unique<TCIMStringValueImpl>(std::move(text)));
  return value;
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

// Most arrays are of numbers, and cost little more than a loop over those.

std::string TCIMArrayValueImpl::ToString(unsigned char radix) const {
  constexpr std::size_t kLongest = 2 + TCIMNumericValueImpl::kMaxLength;
  char buffer[16 * kLongest] = {'{', ' '};
  char* end = buffer + 2;
  std::string text;
  const char* separator = "";
  for (const TCIMValue& element : fElements) {
    const bool isNumber = TCIMNumericValueImpl::IsIn(element);
    if (!isNumber || std::end(buffer) - end < static_cast<std::ptrdiff_t>(kLongest)) {
      text.append(buffer, static_cast<std::size_t>(end - buffer));
      end = buffer;
    }
    while (*separator != '\0') *end++ = *separator++;
    if (isNumber) {
      end = PayloadOf<TCIMNumericValueImpl>(element).Write(end, radix);
    } else {
      text.append(buffer, static_cast<std::size_t>(end - buffer)).append(element.ToString(radix));
      end = buffer;
    }
    separator = ", ";
  }
  text.append(buffer, static_cast<std::size_t>(end - buffer));
  return text += " }";
}

bool TCIMArrayValueImpl::operator==(const TCIMValue& other) const {
  if (!other.IsArray() || other.IsNull()) return false;
  const std::vector<TCIMValue>& elements = PayloadOf<TCIMArrayValueImpl>(other).fElements;
  return std::equal(fElements.begin(), fElements.end(), elements.begin(), elements.end(),
                    [](const TCIMValue& left, const TCIMValue& right) {
                      if (!TCIMNumericValueImpl::IsIn(left)) return left == right;
                      return left.GetType() == right.GetType() && !right.IsNull() &&
                             PayloadOf<TCIMNumericValueImpl>(left).HasNumberOf(
                                 PayloadOf<TCIMNumericValueImpl>(right));
                    });
}

bool TCIMArrayValueImpl::operator<(const TCIMValue&) const {
  throw TQDXException(kQDXStatusNotImplemented);
}

}  // namespace NVORNQDX20
