// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/value.h>

#include <qdxcore/interfaces.h>
#include <qdxrepository/repository.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;
using TElements = std::vector<TCIMValue>;

const TCIMDateTime kDate("20040315143000.000000+060");

/// One value of each type that needs no namespace, in the order of the type codes.
TElements OneOfEach() {
  return {true,
          static_cast<unsigned char>(2),
          static_cast<signed char>(-3),
          static_cast<unsigned short>(4),
          static_cast<short>(-5),
          6U,
          -7,
          8UL,
          -9L,
          10.5F,
          11.5,
          std::string("thirteen"),
          kDate};
}

template <typename T>
std::string StatusOfConversion(const TCIMValue& value) {
  return StatusThrownBy([&] { static_cast<void>(static_cast<T>(value)); });
}

/// What converting to each native type in turn throws.
std::vector<std::string> StatusesOfConversions(const TCIMValue& value) {
  return {StatusOfConversion<bool>(value),         StatusOfConversion<unsigned char>(value),
          StatusOfConversion<signed char>(value),  StatusOfConversion<unsigned short>(value),
          StatusOfConversion<short>(value),        StatusOfConversion<unsigned int>(value),
          StatusOfConversion<int>(value),          StatusOfConversion<unsigned long>(value),
          StatusOfConversion<long>(value),         StatusOfConversion<float>(value),
          StatusOfConversion<double>(value),       StatusOfConversion<std::string>(value),
          StatusOfConversion<TCIMDateTime>(value), StatusOfConversion<TCIMReference>(value),
          StatusOfConversion<TElements&>(value)};
}

TEST(CIMValueConversion, TakesTheMappedTypeAndRefusesEveryOther) {
  const TElements values = OneOfEach();
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::vector<std::string> expected(15, "kQDXStatusTypeMismatch");
    expected[i] = "nothing";
    EXPECT_EQ(StatusesOfConversions(values[i]), expected) << values[i].GetType();
  }
  std::vector<std::string> array(15, "kQDXStatusTypeMismatch");
  array.back() = "nothing";
  EXPECT_EQ(StatusesOfConversions(TCIMValue(TCIMType::kCIMTypeUint32, 0, {6U})), array);
  EXPECT_EQ(StatusesOfConversions(TCIMValue(TCIMType::kCIMTypeUint32, 0)),
            std::vector<std::string>(15, "kQDXStatusValueIsNULL"));
}

TEST(CIMValueConversion, GivesBackWhatWasSet) {
  EXPECT_EQ(static_cast<unsigned long>(TCIMValue(18446744073709551615UL)), 18446744073709551615UL);
  EXPECT_EQ(static_cast<signed char>(TCIMValue(static_cast<signed char>(-128))), -128);
  EXPECT_EQ(static_cast<float>(TCIMValue(0.1F)), 0.1F);
  EXPECT_EQ(static_cast<std::string>(TCIMValue("a\0b")), "a");
  EXPECT_TRUE(static_cast<TCIMDateTime>(TCIMValue(kDate)) == kDate);
}

// What must not compile: each would make a number or a boolean of something else.
static_assert(!std::is_constructible_v<TCIMValue, TCIMType>);
static_assert(!std::is_constructible_v<TCIMValue, TCIMType::ECIMType>);
static_assert(!std::is_constructible_v<TCIMValue, const volatile int*>);
static_assert(!std::is_constructible_v<TCIMValue, void (*)()>);
static_assert(!std::is_constructible_v<TCIMValue, std::nullptr_t>);
static_assert(!std::is_constructible_v<TCIMValue, char>);
static_assert(!std::is_constructible_v<TCIMValue, EQDXStatusCode>);
static_assert(std::is_constructible_v<TCIMValue, char*>);
static_assert(std::is_nothrow_move_constructible_v<TCIMValue>);

TEST(CIMValue, IsTypedWhenNull) {
  EXPECT_EQ(TCIMValue().GetType(), TCIMType::kCIMTypeNone);
  const TCIMValue scalar(TCIMType::kCIMTypeUint8, 0);
  EXPECT_EQ(scalar.GetType(), TCIMType::kCIMTypeUint8);
  const TCIMValue array(TCIMType::kCIMTypeUint8, 4);
  EXPECT_TRUE(array.IsNull() && array.IsArray());
  EXPECT_EQ(array.GetMaxArraySize(), 4U);
  EXPECT_FALSE(TCIMValue(TCIMType::kCIMTypeReference, 4).IsReference());
  EXPECT_TRUE(TCIMValue(TCIMType::kCIMTypeReference, 0).IsReference());
}

TEST(CIMValue, KeepsTheArraySizeThroughScalarsAndNulls) {
  TCIMValue value(TCIMType::kCIMTypeUint8, 4);
  value.Set(5);
  EXPECT_FALSE(value.IsArray());
  EXPECT_EQ(value.GetMaxArraySize(), 4U);
  EXPECT_EQ(TCIMValue(value).GetMaxArraySize(), 0U);  // a copy of a scalar does not take it
  value.SetNullValue(TCIMType::kCIMTypeString, 9);
  EXPECT_EQ(value.GetMaxArraySize(), 4U);
  value.SetNullValue(TCIMType(TCIMType::kCIMTypeString | TCIMType::kCIMTypeArray), 9);
  EXPECT_EQ(value.GetMaxArraySize(), 9U);
}

TEST(CIMValueArray, RefusesAnElementOfAnotherTypeButKeepsTheArray) {
  const TLogCapture log;
  TCIMValue value(7);
  EXPECT_QDX_STATUS(value.Set(TCIMType::kCIMTypeUint16, 1, {static_cast<unsigned short>(1), 2U}),
                    kQDXStatusInvalidProperty);
  EXPECT_EQ(log.Messages(),
            std::vector<std::string>{"0 Core: ERROR: Attempting to create array of type uint16, "
                                     "but element is of type uint32."});
  EXPECT_EQ(static_cast<TElements&>(value).size(), 2U);
  EXPECT_EQ(value.GetMaxArraySize(), 1U);

  EXPECT_QDX_STATUS(value.Set(TCIMType::kCIMTypeUint16, 0, {TCIMValue()}), kQDXStatusTypeMismatch);
  EXPECT_EQ(log.Messages().size(), 1U);
}

TEST(CIMValueArray, TakesNullElementsAndItsOwn) {
  TCIMValue value(TCIMType::kCIMTypeUint8 | TCIMType::kCIMTypeArray, 1,
                  {TCIMValue(TCIMType::kCIMTypeUint8, 0), static_cast<unsigned char>(2)});
  EXPECT_EQ(value.GetType(), 18U);
  TElements& elements = value;
  value.Set(TCIMType::kCIMTypeUint8, 3, elements);
  EXPECT_EQ(static_cast<TElements&>(value).size(), 2U);
  static_cast<TElements&>(value).clear();
  EXPECT_EQ(value.ToString(10), "{  }");
}

TEST(CIMValueCopy, IsDeep) {
  const TCIMValue array(TCIMType::kCIMTypeSint32, 5, {1, 2});
  TCIMValue copy(array);
  static_cast<TElements&>(copy)[0].Set(9);
  EXPECT_EQ(array.ToString(10), "{ 1, 2 }");
  EXPECT_EQ(copy.ToString(10), "{ 9, 2 }");
  EXPECT_EQ(copy.GetMaxArraySize(), 5U);
}

TEST(CIMValueCopy, OfNullTakesTheTypeOrFails) {
  TCIMValue value(5);
  EXPECT_QDX_STATUS(value = TCIMValue(), kQDXStatusTypeMismatch);
  EXPECT_TRUE(value.IsNull());
  EXPECT_EQ(value.GetType(), TCIMType::kCIMTypeNone);
  value = TCIMValue();  // equal now: nothing is done, nothing fails

  const TCIMValue character(TCIMType::kCIMTypeChar, 0);
  EXPECT_QDX_STATUS(TCIMValue(character), kQDXStatusTypeMismatch);
  EXPECT_QDX_STATUS(value = character, kQDXStatusTypeMismatch);
  EXPECT_EQ(value.GetType(), TCIMType::kCIMTypeChar);

  value = TCIMValue(TCIMType::kCIMTypeString, 0);
  EXPECT_EQ(value.GetType(), TCIMType::kCIMTypeString);
}

TEST(CIMValueCopy, DoesNothingBetweenEquals) {
  TCIMValue four(TCIMType::kCIMTypeUint8, 4, {static_cast<unsigned char>(1)});
  four = TCIMValue(TCIMType::kCIMTypeUint8, 5, {static_cast<unsigned char>(1)});
  EXPECT_EQ(four.GetMaxArraySize(), 4U);
}

TEST(CIMValueCopy, LeavesAPointThatMeetsAnInterval) {
  TCIMValue value(kDate);
  EXPECT_QDX_STATUS(value = TCIMValue(TCIMDateTime(1, 2, 3, 4, 5)), kQDXStatusInvalidDateTime);
  EXPECT_EQ(value.ToString(10), kDate.ToString());
}

TEST(CIMValueCopy, SurvivesAliases) {
  TCIMValue nan(std::nan(""));
  nan = *&nan;
  EXPECT_TRUE(std::isnan(static_cast<double>(nan)));
  TCIMValue array(TCIMType::kCIMTypeString, 0, {"an element that is longer than any buffer"});
  array = static_cast<TElements&>(array)[0];
  EXPECT_EQ(static_cast<std::string>(array), "an element that is longer than any buffer");
  TCIMValue nested(TCIMType::kCIMTypeSint32, 0, {5, 6});
  static_cast<TElements&>(nested)[0] = nested;
  EXPECT_EQ(nested.ToString(10), "{ { 5, 6 }, 6 }");
}

TEST(CIMValueMove, GivesWhatACopyGives) {
  TCIMValue odd(TCIMType::kCIMTypeUint8, 4);
  odd.Set(5);  // a scalar that has an array size
  TCIMValue array(TCIMType::kCIMTypeUint8, 7, {TCIMValue(TCIMType::kCIMTypeUint8, 0)});
  TCIMValue& element = static_cast<TElements&>(array)[0];
  element.SetNullValue(TCIMType(18U), 4);
  element.SetNullValue(TCIMType::kCIMTypeUint8, 0);
  ASSERT_EQ(element.GetMaxArraySize(), 4U);

  const TCIMValue movedScalar(std::move(odd));
  const TCIMValue movedArray(std::move(array));
  EXPECT_TRUE(odd.IsNull() && array.IsNull());
  EXPECT_EQ(static_cast<int>(movedScalar), 5);
  EXPECT_EQ(movedScalar.GetMaxArraySize(), 0U);
  EXPECT_EQ(movedArray.GetMaxArraySize(), 7U);
  EXPECT_EQ(static_cast<TElements&>(movedArray)[0].GetMaxArraySize(), 0U);
}

TEST(CIMValueReferencedClass, StaysWhereCopiesLeaveIt) {
  const boost::shared_ptr<ICIMNamespace> ns = MakeRepositoryNamespace("test");
  const boost::shared_ptr<ICIMClass> one = ns->CreateClass("T_One", nullptr, {});
  const boost::shared_ptr<ICIMClass> two = ns->CreateClass("T_Two", nullptr, {});
  TCIMValue value(TCIMType::kCIMTypeReference, 0);
  value.SetReferencedClass(one);
  TCIMValue other(TCIMType::kCIMTypeReference, 0);
  EXPECT_FALSE(value == other);
  other = value;
  EXPECT_EQ(other.GetReferencedClass(), one);

  TCIMReference reference(ns, {});
  EXPECT_QDX_STATUS(value.Set(reference), kQDXStatusInvalidReference);
  EXPECT_TRUE(value.IsNull());
  reference.SetClass(two);
  value.Set(reference);
  EXPECT_EQ(value.GetReferencedClass(), two);
  EXPECT_QDX_STATUS(value.SetReferencedClass(one), kQDXStatusInvalidOpSequence);
  const TCIMValue moved(std::move(value));
  EXPECT_EQ(moved.GetReferencedClass(), two);
  EXPECT_TRUE(static_cast<TCIMReference>(moved) == reference);

  TCIMValue scalar(TCIMType::kCIMTypeSint32, 0);
  scalar.SetReferencedClass(one);
  scalar.Set(1);
  scalar.SetNullValue(TCIMType::kCIMTypeSint32, 0);
  EXPECT_EQ(scalar.GetReferencedClass(), one);
  EXPECT_EQ(TCIMValue(scalar).GetReferencedClass(), nullptr);
  EXPECT_EQ(TCIMValue(std::move(scalar)).GetReferencedClass(), nullptr);
}

TEST(CIMValueOrder, IsTotalOverTypesAndContents) {
  // Each is less than all that follow; the nulls are neither less nor greater among themselves.
  const TElements ascending = {TCIMValue(TCIMType::kCIMTypeString, 0),
                               false,
                               true,
                               static_cast<unsigned char>(0),
                               static_cast<unsigned char>(255),
                               static_cast<signed char>(-1),
                               static_cast<signed char>(0),
                               static_cast<unsigned short>(65535),
                               static_cast<short>(-1),
                               4294967295U,
                               -1,
                               0,
                               18446744073709551615UL,
                               -1L,
                               1.5F,
                               -1.0,
                               0.0,
                               "",
                               "a",
                               "aa",
                               "b",
                               "\xff",
                               kDate,
                               TCIMValue(TCIMType::kCIMTypeUint8, 0, {})};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_TRUE(ascending[j] < ascending[i] && !(ascending[i] < ascending[j])) << j << " " << i;
      EXPECT_TRUE(ascending[i] > ascending[j] && ascending[i] >= ascending[j]) << j << " " << i;
      EXPECT_TRUE(ascending[j] <= ascending[i] && ascending[j] != ascending[i]) << j << " " << i;
    }
  }
  EXPECT_FALSE(TCIMValue() < TCIMValue(TCIMType::kCIMTypeString, 0));
  const TCIMValue array(TCIMType::kCIMTypeUint8, 0, {});
  EXPECT_QDX_STATUS(array < array, kQDXStatusNotImplemented);
  EXPECT_TRUE(array <= array);  // equal: not ordered
  EXPECT_QDX_STATUS(array >= array, kQDXStatusNotImplemented);
}

TEST(CIMValueEquality, ComparesTypeAndContent) {
  EXPECT_TRUE(TCIMValue() == TCIMValue());
  EXPECT_FALSE(TCIMValue(5) == TCIMValue(5U));
  EXPECT_FALSE(TCIMValue(5) == TCIMValue(TCIMType::kCIMTypeSint32, 0));
  EXPECT_FALSE(TCIMValue(TCIMType::kCIMTypeUint8, 4) == TCIMValue(TCIMType::kCIMTypeUint8, 5));
  EXPECT_TRUE(TCIMValue(TCIMType::kCIMTypeSint32, 4, {1}) ==
              TCIMValue(TCIMType::kCIMTypeSint32, 5, {1}));
  EXPECT_FALSE(TCIMValue(TCIMType::kCIMTypeSint32, 4, {1}) ==
               TCIMValue(TCIMType::kCIMTypeSint32, 4, {1, 1}));
  EXPECT_TRUE(TCIMValue(0.0) == TCIMValue(-0.0));
  EXPECT_FALSE(TCIMValue(std::nan("")) == TCIMValue(std::nan("")));
  EXPECT_FALSE(TCIMValue("a") == TCIMValue("A"));
}

const char kNo[] = "kQDXStatusNotSupported";
const char kIsNull[] = "kQDXStatusValueIsNULL";

TEST(CIMValueText, FollowsTheRadix) {
  const struct {
    TCIMValue fValue;
    std::string fDecimal, fHexadecimal, fOctal;  // a status where that is thrown
  } rows[] = {

      {true, "true", "true", "true"},
      {static_cast<unsigned char>(65), "65", "41", "101"},
      {static_cast<unsigned char>(0), "0", "00", "0"},
      {static_cast<signed char>(65), "65", kNo, kNo},
      {static_cast<unsigned short>(255), "255", "00FF", "377"},
      {static_cast<short>(-5), "-5", kNo, kNo},
      {255U, "255", "000000FF", "377"},
      {-2147483647 - 1, "-2147483648", kNo, kNo},
      {1UL, "1", "0000000000000001", "1"},
      {18446744073709551615UL, "18446744073709551615", "FFFFFFFFFFFFFFFF",
       "1777777777777777777777"},
      {std::numeric_limits<long>::min(), "-9223372036854775808", kNo, kNo},
      {0.1F, "0.1", kNo, kNo},
      {3.14159265, "3.14159", kNo, kNo},
      {100.0, "100", kNo, kNo},
      {1234567.0, "1.23457e+06", kNo, kNo},
      {999999.5, "1e+06", kNo, kNo},
      {0.0001, "0.0001", kNo, kNo},
      {1e-5, "1e-05", kNo, kNo},
      {1.5e300, "1.5e+300", kNo, kNo},
      {-0.0, "-0", kNo, kNo},
      {"a, \"b\" }", "a, \"b\" }", "a, \"b\" }", "a, \"b\" }"},
      {kDate, kDate.ToString(), kDate.ToString(), kDate.ToString()},
      {TCIMValue(TCIMType::kCIMTypeUint8, 0, {}), "{  }", "{  }", "{  }"},
      {TCIMValue(TCIMType::kCIMTypeUint8, 0,
                 {static_cast<unsigned char>(3), static_cast<unsigned char>(10)}),
       "{ 3, 10 }", "{ 03, 0A }", "{ 3, 12 }"},
      {TCIMValue(TCIMType::kCIMTypeString, 0), kIsNull, kIsNull, kIsNull},
      {TCIMValue(TCIMType::kCIMTypeString, 0, {TCIMValue(TCIMType::kCIMTypeString, 0)}), kIsNull,
       kIsNull, kIsNull}};
  for (const auto& row : rows) {
    const auto text = [&row](unsigned char radix) {
      std::string result;
      const std::string status = StatusThrownBy([&] { result = row.fValue.ToString(radix); });
      return status == "nothing" ? result : status;
    };
    EXPECT_EQ(text(10), row.fDecimal);
    EXPECT_EQ(text(16), row.fHexadecimal) << row.fDecimal;
    EXPECT_EQ(text(8), row.fOctal) << row.fDecimal;
  }
}

TEST(CIMValueTextRadix, MustBeOneOfThreeForNumbers) {
  for (const int number : {0, 2, 9, 11, 255}) {
    const auto radix = static_cast<unsigned char>(number);
    EXPECT_QDX_STATUS(TCIMValue(true).ToString(radix), kQDXStatusNotSupported);
    EXPECT_QDX_STATUS(TCIMValue(-1).ToString(radix), kQDXStatusNotSupported);
    EXPECT_EQ(TCIMValue("a").ToString(radix), "a");
    EXPECT_EQ(TCIMValue(kDate).ToString(radix), kDate.ToString());
  }
}

}  // namespace
}  // namespace NVORNQDX20
