// SPDX-License-Identifier: Apache-2.0
/// The CIM type descriptor and the typed value (DMTF DSP0004, CIM data types).
#ifndef QDXCORE_VALUE_H_
#define QDXCORE_VALUE_H_

#include <qdxcore/config.h>
#include <qdxcore/datetime.h>

#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class ICIMClass;
class ICIMNamespace;
class TCIMReference;
class TCIMValueImpl;

/// One CIM property, parameter or key value: null, a scalar, or an array of scalars.
///
/// Copies are deep. Not synchronised: one thread only. All failures throw TQDXException.
///
///   TCIMValue speed(std::uint32_t{7200});
///   std::uint32_t rpm = speed;    // 7200
///   int wrong = speed;            // throws kQDXStatusTypeMismatch: it is no sint32
///   TCIMValue unknown(TCIMValue::TCIMType::kCIMTypeUint32, 0);  // null, but typed
///
/// The compiler must know which native type is meant. Initialise a string, or name the type, since
/// `text = value` is ambiguous; compare with a value, since `speed == 7200U` is:
///
///   std::string text = name;
///   text = std::string(name);
///   if (speed == TCIMValue(7200U)) ...
///
/// A value converts to the one native type of its CIM type, and to no other:
///
///   boolean bool               uint32  unsigned int     real32    float
///   uint8   unsigned char      sint32  int              real64    double
///   sint8   signed char        uint64  unsigned long    string    std::string
///   uint16  unsigned short     sint64  long             datetime  TCIMDateTime
///   sint16  short              char    none             reference TCIMReference
///   array of T  std::vector<TCIMValue>&
class QDXCORE_EXPORT TCIMValue {
 public:
  /// The type of a value: a CIM intrinsic type, with or without the array flag.
  class QDXCORE_EXPORT TCIMType {
   public:
    /// The numbers order values of different types and are part of the binary contract.
    enum ECIMType : std::uint32_t {
      kCIMTypeNone = 0,        ///< A value that was never given a type.
      kCIMTypeBoolean = 1,     ///< "boolean"
      kCIMTypeUint8 = 2,       ///< "uint8"
      kCIMTypeSint8 = 3,       ///< "sint8"
      kCIMTypeUint16 = 4,      ///< "uint16"
      kCIMTypeSint16 = 5,      ///< "sint16"
      kCIMTypeUint32 = 6,      ///< "uint32"
      kCIMTypeSint32 = 7,      ///< "sint32"
      kCIMTypeUint64 = 8,      ///< "uint64"
      kCIMTypeSint64 = 9,      ///< "sint64"
      kCIMTypeReal32 = 10,     ///< "real32"
      kCIMTypeReal64 = 11,     ///< "real64"
      kCIMTypeChar = 12,       ///< "char": always null, never read, and it cannot be copied. So
                               ///< copying a namespace that declares one fails.
      kCIMTypeString = 13,     ///< "string"
      kCIMTypeDateTime = 14,   ///< "datetime"
      kCIMTypeReference = 15,  ///< "reference"
      kCIMTypeArray = 16       ///< A flag, combined with one of the above.
    };

    TCIMType(ECIMType type) noexcept : fType(type) {}
    /// From a combination such as kCIMTypeUint8 | kCIMTypeArray, or 0; not checked.
    TCIMType(unsigned int type) noexcept : fType(static_cast<ECIMType>(type)) {}
    /// From a keyword, in whatever case. "char", blanks and array brackets are not read; what is
    /// not read makes kCIMTypeNone.
    explicit TCIMType(std::string keyword);

    /// The code as stored, array flag included.
    operator ECIMType() const noexcept { return fType; }

    /// The keyword of the element type: an array of uint8 is "uint8" too.
    /// Throws kQDXStatusTypeMismatch if there is none.
    std::string ToString() const;

   private:
    ECIMType fType;
  };

  // What would silently become a number or a boolean is refused; the constructors need to know it.
 private:
  template <typename T, typename... TOther>
  static constexpr bool kIsOneOf = (std::is_same_v<T, TOther> || ...);

  /// Characters, enumerators, pointers, and objects that convert to a number; not C strings, and
  /// no object that is or converts to text, a date-time or a reference.
  template <typename T>
  using TMistakenForANumber =
      std::enable_if_t<std::is_null_pointer_v<T> ||
                       (std::is_convertible_v<T&, bool> &&
                        !kIsOneOf<T, bool, unsigned char, signed char, unsigned short, short,
                                  unsigned int, int, unsigned long, long, float, double> &&
                        !std::is_convertible_v<T&, const char*> &&
                        !std::is_convertible_v<T&, const std::string&> &&
                        !std::is_convertible_v<T&, const TCIMDateTime&> &&
                        !std::is_convertible_v<T*, const TCIMReference*>)>;

 public:
  /// Null, of no type.
  TCIMValue();
  TCIMValue(bool value);
  TCIMValue(unsigned char value);
  TCIMValue(signed char value);
  TCIMValue(unsigned short value);
  TCIMValue(short value);
  TCIMValue(unsigned int value);
  TCIMValue(int value);
  TCIMValue(unsigned long value);
  TCIMValue(long value);
  TCIMValue(float value);
  TCIMValue(double value);
  TCIMValue(const std::string& value);
  /// A null pointer throws kQDXStatusValueIsNULL.
  TCIMValue(const char* value);
  TCIMValue(const TCIMDateTime& value);
  /// Takes the referenced class from the reference, which must have one.
  TCIMValue(TCIMReference& value);
  /// Null, of a type. A size other than 0 makes it an array of that type.
  TCIMValue(TCIMType type, unsigned int maxArraySize);
  /// As Set with the same arguments.
  TCIMValue(TCIMType elementType, unsigned int maxArraySize,
            const std::vector<TCIMValue>& elements);
  /// A scalar from its text.
  ///
  /// Integers take a C prefix (0x, 0) and, like reals, end at the first character that does not
  /// belong to them; what cannot be read, or does not fit, is 0 or false. But uint8 and sint8 are
  /// read as 32-bit numbers, of which they keep the low byte; and a minus sign makes uint64 wrap,
  /// and the other unsigned types 0. Strings are taken as they stand, date-times in their DMTF
  /// form, references as an object path in `ns`, which nothing else looks at. Throws
  /// kQDXStatusTypeMismatch for arrays and for types that cannot be read, and what the date-time
  /// and the object path throw.
  TCIMValue(TCIMType type, std::string& text, boost::shared_ptr<ICIMNamespace> ns);

  /// Refused: a status code, a type, an enumerator, a character, a pointer, an object that merely
  /// converts to a number. Say what it is to be: TCIMValue(static_cast<std::uint32_t>(colour)).
  template <typename T, typename = TMistakenForANumber<T>>
  TCIMValue(T) = delete;

  /// As Set(other) on a null value of no type.
  TCIMValue(const TCIMValue& other);
  /// The result of a copy, without the copying; the other value is null then.
  TCIMValue(TCIMValue&& other) noexcept;
  /// As Set(other). There is no move assignment: what assignment leaves alone can be seen.
  TCIMValue& operator=(const TCIMValue& other);
  ~TCIMValue();

  /// Exchanges all of two values, whatever their types. std::swap does the same. Neither may be an
  /// element of the other.
  friend void swap(TCIMValue& left, TCIMValue& right) noexcept {
    std::swap(left.fType, right.fType);
    left.fImpl.swap(right.fImpl);
    left.fReferencedClass.swap(right.fReferencedClass);
    std::swap(left.fMaxArraySize, right.fMaxArraySize);
  }

  // Each takes the mapped type, without array flag, and the value; maximum array size and
  // referenced class stay as they were.
  void Set(bool value);
  void Set(unsigned char value);
  void Set(signed char value);
  void Set(unsigned short value);
  void Set(short value);
  void Set(unsigned int value);
  void Set(int value);
  void Set(unsigned long value);
  void Set(long value);
  void Set(float value);
  void Set(double value);
  void Set(const std::string& value);
  void Set(const char* value);
  void Set(const TCIMDateTime& value);
  /// Also takes the reference's class; throws kQDXStatusInvalidReference, changing nothing, if it
  /// has none.
  void Set(TCIMReference& value);
  template <typename T, typename = TMistakenForANumber<T>>
  void Set(T) = delete;

  /// Makes it an array. The number of elements is not held against maxArraySize. An element of
  /// another type is logged and throws kQDXStatusInvalidProperty, one of no type throws
  /// kQDXStatusTypeMismatch; the value keeps the array, that element included. An element that
  /// cannot be copied, a null of type char, throws kQDXStatusTypeMismatch and changes nothing.
  void Set(TCIMType elementType, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);

  /// Copies. Does nothing at all if the two already compare equal. Takes the maximum size for
  /// arrays only, and the referenced class for references only.
  /// A null value of a type that holds nothing (none, char, a code that is no type) throws
  /// kQDXStatusTypeMismatch, and leaves this one null and of that type, unless the two compare
  /// equal. The comparison may throw too (a point in time against an interval, a date-time that is
  /// itself null), and so may the copy of an array's elements; this value is unchanged then.
  void Set(const TCIMValue& other);

  /// Makes it null, of exactly this type; the size is taken only with the array flag. The
  /// referenced class stays.
  void SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize);

  /// Only on a null value; throws kQDXStatusInvalidOpSequence on any other.
  void SetReferencedClass(boost::shared_ptr<ICIMClass> referencedClass);

  bool IsNull() const noexcept { return !fImpl; }
  bool IsArray() const noexcept { return (fType & TCIMType::kCIMTypeArray) != 0; }
  /// A scalar reference, null or not; an array of references is none.
  bool IsReference() const noexcept { return fType == TCIMType::kCIMTypeReference; }
  TCIMType GetType() const noexcept { return fType; }
  /// As given, 0 for no limit; never enforced.
  unsigned int GetMaxArraySize() const noexcept { return fMaxArraySize; }
  /// Null unless something set one.
  boost::shared_ptr<ICIMClass> GetReferencedClass() const { return fReferencedClass; }

  // A null value throws kQDXStatusValueIsNULL, any other type than the mapped one
  // kQDXStatusTypeMismatch.
  operator bool() const;
  operator unsigned char() const;
  operator signed char() const;
  operator unsigned short() const;
  operator short() const;
  operator unsigned int() const;
  operator int() const;
  operator unsigned long() const;
  operator long() const;
  operator float() const;
  operator double() const;
  operator std::string() const;
  operator TCIMDateTime() const;
  operator TCIMReference() const;
  /// The elements themselves, to be changed in place; valid until the value is set again.
  operator std::vector<TCIMValue>&() const;

  /// Same type and same content; of null values also the maximum size of arrays and the identity
  /// of the referenced class. The maximum size of arrays that are not null is not compared.
  bool operator==(const TCIMValue& other) const;
  bool operator!=(const TCIMValue& other) const;
  /// Null first, then by type code, then by content. Two arrays of one type throw
  /// kQDXStatusNotImplemented.
  bool operator<(const TCIMValue& other) const;
  bool operator>(const TCIMValue& other) const;
  bool operator>=(const TCIMValue& other) const;
  bool operator<=(const TCIMValue& other) const;

  /// The value as text: strings as they are, arrays as "{ a, b }".
  ///
  /// `radix` is 10, 16 (upper case, padded to the width of the type) or 8; any other makes a
  /// number or a boolean throw kQDXStatusNotSupported, and so do 16 and 8 with signed types and
  /// reals. A null value, or a null element, throws kQDXStatusValueIsNULL; what a date-time or a
  /// reference throws for its text passes out.
  std::string ToString(unsigned char radix) const;

 private:
  friend class TCIMValueImpl;  // a payload compares itself with another value's

  template <typename T>
  T Convert() const;
  template <typename T>
  void SetScalar(const T& value);
  void DropWhatCopiesDrop() noexcept;

  TCIMType fType;
  std::unique_ptr<TCIMValueImpl> fImpl;  // the payload; none in a null value
  boost::shared_ptr<ICIMClass> fReferencedClass;
  unsigned int fMaxArraySize;
};

/// Writes the keyword; throws as TCIMType::ToString does.
QDXCORE_EXPORT std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type);

/// Named options, the last argument of many operations. The core passes it empty.
using TOptionsMap = std::map<std::string, TCIMValue>;

}  // namespace NVORNQDX20

namespace std {

// The general one assigns, and an assignment may do nothing, or fail half-way.
template <>
inline void swap(NVORNQDX20::TCIMValue& left, NVORNQDX20::TCIMValue& right) {
  swap(left, right);  // the friend: a function is preferred to a template
}

}  // namespace std

#endif  // QDXCORE_VALUE_H_
