// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/value.h>

#include <qdxrepository/repository.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <atomic>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <limits>
#include <tuple>
#include <type_traits>

#include <boost/algorithm/string/case_conv.hpp>

using namespace NVORNQDX20;

namespace {

using TCIMType = TCIMValue::TCIMType;
using TElements = std::vector<TCIMValue>;

constexpr auto kUint8 = TCIMType::kCIMTypeUint8, kSint32 = TCIMType::kCIMTypeSint32,
               kReal = TCIMType::kCIMTypeReal64, kString = TCIMType::kCIMTypeString,
               kReference = TCIMType::kCIMTypeReference;

const TCIMDateTime kDate("20040315143000.000000+060");

TCIMValue U8(int value) { return static_cast<unsigned char>(value); }
TCIMValue S8(int value) { return static_cast<signed char>(value); }
TCIMValue U16(int value) { return static_cast<unsigned short>(value); }
TCIMValue S16(int value) { return static_cast<short>(value); }

TCIMValue Null(TCIMType type, unsigned int maxArraySize = 0) { return {type, maxArraySize}; }
TCIMValue Array(TCIMType type, unsigned int size, const TElements& elements) {
  return {type, size, elements};
}
TElements& ElementsOf(const TCIMValue& value) { return value; }

TEST(CIMType, ReadsKeywordsInAnyCase) {
  const std::string keywords[] = {"",       "boolean", "uint8",    "sint8",    "uint16", "sint16",
                                  "uint32", "sint32",  "uint64",   "sint64",   "real32", "real64",
                                  "char",   "string",  "datetime", "reference"};
  for (unsigned int type = 1; type <= 15; ++type) {
    EXPECT_EQ(TCIMType(type).ToString(), keywords[type]);
    EXPECT_EQ(TCIMType(type | TCIMType::kCIMTypeArray).ToString(), keywords[type]);
    for (const auto& word : {keywords[type], boost::to_upper_copy(keywords[type])}) {
      EXPECT_EQ(TCIMType(word), type == TCIMType::kCIMTypeChar ? 0U : type);
    }
  }
  for (const char* none : {"String ", " uint8", "uint8[]", ""}) EXPECT_EQ(TCIMType(none), 0U);
  for (const unsigned int type : {0U, 16U, 32U, 0xffffffffU}) {
    EXPECT_QDX_STATUS(TCIMType(type).ToString(), kQDXStatusTypeMismatch);
  }
}

/// What converting to each native type in turn throws.
template <typename... T>
std::vector<std::string> StatusesOf(const TCIMValue& value) {
  return {StatusThrownBy([&] { static_cast<void>(static_cast<T>(value)); })...};
}

TEST(CIMValueConversion, TakesTheMappedTypeAndRefusesEveryOther) {
  const auto statusesOf = StatusesOf<bool, unsigned char, signed char, unsigned short, short,
                                     unsigned int, int, unsigned long, long, float, double,
                                     std::string, TCIMDateTime, TElements&, TCIMReference>;
  const TCIMValue array = Array(TCIMType::kCIMTypeUint32, 0, {6U});
  const TCIMValue values[] = {true, U8(2), S8(-3), U16(4), S16(-5), 6U,    -7,
                              8UL,  -9L,   10.5F,  11.5,   "text",  kDate, array};
  for (std::size_t i = 0; i < std::size(values); ++i) {
    std::vector<std::string> expected(15, "kQDXStatusTypeMismatch");
    expected[i] = "nothing";
    EXPECT_EQ(statusesOf(values[i]), expected) << values[i].GetType();
  }
  EXPECT_EQ(statusesOf(Null(TCIMType::kCIMTypeUint32)),
            std::vector<std::string>(15, "kQDXStatusValueIsNULL"));
  EXPECT_QDX_STATUS(TCIMValue(static_cast<const char*>(nullptr)), kQDXStatusValueIsNULL);
}

// What must not compile: each would make a number or a boolean of something else.
struct TTemporaryNumber {
  operator int() &&;
};
template <typename... T>
constexpr bool kNoneMakesAValue = (!std::is_constructible_v<TCIMValue, T> && ...);
static_assert(
    kNoneMakesAValue<TCIMType, TCIMType::ECIMType, const volatile int*, void (*)(), std::nullptr_t,
                     char, EQDXStatusCode, TQDXStatusCode, std::true_type, TTemporaryNumber,
                     std::atomic<double>, std::vector<bool>::reference, int std::tm::*>);
static_assert(std::is_constructible_v<TCIMValue, char*>);
static_assert(std::is_constructible_v<TCIMValue, std::filesystem::path>);  // a text
static_assert(std::is_nothrow_move_constructible_v<TCIMValue>);

TEST(CIMValue, IsTypedWhenNullAndKeepsTheArraySize) {
  EXPECT_EQ(TCIMValue().GetType(), TCIMType::kCIMTypeNone);
  EXPECT_EQ(Null(kUint8).GetType(), kUint8);
  EXPECT_TRUE(Null(kUint8, 4).IsArray());
  EXPECT_FALSE(Null(kReference, 4).IsReference());
  EXPECT_TRUE(Null(kReference).IsReference());

  TCIMValue value = Null(kUint8, 4);
  value.Set(5);
  EXPECT_FALSE(value.IsArray());
  EXPECT_EQ(value.GetMaxArraySize(), 4U);
  EXPECT_EQ(TCIMValue(value).GetMaxArraySize(), 0U);  // a copy of a scalar does not take it
  value.SetNullValue(kString, 9);
  EXPECT_EQ(value.GetMaxArraySize(), 4U);
  value.SetNullValue(TCIMType(kString | TCIMType::kCIMTypeArray), 9);
  EXPECT_EQ(value.GetMaxArraySize(), 9U);
}

TEST(CIMValueArray, RefusesAnElementOfAnotherTypeButKeepsTheArray) {
  const TLogCapture log;
  TCIMValue value(7);
  EXPECT_QDX_STATUS(value.Set(TCIMType::kCIMTypeUint16, 1, {U16(1), 2U}),
                    kQDXStatusInvalidProperty);
  EXPECT_EQ(ElementsOf(value).size(), 2U);
  EXPECT_EQ(value.GetMaxArraySize(), 1U);
  EXPECT_EQ(log.Messages().at(0),
            "0 Core: ERROR: Attempting to create array of type uint16, but element is of type "
            "uint32.");
  EXPECT_QDX_STATUS(value.Set(TCIMType::kCIMTypeUint16, 0, {TCIMValue()}), kQDXStatusTypeMismatch);
}

TEST(CIMValueArray, TakesNullElementsAndItsOwn) {
  const TElements elements = {Null(kUint8), U8(2)};
  TCIMValue value = Array(kUint8 | TCIMType::kCIMTypeArray, 1, elements);
  EXPECT_EQ(value.GetType(), 18U);
  value.Set(kUint8, 3, ElementsOf(value));
  EXPECT_EQ(ElementsOf(value).size(), 2U);
  ElementsOf(value).clear();
  EXPECT_EQ(value.ToString(10), "{  }");
}

TEST(CIMValueCopy, OfNullTakesTheTypeOrFails) {
  TCIMValue value(5);
  EXPECT_QDX_STATUS(value = TCIMValue(), kQDXStatusTypeMismatch);
  EXPECT_TRUE(value.IsNull());
  EXPECT_EQ(value.GetType(), TCIMType::kCIMTypeNone);
  value = TCIMValue();  // equal now: nothing is done, nothing fails

  EXPECT_QDX_STATUS(TCIMValue(value = Null(TCIMType::kCIMTypeChar)), kQDXStatusTypeMismatch);
  EXPECT_EQ(value.GetType(), TCIMType::kCIMTypeChar);
  value = Null(kString);
  EXPECT_EQ(value.GetType(), kString);
}

TEST(CIMValueCopy, DoesNothingBetweenEqualsOrWhereComparingFails) {
  TCIMValue four = Array(kUint8, 4, {U8(1)});
  four = Array(kUint8, 5, {U8(1)});
  EXPECT_EQ(TCIMValue(four).GetMaxArraySize(), 4U);
  TCIMValue point(kDate);
  EXPECT_QDX_STATUS(point = TCIMValue(TCIMDateTime(1, 2, 3, 4, 5)), kQDXStatusInvalidDateTime);
  EXPECT_EQ(point.ToString(10), kDate.ToString());
}

TEST(CIMValueCopy, SurvivesAliases) {
  TCIMValue nan(std::nan(""));
  nan = *&nan;
  EXPECT_TRUE(std::isnan(static_cast<double>(nan)));
  const std::string text(100, 'x');
  TCIMValue array = Array(kString, 0, {text});
  array = ElementsOf(array)[0];
  EXPECT_EQ(static_cast<std::string>(array), text);
}

TEST(CIMValueMove, GivesWhatACopyGives) {
  TCIMValue odd(kUint8, 4);
  odd.Set(5);  // a scalar that has an array size
  TCIMValue array(kUint8, 7, {Null(kUint8)});
  TCIMValue list = Array(kSint32, 0, {1});
  TCIMValue& element = ElementsOf(list)[0];
  element.SetNullValue(static_cast<TCIMType::ECIMType>(kSint32 | TCIMType::kCIMTypeArray), 4);
  element.Set(5);  // in the array, too
  const TCIMValue movedScalar(std::move(odd));
  const TCIMValue movedArray(std::move(array));
  EXPECT_TRUE(odd.IsNull() && array.IsNull());
  EXPECT_EQ(static_cast<int>(movedScalar), 5);
  EXPECT_EQ(movedScalar.GetMaxArraySize(), 0U);
  EXPECT_EQ(movedArray.GetMaxArraySize(), 7U);
  TCIMValue movedList(std::move(list));
  EXPECT_EQ(ElementsOf(movedList)[0].GetMaxArraySize(), 0U);
}

TEST(CIMValueSwap, ExchangesAllOfEveryPair) {
  const auto ns = MakeRepositoryNamespace("test");
  TCIMValue values[] = {Null(kReference), TCIMValue(), Null(TCIMType::kCIMTypeChar), Null(kString),
                        Null(kUint8, 4), Null(kUint8, 5), 7, 8,
                        // Equal, but for the size.
                        Array(kUint8, 4, {U8(1)}), Array(kUint8, 5, {U8(1)})};
  values[0].SetReferencedClass(ns->CreateClass("T_Any", nullptr, {}));
  const auto describe = [](const TCIMValue& value) {
    return std::tuple(std::uint32_t{value.GetType()}, value.GetMaxArraySize(),
                      value.GetReferencedClass(), value.IsNull() ? "null" : value.ToString(10));
  };
  for (TCIMValue& left : values) {
    for (TCIMValue& right : values) {
      const auto before = std::pair(describe(left), describe(right));
      swap(left, right);
      EXPECT_TRUE(std::pair(describe(right), describe(left)) == before) << &left - &right;
      std::swap(left, right);
      EXPECT_TRUE(std::pair(describe(left), describe(right)) == before) << &left - &right;
    }
  }
}

TEST(CIMValue, LendsTextsAndReferencesOnly) {
  const boost::shared_ptr<ICIMNamespace> ns = MakeRepositoryNamespace("test");
  TCIMReference reference(ns, {});
  reference.SetClass(ns->CreateClass("T_One", nullptr, {}));
  const TCIMValue text("a"), path(reference);
  ASSERT_NE(text.FindString(), nullptr);
  EXPECT_EQ(*text.FindString(), "a");
  ASSERT_NE(path.FindReference(), nullptr);
  EXPECT_TRUE(*path.FindReference() == reference);
  for (const TCIMValue& other :
       {Null(kString), Null(kReference), TCIMValue(1), TCIMValue(kString, 1, {text})}) {
    EXPECT_EQ(other.FindString(), nullptr);
    EXPECT_EQ(other.FindReference(), nullptr);
  }
}

TEST(CIMValueReferencedClass, StaysWhereCopiesLeaveIt) {
  const boost::shared_ptr<ICIMNamespace> ns = MakeRepositoryNamespace("test");
  const auto one = ns->CreateClass("T_One", nullptr, {}),
             two = ns->CreateClass("T_Two", nullptr, {});
  TCIMValue value = Null(kReference), other = value;
  value.SetReferencedClass(one);
  EXPECT_FALSE(value == other);
  other = value;
  EXPECT_EQ(other.GetReferencedClass(), one);

  TCIMReference reference(ns, {});
  EXPECT_QDX_STATUS(value.Set(reference), kQDXStatusInvalidReference);
  EXPECT_TRUE(value.IsNull());
  reference.SetClass(two);
  value.Set(reference);
  EXPECT_QDX_STATUS(value.SetReferencedClass(one), kQDXStatusInvalidOpSequence);
  other.SetNullValue(kString, 0);
  EXPECT_EQ(other.GetReferencedClass(), one);
  const TCIMValue moved(std::move(value));
  EXPECT_EQ(moved.GetReferencedClass(), two);
  EXPECT_TRUE(static_cast<TCIMReference>(moved) == reference);

  TCIMValue scalar = Null(kSint32);
  scalar.SetReferencedClass(one);
  scalar.Set(1);
  EXPECT_EQ(scalar.GetReferencedClass(), one);
  EXPECT_EQ(TCIMValue(scalar).GetReferencedClass(), nullptr);
  EXPECT_EQ(TCIMValue(std::move(scalar)).GetReferencedClass(), nullptr);
}

TEST(CIMValueOrder, IsTotalOverTypesAndContents) {
  const TCIMValue array = Array(kUint8, 0, {});
  const TCIMValue null = Null(kString);
  // Each is less than all that follow.
  const TCIMValue ascending[] = {null,    false, true, U8(0), U8(255), S8(-1), S8(0), U16(65535),
                                 S16(-1), ~0U,   -1,   0,     ~0UL,    -1L,    1.5F,  -1.0,
                                 0.0,     "",    "a",  "aa",  "b",     "\xff", kDate, array};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const TCIMValue &less = ascending[j], &more = ascending[i];
      EXPECT_TRUE(less < more && less <= more && less != more) << j << " " << i;
      EXPECT_TRUE(more > less && more >= less && !(more < less)) << j << " " << i;
    }
  }
  EXPECT_FALSE(TCIMValue() < null || TCIMValue(1) > TCIMValue(1));  // nulls are not ordered
  EXPECT_QDX_STATUS(array < array, kQDXStatusNotImplemented);
  EXPECT_TRUE(array <= array);  // equal: not ordered
  EXPECT_QDX_STATUS(array >= array, kQDXStatusNotImplemented);
}

TEST(CIMValueEquality, ComparesTypeAndContent) {
  const TCIMValue one = Array(kSint32, 4, {1});
  const struct {
    TCIMValue fLeft, fRight;
    bool fEqual;
  } rows[] = {{TCIMValue(), TCIMValue(), true},
              {5, 5U, false},
              {5, Null(kSint32), false},
              {Null(kUint8, 4), Null(kUint8, 5), false},
              {one, Array(kSint32, 5, {1}), true},
              {one, Array(kSint32, 4, {1, 1}), false},
              {0.0, -0.0, true},
              {std::nan(""), std::nan(""), false},
              {Array(kSint32, 0, {1, 2}), Array(kSint32, 0, {1, 3}), false},
              {Array(kSint32, 0, {1}), Array(kSint32, 0, {Null(kSint32)}), false},
              {Array(kSint32, 0, {Null(kSint32)}), Array(kSint32, 0, {Null(kSint32)}), true},
              {Array(kReal, 0, {0.0}), Array(kReal, 0, {-0.0}), true},
              {Array(kReal, 0, {std::nan("")}), Array(kReal, 0, {std::nan("")}), false},
              {Array(kString, 0, {"a"}), Array(kString, 0, {"b"}), false},
              {"a", "A", false}};
  for (const auto& row : rows) EXPECT_EQ(row.fLeft == row.fRight, row.fEqual) << &row - rows;
}

TEST(CIMValueText, FollowsTheRadix) {
  const std::string kNo = "kQDXStatusNotSupported", kNull = "kQDXStatusValueIsNULL";
  const std::string kTen = "{ 3, 10 }", kQuoted = "a, \"b\" }", kNoon = kDate.ToString();
  const struct {
    TCIMValue fValue;
    std::string fDecimal, fHexadecimal, fOctal;  // a status where that is thrown
  } rows[] = {{true, "true", "true", "true"},
              {U8(65), "65", "41", "101"},
              {S8(65), "65", kNo, kNo},
              {255U, "255", "000000FF", "377"},
              {-2147483647 - 1, "-2147483648", kNo, kNo},
              {~0UL, "18446744073709551615", "FFFFFFFFFFFFFFFF", "1777777777777777777777"},
              {std::numeric_limits<long>::min(), "-9223372036854775808", kNo, kNo},
              {0.1F, "0.1", kNo, kNo},
              {999999.5, "1e+06", kNo, kNo},
              {1e-5, "1e-05", kNo, kNo},
              {-0.0, "-0", kNo, kNo},
              {kQuoted, kQuoted, kQuoted, kQuoted},
              {kDate, kNoon, kNoon, kNoon},
              {Array(kUint8, 0, {}), "{  }", "{  }", "{  }"},
              {Array(kUint8, 0, {U8(3), U8(10)}), kTen, "{ 03, 0A }", "{ 3, 12 }"},
              {Null(kString), kNull, kNull, kNull},
              {Array(kString, 0, {Null(kString)}), kNull, kNull, kNull}};
  for (const auto& row : rows) {
    const auto text = [&row](int radix) {
      std::string result;
      const std::string status =
          StatusThrownBy([&] { result = row.fValue.ToString(static_cast<unsigned char>(radix)); });
      return result.empty() ? status : result;
    };
    EXPECT_EQ(text(10), row.fDecimal);
    EXPECT_EQ(text(16), row.fHexadecimal) << row.fDecimal;
    EXPECT_EQ(text(8), row.fOctal) << row.fDecimal;
  }
  const TCIMValue many = Array(kUint8, 0, std::vector<TCIMValue>(300, U8(200)));
  std::string joined = "{ 200";
  for (int i = 1; i < 300; ++i) joined += ", 200";
  EXPECT_EQ(many.ToString(10), joined + " }");
  const unsigned char others[] = {0, 2, 9, 11, 255};
  for (const unsigned char radix : others) {
    EXPECT_QDX_STATUS(TCIMValue(true).ToString(radix), kQDXStatusNotSupported);
    EXPECT_QDX_STATUS(U8(1).ToString(radix), kQDXStatusNotSupported);
    EXPECT_EQ(TCIMValue(kDate).ToString(radix), kNoon);
  }
}

}  // namespace
