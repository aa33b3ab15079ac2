// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/value_text.h>

#include <qdxmodel/names.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

#include <qdxdisplay/date_time.h>
#include <qdxdisplay/names.h>
#include <qdxdisplay/quantity.h>
#include <qdxdisplay/sensor.h>

#include "words.h"

namespace NVORNQDX20 {
namespace {

template <typename T>
std::optional<T> Parsed(std::string_view text, int base = 10) {
  T number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (stop != end || error != std::errc()) return std::nullopt;
  return number;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         NModel::EqualIgnoringCase(text.substr(text.size() - end.size()), end);
}

/// The type without "[]".
std::string_view ElementType(const TPropertySnapshot& property) {
  std::string_view type = property.fType;
  return type.substr(0, type.find('['));
}

bool IsNumeric(const TPropertySnapshot& property) {
  const std::string_view type = ElementType(property);
  return BeginsWith(type, "uint") || BeginsWith(type, "sint") || BeginsWith(type, "real");
}

std::optional<long double> DecimalIn(std::string_view text) {
  if (const auto number = Parsed<std::uint64_t>(text)) return static_cast<long double>(*number);
  if (const auto number = Parsed<std::int64_t>(text)) return static_cast<long double>(*number);
  return std::nullopt;
}

/// Reads a number of a ValueMap. The DMTF writes those of vendors in hexadecimal: "0x8000..".
std::optional<long double> MappedNumber(std::string_view text) {
  if (!BeginsWith(text, "0x") && !BeginsWith(text, "0X")) return DecimalIn(text);
  const auto number = Parsed<std::uint64_t>(text.substr(2), 16);
  return number ? std::optional(static_cast<long double>(*number)) : std::nullopt;
}

/// Returns whether the number is "0x8000", or in "8..15", "..15" or "8..", of which ".." is all
/// others.
bool IsMapped(long double number, std::string_view range) {
  const std::size_t dots = range.find("..");
  if (dots == std::string_view::npos) return MappedNumber(Trimmed(range)) == number;
  if (range.size() == 2) return false;
  const std::string_view from = Trimmed(range.substr(0, dots));
  const std::string_view to = Trimmed(range.substr(dots + 2));
  const auto first = MappedNumber(from);
  const auto last = MappedNumber(to);
  if ((!first && !from.empty()) || (!last && !to.empty())) return false;
  return (!first || number >= *first) && (!last || number <= *last);
}

/// "525400123456", as the DMTF writes addresses of ports.
std::optional<std::string> PortAddressText(const std::string& text) {
  constexpr std::size_t kMAC = 12;
  constexpr std::size_t kEUI64 = 16;
  constexpr std::size_t kIPoverInfiniBand = 40;
  const bool isHex = text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  const bool isAddress =
      text.size() == kMAC || text.size() == kEUI64 || text.size() == kIPoverInfiniBand;
  if (!isHex || !isAddress) return std::nullopt;
  std::string address;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i != 0 && i % 2 == 0) address += ':';
    address += NModel::Lower(text[i]);
  }
  return address;
}

bool IsPortAddress(const TPropertySnapshot& property) {
  return EndsWith(property.fName, "Address") || EndsWith(property.fName, "Addresses");
}

/// The numbers by which PCI and USB know makers and products, and where their names are.
struct TBusID {
  const char* fNumber;
  const char* fName;
};
constexpr TBusID kBusIDs[] = {{"VendorID", "VendorName"},
                              {"PCIDeviceID", "DeviceName"},
                              {"SubsystemVendorID", "SubsystemVendorName"},
                              {"SubsystemID", "SubsystemName"},
                              {"ProductID", "ProductName"}};

const TBusID* BusIDOf(const TPropertySnapshot& property) {
  if (property.fType != "uint16") return nullptr;
  const auto found =
      std::find_if(std::begin(kBusIDs), std::end(kBusIDs), [&property](const TBusID& id) {
        return NModel::EqualIgnoringCase(id.fNumber, property.fName);
      });
  return found == std::end(kBusIDs) ? nullptr : found;
}

std::string HexText(const TJSON& value) {
  char text[sizeof("ffff")];
  const auto [end, error] =
      std::to_chars(text, std::end(text), value.is_number() ? value.get<std::uint16_t>() : 0, 16);
  const std::string digits(text, end);
  return std::string(4 - std::min<std::size_t>(4, digits.size()), '0') + digits;
}

/// Where a byte is, not how many there are.
bool IsAddressOfByte(const TPropertySnapshot& property) {
  return EndsWith(property.fName, "Address") && property.fUnit == "byte";
}

/// "0x5ffffffff"
std::string AddressText(std::uint64_t address) {
  char digits[2 * sizeof address];
  const auto [end, error] = std::to_chars(digits, std::end(digits), address, 16);
  return "0x" + std::string(digits, end);
}

std::string TextOfText(const std::string& text, const TJSON& value,
                       const TPropertySnapshot& property) {
  if (ElementType(property) == "datetime") {
    return DateTimeText(text).value_or(PlainText(value));
  }
  if (ElementType(property) == "string" && IsPortAddress(property)) {
    return PortAddressText(text).value_or(PlainText(value));
  }
  if (ElementType(property) == "reference") return InstanceLabel(text);
  return PlainText(value);
}

std::string ScalarText(const TJSON& value, const TPropertySnapshot& property) {
  if (value.is_null()) return PlainText(value);
  if (const std::string* const name = NameOfValue(value, property)) {
    const std::string plain = PlainText(value);
    return *name == plain || name->empty() ? plain : plain + " (" + *name + ")";
  }
  if (IsNumeric(property)) {
    const auto number = property.fUnit.empty() ? std::nullopt : NumberIn(value);
    if (number && *number >= 0 && *number < 0x1p64L && IsAddressOfByte(property)) {
      return AddressText(static_cast<std::uint64_t>(*number));
    }
    if (number) return FormatQuantity(*number, property.fUnit);
    return BusIDOf(property) != nullptr && value.is_number() ? HexText(value) : PlainText(value);
  }
  return value.is_string() ? TextOfText(value.get_ref<const std::string&>(), value, property)
                           : PlainText(value);
}

/// Finds a value of the instance by the name of its property; null if the class has none. Quickly:
/// it is called for each of many properties.
const TJSON* ValueNamed(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                        std::string_view name) {
  const auto& properties = cimClass.fProperties;
  const auto found = std::lower_bound(
      properties.begin(), properties.end(), name,
      [](const TPropertySnapshot& each, std::string_view wanted) { return each.fName < wanted; });
  if (found == properties.end() || found->fName != name) return nullptr;
  return &instance.fValues[static_cast<std::size_t>(found - properties.begin())];
}

/// Returns whether the value names a device by maker and product, as in "8086:1572".
bool IsBusName(const TJSON& value) {
  if (!value.is_string()) return false;
  const auto& text = value.get_ref<const std::string&>();
  constexpr std::size_t kSize = 9;
  return text.size() == kSize && text[4] == ':' &&
         text.find_first_not_of("0123456789abcdef:") == std::string::npos;
}

/// Returns whether the number is in the units of the sensor that has it.
bool IsReading(const TPropertySnapshot& property) {
  static constexpr std::string_view kEnds[] = {"Reading",    "NonCritical", "Critical",
                                               "Fatal",      "NormalMax",   "NormalMin",
                                               "Hysteresis", "MaxReadable", "MinReadable"};
  return IsNumeric(property) && property.fUnit.empty() && property.fValueNames.empty() &&
         std::any_of(std::begin(kEnds), std::end(kEnds),
                     [&property](std::string_view end) { return EndsWith(property.fName, end); });
}

/// Returns the unit of the readings of a sensor as a PUnit; empty if it has none.
std::string UnitOfReadings(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance) {
  const TJSON* const base = ValueNamed(cimClass, instance, "BaseUnits");
  const TJSON* const modifier = ValueNamed(cimClass, instance, "UnitModifier");
  const TJSON* const rate = ValueNamed(cimClass, instance, "RateUnits");
  const bool isRate = rate != nullptr && !rate->is_null() && *rate != 0;
  if (base == nullptr || isRate) return "";
  const auto number = NumberIn(*base);
  constexpr int kEnd = 1000;  // beyond all of them
  const bool isKnown = number && *number >= 0 && *number < kEnd;
  const std::string unit = isKnown ? UnitOfSensor(static_cast<std::uint64_t>(*number)) : "";
  const bool isModified = !unit.empty() && modifier != nullptr && modifier->is_number_integer();
  return unit + (isModified ? " * 10^" + modifier->dump() : "");
}

}  // namespace

std::optional<long double> NumberIn(const TJSON& value) {
  if (value.is_number_unsigned()) return static_cast<long double>(value.get<std::uint64_t>());
  if (value.is_number_integer()) return static_cast<long double>(value.get<std::int64_t>());
  if (value.is_number_float()) return static_cast<long double>(value.get<double>());
  if (!value.is_string()) return std::nullopt;
  return DecimalIn(value.get_ref<const std::string&>());
}

bool IsShownInHex(const TPropertySnapshot& property) { return BusIDOf(property) != nullptr; }

const std::string* NameOfValue(const TJSON& value, const TPropertySnapshot& property) {
  const auto& names = property.fValueNames;
  if (names.empty()) return nullptr;
  const auto find = [&names](const auto& matches) -> const std::string* {
    const auto found = std::find_if(names.begin(), names.end(), matches);
    return found == names.end() ? nullptr : &found->second;
  };
  const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
  if (const auto* name = find([&text](const auto& each) { return each.first == text; })) {
    return name;
  }
  const auto number = NumberIn(value);
  if (!number || !IsNumeric(property)) return nullptr;
  if (const auto* name =
          find([&number](const auto& each) { return IsMapped(*number, each.first); })) {
    return name;
  }
  return find([](const auto& each) { return each.first == ".."; });
}

std::string UnitOf(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                   std::size_t property) {
  const TPropertySnapshot& declared = cimClass.fProperties[property];
  return IsReading(declared) ? UnitOfReadings(cimClass, instance) : declared.fUnit;
}

std::string TextForPeople(const TJSON& value, const TPropertySnapshot& property) {
  if (!value.is_array()) return ScalarText(value, property);
  TJSON texts = TJSON::array();
  for (const TJSON& element : value) {
    // A text is put in quotes by PlainText() if it needs them.
    const bool isText = element.is_string() && ElementType(property) == "string";
    const std::string text = ScalarText(element, property);
    texts.push_back(isText && text == PlainText(element) ? element : TJSON(text));
  }
  return PlainText(texts);
}

std::string TextForPeople(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                          std::size_t property) {
  const TPropertySnapshot& declared = cimClass.fProperties[property];
  const TJSON& value = instance.fValues[property];
  if (value.is_number() && IsReading(declared)) {
    const std::string unit = UnitOfReadings(cimClass, instance);
    if (!unit.empty()) return FormatQuantity(*NumberIn(value), unit);
  }
  std::string text = TextForPeople(value, declared);
  if (IsBusName(value)) {
    const std::string name = DeviceNameOf(cimClass, instance);
    return name.empty() ? text : text + " (" + name + ")";
  }
  const TBusID* const id = BusIDOf(declared);
  const TJSON* const name = id == nullptr ? nullptr : ValueNamed(cimClass, instance, id->fName);
  if (name != nullptr && name->is_string() && !value.is_null())
    text += " (" + PlainText(*name) + ")";
  return text;
}

std::pair<std::string, std::string> DistinctTexts(const TJSON& one, const TJSON& other,
                                                  const TPropertySnapshot& property) {
  std::pair<std::string, std::string> texts(TextForPeople(one, property),
                                            TextForPeople(other, property));
  if (texts.first == texts.second) texts = {PlainText(one), PlainText(other)};
  return texts;
}

}  // namespace NVORNQDX20
