// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/value_text.h>

#include <gtest/gtest.h>

#include <qdxdisplay/sensor.h>

namespace NVORNQDX20 {
namespace {

TPropertySnapshot Property(const char* name, const char* type) {
  TPropertySnapshot property;
  property.fName = name;
  property.fType = type;
  return property;
}

TEST(ValueText, IsForPeople) {
  const struct {
    const char* fName;
    const char* fType;
    TJSON fValue;
    const char* fText;
  } rows[] = {{"PermanentAddress", "string", "525400123456", "52:54:00:12:34:56"},
              {"NetworkAddresses", "string[]", {"5254001234AB"}, "{ 52:54:00:12:34:ab }"},
              {"CurrentAddress", "string", "80000048FE800000000000000002C90300F9BFA1",
               "80:00:00:48:fe:80:00:00:00:00:00:00:00:02:c9:03:00:f9:bf:a1"},
              {"IPv4Address", "string", "192.0.2.1", "192.0.2.1"},
              {"Name", "string", "525400123456", "525400123456"},
              {"VendorID", "uint16", 32902, "8086"},
              {"ProductID", "uint16", 2, "0002"},
              {"VendorID", "string", "32902", "32902"},
              {"When", "datetime", "20040315143000.000000+060", "2004-03-15 14:30:00 +01:00"},
              {"When", "datetime", "20040315143000.120000-330", "2004-03-15 14:30:00.12 -05:30"},
              {"When", "datetime", "00000012030405.000000:000", "12 days 3 h"},
              {"When", "datetime", "2004031514****.******+060", "2004031514****.******+060"},
              {"Name", "string", "20040315143000.000000+060", "20040315143000.000000+060"},
              {"Names", "string[]", {"-", "a, b"}, "{ \"-\", \"a, b\" }"},
              {"Size", "uint64", nullptr, "-"}};
  for (const auto& [name, type, value, text] : rows) {
    EXPECT_EQ(TextForPeople(value, Property(name, type)), text) << value;
  }
  TPropertySnapshot address = Property("EndingAddress", "uint64");
  address.fUnit = "byte";
  EXPECT_EQ(TextForPeople("18446744073709551615", address), "0xffffffffffffffff");
}

TEST(ValueText, NamesTheNumbersOfEnumerations) {
  TPropertySnapshot status = Property("OperationalStatus", "uint16[]");
  status.fValueNames = {{"2", "OK"}, {"8..15", "Reserved"}, {"32768..", "Vendor"}, {"..", "DMTF"}};
  EXPECT_EQ(TextForPeople({2, 9, 40000, 7}, status),
            "{ 2 (OK), 9 (Reserved), 40000 (Vendor), 7 (DMTF) }");
  status.fValueNames = {
      {"2", "OK"}, {"..", "DMTF"}, {"0x7FFF", "Last"}, {"0x8000..0xFFFF", "Maker"}};
  EXPECT_EQ(TextForPeople({2, 3, 32767, 32768}, status),
            "{ 2 (OK), 3 (DMTF), 32767 (Last), 32768 (Maker) }");
  status.fValueNames = {{"0", "Zero"}};
  EXPECT_EQ(TextForPeople({1}, status), "{ 1 }");
}

TEST(ValueText, UsesWhatOtherPropertiesSay) {
  TClassSnapshot sensor;
  sensor.fProperties = {Property("BaseUnits", "uint16"),   Property("CurrentReading", "sint32"),
                        Property("ElementName", "string"), Property("UnitModifier", "sint32"),
                        Property("VendorID", "uint16"),    Property("VendorName", "string")};
  const TInstanceSnapshot instance{"", {2, 41500, "8086:1572", -3, 32902, "Intel Corporation"}};
  EXPECT_EQ(TextForPeople(sensor, instance, 1), "41.5 \u00b0C");
  EXPECT_EQ(TextForPeople(sensor, instance, 2), "8086:1572 (Intel Corporation)");
  EXPECT_EQ(TextForPeople(sensor, instance, 4), "8086 (Intel Corporation)");
  EXPECT_EQ(TextForPeople(sensor, {"", {nullptr, 41500, "", -3, 1, nullptr}}, 1), "41500");
}

TEST(ValueText, OfASensorHasItsUnit) {
  EXPECT_EQ(FormatReading(41500, 2, -3), "41.5 \u00b0C");
  EXPECT_EQ(FormatReading(1200, 19, 0), "1200 rpm");
  EXPECT_EQ(FormatReading(41500, 38, -3), "41.5");
}

TEST(ValueText, IsBareWhereItWouldHideADifference) {
  TPropertySnapshot size = Property("Size", "uint64");
  size.fUnit = "byte";
  using TTexts = std::pair<std::string, std::string>;
  EXPECT_EQ(DistinctTexts("512110190592", "512110190593", size),
            TTexts("512110190592", "512110190593"));
  EXPECT_EQ(DistinctTexts("1000", "512110190593", size), TTexts("1000 B", "512.1 GB"));
}

}  // namespace
}  // namespace NVORNQDX20
