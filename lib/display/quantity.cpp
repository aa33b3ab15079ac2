// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/quantity.h>

#include <qdxmodel/names.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "words.h"

namespace NVORNQDX20 {
namespace {

/// A PUnit, taken apart.
struct TUnitParts {
  std::string fName;  ///< Its units without numbers, for example "bit/second".
  long double fScale = 1;
  bool fIsBinary = false;  ///< Scaled by a power of two.
};

std::optional<long double> NumberOf(std::string_view text) {
  long double number = 0;
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || stop != end || error != std::errc()) return std::nullopt;
  return number;
}

/// Reads a number or a power of one, "10^6".
std::optional<long double> FactorOf(std::string_view text) {
  const std::size_t hat = text.find('^');
  if (hat == std::string_view::npos) return NumberOf(text);
  const auto base = NumberOf(Trimmed(text.substr(0, hat)));
  const auto exponent = NumberOf(Trimmed(text.substr(hat + 1)));
  if (!base || !exponent) return std::nullopt;
  return std::pow(*base, *exponent);
}

/// "degree (celsius)" and "Degree Celsius" are one unit.
std::string PlainName(std::string_view unit) {
  std::string name;
  for (const char c : unit) {
    if (c != '(' && c != ')') name += NModel::Lower(c);
  }
  return name;
}

TUnitParts PartsOf(std::string_view unit) {
  TUnitParts parts;
  for (char operation = '*'; !unit.empty() || operation != '\0';) {
    const std::size_t end = std::min(unit.find_first_of("*/"), unit.size());
    const std::string_view part = Trimmed(unit.substr(0, end));
    if (const auto factor = FactorOf(part)) {
      parts.fScale = operation == '*' ? parts.fScale * *factor : parts.fScale / *factor;
      parts.fIsBinary = parts.fIsBinary || part.substr(0, 2) == "2^" || part == "1024";
    } else {
      if (!parts.fName.empty()) parts.fName += operation;
      parts.fName += PlainName(part);
    }
    operation = end < unit.size() ? unit[end] : '\0';
    unit.remove_prefix(std::min(end + 1, unit.size()));
  }
  return parts;
}

int DigitsFor(long double number) { return std::fabs(number) < 10 ? 2 : 1; }

std::string Formatted(long double number, std::chars_format format, int digits) {
  char text[128];
  auto result = std::to_chars(text, std::end(text), number, format, digits);
  if (result.ec != std::errc()) {
    result = std::to_chars(text, std::end(text), number, std::chars_format::general, 6);
  }
  return {text, result.ptr};
}

/// Without the zeros at its end.
std::string Rounded(long double number, int digits) {
  std::string rounded = Formatted(number, std::chars_format::fixed, digits);
  if (rounded.find('.') != std::string::npos) {
    rounded.erase(rounded.find_last_not_of('0') + 1);
    if (rounded.back() == '.') rounded.pop_back();
  }
  return rounded == "-0" ? "0" : rounded;
}

std::string Rounded(long double number) {
  // What rounds up to 10 has one digit, too: its zeros are gone then.
  std::string rounded = Rounded(number, DigitsFor(number));
  // What is little is not nothing.
  if (rounded == "0" && number != 0) return Formatted(number, std::chars_format::general, 2);
  return rounded;
}

/// Divides by the base, at most `most` times, as long as what is shown reaches the base.
struct TScaled {
  TScaled(long double number, long double base, std::size_t most) : fNumber(number) {
    // 999.96 would be shown as 1000.
    const auto isTooLarge = [&] { return std::fabs(fNumber) >= base - 0.05L; };
    for (; fPrefix < most && isTooLarge(); ++fPrefix) fNumber /= base;
  }
  long double fNumber;
  std::size_t fPrefix = 0;
};

constexpr const char* kDecimalPrefixes[] = {"", "k", "M", "G", "T", "P", "E", "Z"};
constexpr const char* kBinaryPrefixes[] = {"", "Ki", "Mi", "Gi", "Ti", "Pi", "Ei", "Zi"};
constexpr std::size_t kMostPrefix = std::size(kDecimalPrefixes) - 1;

std::string WithDecimalPrefix(long double number, const std::string& symbol) {
  const TScaled scaled(number, 1000, kMostPrefix);
  return Rounded(scaled.fNumber) + " " + kDecimalPrefixes[scaled.fPrefix] + symbol;
}

/// Returns whether a tenth of the unit that is shown is exact.
bool IsExactInTenths(long double number) { return std::floor(number * 10) == number * 10; }

std::string FormatBytes(long double bytes, bool isBinary, const std::string& symbol) {
  constexpr long double kPlain = 10000;  // the largest packet of a port is 1500 B, not 1.5 kB
  const TScaled binary(bytes, 1024, kMostPrefix);
  if (binary.fPrefix > 0 && (isBinary || IsExactInTenths(binary.fNumber))) {
    return Rounded(binary.fNumber, 1) + " " + kBinaryPrefixes[binary.fPrefix] + symbol;
  }
  if (std::fabs(bytes) < kPlain) return Rounded(bytes) + " " + symbol;
  return WithDecimalPrefix(bytes, symbol);
}

/// Below 1 in thousandths.
std::string WithThousandths(long double number, const std::string& symbol) {
  if (number == 0 || std::fabs(number) >= 1) return WithDecimalPrefix(number, symbol);
  return Rounded(number * 1000) + " m" + symbol;
}

enum class EForm { kPlain, kDecimal, kThousandths, kBytes, kTime };

struct TKnownUnit {
  const char* fName;
  EForm fForm;
  const char* fSymbol;
  long double fFactor = 1;
};

constexpr TKnownUnit kUnits[] = {{"byte", EForm::kBytes, "B"},
                                 {"byte/second", EForm::kBytes, "B/s"},
                                 {"byte per second", EForm::kBytes, "B/s"},
                                 {"bit", EForm::kPlain, "bits"},
                                 {"bit/second", EForm::kDecimal, "bit/s"},
                                 {"bit per second", EForm::kDecimal, "bit/s"},
                                 {"hertz", EForm::kDecimal, "Hz"},
                                 {"volt", EForm::kThousandths, "V"},
                                 {"ampere", EForm::kThousandths, "A"},
                                 {"watt", EForm::kThousandths, "W"},
                                 {"watt*hour", EForm::kThousandths, "Wh"},
                                 {"ampere*hour", EForm::kThousandths, "Ah"},
                                 {"joule", EForm::kThousandths, "J"},
                                 {"volt*ampere", EForm::kThousandths, "VA"},
                                 {"pascal", EForm::kDecimal, "Pa"},
                                 {"meter", EForm::kThousandths, "m"},
                                 {"metre", EForm::kThousandths, "m"},
                                 {"gram", EForm::kDecimal, "g"},
                                 {"inch", EForm::kPlain, "in"},
                                 {"degree celsius", EForm::kPlain, "\u00b0C"},
                                 {"celsius", EForm::kPlain, "\u00b0C"},
                                 {"degree fahrenheit", EForm::kPlain, "\u00b0F"},
                                 {"fahrenheit", EForm::kPlain, "\u00b0F"},
                                 {"kelvin", EForm::kPlain, "K"},
                                 {"decibel", EForm::kPlain, "dB"},
                                 {"decibel m", EForm::kPlain, "dBm"},
                                 {"decibelm", EForm::kPlain, "dBm"},  // "decibel(m)"
                                 {"lumen", EForm::kPlain, "lm"},
                                 {"percent", EForm::kPlain, "%"},
                                 {"permille", EForm::kPlain, "\u2030"},
                                 {"count", EForm::kPlain, ""},
                                 {"revolution/minute", EForm::kPlain, "rpm"},
                                 {"revolution per minute", EForm::kPlain, "rpm"},
                                 {"second", EForm::kTime, ""},
                                 {"minute", EForm::kTime, "", 60},
                                 {"hour", EForm::kTime, "", 60 * 60},
                                 {"day", EForm::kTime, "", 24 * 60 * 60},
                                 {"week", EForm::kTime, "", 7 * 24 * 60 * 60}};

std::string FormatAs(const TKnownUnit& unit, long double number, bool isBinary) {
  switch (unit.fForm) {
    case EForm::kBytes:
      return FormatBytes(number, isBinary, unit.fSymbol);
    case EForm::kDecimal:
      return WithDecimalPrefix(number, unit.fSymbol);
    case EForm::kThousandths:
      return WithThousandths(number, unit.fSymbol);
    case EForm::kTime:
      return FormatDuration(number * unit.fFactor);
    case EForm::kPlain:
      break;
  }
  return Rounded(number) + (*unit.fSymbol == '\0' ? "" : " ") + unit.fSymbol;
}

/// As exact as the number was: an integer of 64 bits, or a double.
std::string Plain(long double number) {
  const int digits = std::floor(number) == number ? 20 : 15;
  return Formatted(number, std::chars_format::general, digits);
}

const TKnownUnit* FindUnit(const std::string& name) {
  const auto found = std::find_if(std::begin(kUnits), std::end(kUnits),
                                  [&name](const TKnownUnit& each) { return each.fName == name; });
  return found == std::end(kUnits) ? nullptr : found;
}

/// How many seconds a unit of time has, by what people call it; 0 for no unit of time.
long double SecondsIn(std::string_view name) {
  static constexpr std::pair<std::string_view, long double> kNames[] = {
      {"s", 1},        {"second", 1},   {"seconds", 1}, {"min", 60},     {"minute", 60},
      {"minutes", 60}, {"h", 3600},     {"hour", 3600}, {"hours", 3600}, {"d", 86400},
      {"day", 86400},  {"days", 86400}, {"ms", 1e-3L}};
  for (const auto& [each, seconds] : kNames) {
    if (NModel::EqualIgnoringCase(each, name)) return seconds;
  }
  return 0;
}

/// Returns what the letters after a number multiply it by: "GB", "G", "Gi"; none if unknown.
std::optional<long double> FactorOfSuffix(std::string_view suffix, const TKnownUnit& unit) {
  if (unit.fForm == EForm::kTime) {
    const long double seconds = SecondsIn(suffix);
    return seconds == 0 ? std::nullopt : std::optional(seconds / unit.fFactor);
  }
  // People leave out a part of it: "10Gbit", "41C".
  const std::string_view symbol = unit.fSymbol;
  for (const std::string_view form : {symbol, symbol.substr(0, symbol.find("/s")),
                                      symbol.substr(BeginsWith(symbol, "\u00b0") ? 2 : 0)}) {
    const bool ends = suffix.size() >= form.size() &&
                      NModel::EqualIgnoringCase(suffix.substr(suffix.size() - form.size()), form);
    if (!ends) continue;
    suffix.remove_suffix(form.size());
    break;
  }
  // The only small prefix: that of large ones in the wrong case is none.
  if (suffix == "m" && unit.fForm == EForm::kThousandths) return 1e-3L;
  for (std::size_t i = 0; i <= kMostPrefix; ++i) {
    const auto power = static_cast<long double>(i);
    if (NModel::EqualIgnoringCase(suffix, kDecimalPrefixes[i])) return std::pow(1000.0L, power);
    if (NModel::EqualIgnoringCase(suffix, kBinaryPrefixes[i])) return std::pow(1024.0L, power);
  }
  return std::nullopt;
}

}  // namespace

std::optional<long double> ParseQuantity(const std::string& text, const std::string& unit) {
  const std::string_view typed = Trimmed(text);
  const std::size_t size = std::min(typed.find_first_not_of("+-0123456789."), typed.size());
  const auto number = NumberOf(typed.substr(0, size));
  const std::string_view suffix = Trimmed(typed.substr(size));
  if (!number || suffix.empty()) return number;
  const TUnitParts parts = PartsOf(unit);
  const TKnownUnit* const known = FindUnit(parts.fName);
  const auto factor = known == nullptr ? std::nullopt : FactorOfSuffix(suffix, *known);
  if (!factor) return std::nullopt;
  const long double quantity = *number * *factor / parts.fScale;
  // "41 C" is 41000 thousandths of a degree, without the rest that 10^-3 leaves in binary.
  const long double whole = std::round(quantity);
  return std::fabs(quantity - whole) <= 1e-15L * std::fabs(whole) ? whole : quantity;
}

std::string FormatQuantity(long double number, const std::string& unit) {
  if (unit.empty()) return Plain(number);
  const TUnitParts parts = PartsOf(unit);
  const long double scaled = number * parts.fScale;
  if (!std::isfinite(scaled)) return Plain(number) + " " + unit;
  const TKnownUnit* const known = FindUnit(parts.fName);
  return known == nullptr ? Plain(number) + " " + unit : FormatAs(*known, scaled, parts.fIsBinary);
}

std::string FormatDuration(long double seconds) {
  static constexpr struct {
    long double fSeconds;
    const char* fOne;
    const char* fMany;
  } kParts[] = {{86400, "day", "days"}, {3600, "h", "h"}, {60, "min", "min"}, {1, "s", "s"}};
  if (seconds < 0) return "-" + FormatDuration(-seconds);
  if (seconds == 0) return "0 s";
  if (seconds < 1e-3L) return Rounded(seconds * 1e6L) + " \u00b5s";
  if (seconds < 1) return Rounded(seconds * 1e3L) + " ms";
  if (seconds < 59.95L) return Rounded(seconds) + " s";
  seconds = std::max(seconds, 60.0L);  // 59.97 would be shown as 60 s
  for (std::size_t i = 0;; ++i) {
    const auto& [size, one, many] = kParts[i];
    if (seconds < size) continue;
    const long double count = std::floor(seconds / size);
    std::string text = Rounded(count, 0) + " " + (count == 1 ? one : many);
    const auto& next = kParts[i + 1];
    const long double rest = std::floor((seconds - count * size) / next.fSeconds);
    if (rest > 0) text += " " + Rounded(rest, 0) + " " + next.fMany;
    return text;
  }
}

}  // namespace NVORNQDX20
