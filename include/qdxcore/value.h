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
/// Copies are deep. Not synchronised: one thread only. Failures throw TQDXException.
///
///   TCIMValue speed(std::uint32_t{7200});
///   std::uint32_t rpm = speed;    // 7200
///   int wrong = speed;            // throws kQDXStatusTypeMismatch: the type is not sint32
///   TCIMValue unknown(TCIMValue::TCIMType::kCIMTypeUint32, 0);  // null, of type uint32
///
/// The compiler must know the native type: `text = value` and `speed == 7200U` are ambiguous.
/// Initialise a string or name the type, and compare with a value:
///
///   std::string text = name;
///   text = std::string(name);
///   if (speed == TCIMValue(7200U)) ...
///
/// A value converts only to the native type of its CIM type:
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
    /// The numbers determine the order of values of different types. Part of the binary contract.
    enum ECIMType : std::uint32_t {
      kCIMTypeNone = 0,        ///< No type: the type of a default-constructed value.
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
      kCIMTypeChar = 12,       ///< "char": always null; cannot be parsed or copied, so copying a
                               ///< namespace that declares one fails.
      kCIMTypeString = 13,     ///< "string"
      kCIMTypeDateTime = 14,   ///< "datetime"
      kCIMTypeReference = 15,  ///< "reference"
      kCIMTypeArray = 16       ///< A flag, combined with one of the types.
    };

    TCIMType(ECIMType type) noexcept : fType(type) {}
    /// From a combination such as kCIMTypeUint8 | kCIMTypeArray, or from 0; not checked.
    TCIMType(unsigned int type) noexcept : fType(static_cast<ECIMType>(type)) {}
    /// From a keyword, without regard to case. Gives kCIMTypeNone for any other text, including
    /// "char" and keywords with blanks or array brackets.
    explicit TCIMType(std::string keyword);

    /// Returns the code as stored, including the array flag.
    operator ECIMType() const noexcept { return fType; }

    /// Returns the keyword of the element type: "uint8" for an array of uint8, too.
    /// Throws kQDXStatusTypeMismatch if the type has no keyword.
    std::string ToString() const;

   private:
    ECIMType fType;
  };

  // Declared before the constructors, which refuse types that would convert to a number or a
  // boolean silently.
 private:
  template <typename T, typename... TOther>
  static constexpr bool kIsOneOf = (std::is_same_v<T, TOther> || ...);

  /// Whether an object or a temporary of the type converts.
  template <typename T, typename TOther>
  static constexpr bool kConverts =
      std::is_convertible_v<T&, TOther> || std::is_convertible_v<T, TOther>;

  /// Matches characters, enumerators, pointers, and objects that convert to a number. Does not
  /// match C strings, or objects that are or convert to text, a date-time or a reference.
  template <typename T>
  using TMistakenForANumber =
      std::enable_if_t<std::is_null_pointer_v<T> ||
                       (kConverts<T, bool> &&
                        !kIsOneOf<T, bool, unsigned char, signed char, unsigned short, short,
                                  unsigned int, int, unsigned long, long, float, double> &&
                        !kConverts<T, const char*> && !kConverts<T, const std::string&> &&
                        !kConverts<T, const TCIMDateTime&> &&
                        !std::is_convertible_v<T*, const TCIMReference*>)>;

 public:
  /// A null value of no type.
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
  /// Equivalent to Set(value): takes the referenced class from the reference, which must have one.
  TCIMValue(TCIMReference& value);
  /// A null value of a type. A size other than 0 makes it an array of that type.
  TCIMValue(TCIMType type, unsigned int maxArraySize);
  /// Equivalent to Set with the same arguments.
  TCIMValue(TCIMType elementType, unsigned int maxArraySize,
            const std::vector<TCIMValue>& elements);
  /// Parses a scalar.
  ///
  /// Integers may have a C prefix (0x, 0); integers and reals end at the first character that is
  /// not part of the number. A number or boolean that cannot be parsed or does not fit is 0 or
  /// false. Exceptions: uint8 and sint8 are the low byte of a 32-bit number; with a minus sign
  /// uint64 wraps, and the other unsigned types are 0. Strings are taken unchanged, date-times have
  /// the DMTF form, and references are object paths in `ns`, which is not used for other types.
  /// Throws kQDXStatusTypeMismatch for arrays and for types that cannot be parsed, and the
  /// exceptions of date-times and object paths.
  TCIMValue(TCIMType type, std::string& text, boost::shared_ptr<ICIMNamespace> ns);

  /// Refuses a status code, a type, an enumerator, a character, a pointer, and an object that only
  /// converts to a number. Cast instead: TCIMValue(static_cast<std::uint32_t>(colour)).
  template <typename T, typename = TMistakenForANumber<T>>
  TCIMValue(T) = delete;

  /// Equivalent to Set(other) on a null value of no type.
  TCIMValue(const TCIMValue& other);
  /// Gives the same value as the copy constructor, without copying; `other` becomes null.
  TCIMValue(TCIMValue&& other) noexcept;
  /// Equivalent to Set(other). There is no move assignment, because Set(other) keeps parts of the
  /// old value, which callers can observe.
  TCIMValue& operator=(const TCIMValue& other);
  ~TCIMValue();

  /// Exchanges two values of any types; std::swap does the same. REQUIRES: neither is an element of
  /// the other.
  friend void swap(TCIMValue& left, TCIMValue& right) noexcept {
    std::swap(left.fType, right.fType);
    left.fImpl.swap(right.fImpl);
    left.fReferencedClass.swap(right.fReferencedClass);
    std::swap(left.fMaxArraySize, right.fMaxArraySize);
  }

  // Each sets the mapped type, without the array flag, and the value; the maximum array size and
  // the referenced class stay unchanged.
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
  /// Also sets the referenced class. If the reference has no class, throws
  /// kQDXStatusInvalidReference and changes nothing.
  void Set(TCIMReference& value);
  template <typename T, typename = TMistakenForANumber<T>>
  void Set(T) = delete;

  /// Makes this an array. The number of elements is not compared with `maxArraySize`. An element of
  /// another type is logged and throws kQDXStatusInvalidProperty, one of no type throws
  /// kQDXStatusTypeMismatch; the array is set nevertheless, including that element. An element that
  /// cannot be copied, a null of type char, throws kQDXStatusTypeMismatch and changes nothing.
  void Set(TCIMType elementType, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);

  /// Copies `other`, but does nothing if the two compare equal. The maximum size is copied only for
  /// arrays, the referenced class only for references.
  /// If `other` is a null value of a type that cannot hold content (none, char, an invalid code)
  /// and the two differ, this value becomes null and of that type, and kQDXStatusTypeMismatch is
  /// thrown. The comparison can throw (a point in time and an interval, a null date-time), and so
  /// can copying the elements of an array; this value is unchanged then.
  void Set(const TCIMValue& other);

  /// Makes the value null, of exactly this type. The size is set only if the type has the array
  /// flag; the referenced class stays unchanged.
  void SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize);

  /// Throws kQDXStatusInvalidOpSequence unless the value is null.
  void SetReferencedClass(boost::shared_ptr<ICIMClass> referencedClass);

  bool IsNull() const noexcept { return !fImpl; }
  bool IsArray() const noexcept { return (fType & TCIMType::kCIMTypeArray) != 0; }
  /// Returns whether this is a scalar reference, null or not; false for an array of references.
  bool IsReference() const noexcept { return fType == TCIMType::kCIMTypeReference; }
  TCIMType GetType() const noexcept { return fType; }
  /// Returns the size as given, 0 for no limit; it is never enforced.
  unsigned int GetMaxArraySize() const noexcept { return fMaxArraySize; }
  /// Returns null if no referenced class was set.
  boost::shared_ptr<ICIMClass> GetReferencedClass() const { return fReferencedClass; }

  // Conversions. A null value throws kQDXStatusValueIsNULL, a type other than the mapped one
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
  /// Returns the elements themselves, which may be changed in place; valid until the value is set
  /// again.
  operator std::vector<TCIMValue>&() const;

  /// Returns the content without copying it, valid until this value is set or destroyed; null for a
  /// null value and for other types.
  const std::string* FindString() const noexcept;
  const TCIMReference* FindReference() const noexcept;

  /// Returns whether type and content are the same. For null values, also compares the maximum size
  /// of arrays and the identity of the referenced class of scalar references. Ignores the maximum
  /// size of arrays that are not null.
  bool operator==(const TCIMValue& other) const;
  bool operator!=(const TCIMValue& other) const;
  /// Orders null values first, then by type code, then by content. Comparing two arrays of one type
  /// throws kQDXStatusNotImplemented.
  bool operator<(const TCIMValue& other) const;
  bool operator>(const TCIMValue& other) const;
  bool operator>=(const TCIMValue& other) const;
  bool operator<=(const TCIMValue& other) const;

  /// Returns the value as text: strings unchanged, arrays as "{ a, b }".
  ///
  /// `radix` is 10, 16 (upper case, padded to the width of the type) or 8. For numbers and booleans
  /// any other radix throws kQDXStatusNotSupported; for signed types and reals 16 and 8 do as well.
  /// A null value or element throws kQDXStatusValueIsNULL. Exceptions of ToString of a date-time
  /// and GetPath of a reference propagate.
  std::string ToString(unsigned char radix) const;

 private:
  friend class TCIMValueImpl;  // to compare the payloads of two values

  template <typename T>
  T Convert() const;
  template <typename T>
  void SetScalar(const T& value);
  void DropWhatCopiesDrop() noexcept;

  TCIMType fType;
  std::unique_ptr<TCIMValueImpl> fImpl;  // the payload; null if the value is null
  boost::shared_ptr<ICIMClass> fReferencedClass;
  unsigned int fMaxArraySize;
};

/// Writes the keyword; throws like TCIMType::ToString.
QDXCORE_EXPORT std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type);

/// Named options, the last argument of many operations. The library passes them empty.
using TOptionsMap = std::map<std::string, TCIMValue>;

}  // namespace NVORNQDX20

namespace std {

// The primary template would assign, but assignment may do nothing, or fail after a change.
template <>
inline void swap(NVORNQDX20::TCIMValue& left, NVORNQDX20::TCIMValue& right) {
  swap(left, right);  // the friend: a function is preferred to a template
}

}  // namespace std

#endif  // QDXCORE_VALUE_H_
