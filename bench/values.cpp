// SPDX-License-Identifier: Apache-2.0
// Values, beside the same work on plain types of C++. A value owns one allocation, so do these.
#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "operation.h"

namespace NBench {
namespace {

using namespace NVORNQDX20;
using TCIMType = TCIMValue::TCIMType;

/// A number in memory of its own, with its type.
struct TNumber {
  explicit TNumber(unsigned int number) : fNumber(std::make_unique<unsigned int>(number)) {}
  TNumber(const TNumber& other)
      : fType(other.fType), fNumber(std::make_unique<unsigned int>(*other.fNumber)) {}
  bool operator==(const TNumber& other) const {
    return fType == other.fType && *fNumber == *other.fNumber;
  }

  unsigned int fType = TCIMType::kCIMTypeUint32;
  std::unique_ptr<unsigned int> fNumber;
};

TCIMValue MakeArray() {
  return TCIMValue(TCIMType::kCIMTypeUint32, 0, std::vector<TCIMValue>(100, TCIMValue(70000U)));
}
std::vector<TNumber> MakeNumbers() { return std::vector<TNumber>(100, TNumber(70000)); }

template <typename T>
TLoop CopyOf(const T& value) {
  return Repeat([value] { return T(value); });
}

template <typename T>
TLoop EqualityOf(const T& left, const T& right) {
  return Repeat([left, right]() mutable {
    Keep(left);
    Keep(right);
    return left == right;
  });
}

TLoop TextOf(const TCIMValue& value) {
  return Repeat([value] { return value.ToString(10); });
}

TLoop ParseOf(TCIMType type, const std::string& text) {
  return Repeat([type, text = std::string(text)]() mutable {
    return TCIMValue(type, text, boost::shared_ptr<ICIMNamespace>());
  });
}

template <typename T>
TLoop ConstructionFrom(unsigned int number) {
  return Repeat([number]() mutable {
    Keep(number);
    return T(number);
  });
}

std::string NumberText(unsigned int number) {
  char text[16];
  return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

TLoop TextByHand() {
  return Repeat([number = 4294967295U]() mutable {
    Keep(number);
    return NumberText(number);
  });
}

TLoop ParseByHand() {
  return Repeat([text = std::string("4294967295")] {
    return TNumber(static_cast<unsigned int>(std::strtoul(text.c_str(), nullptr, 0)));
  });
}

TLoop ParseRealByHand() {
  return Repeat([text = std::string("3.14159265")] {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return std::make_unique<double>(number);
  });
}

TLoop ArrayTextByHand() {
  return Repeat([numbers = MakeNumbers()] {
    std::string text = "{ ";
    for (const TNumber& number : numbers) {
      text += NumberText(*number.fNumber);
      text += ", ";
    }
    return text;
  });
}

/// A text in memory of its own, that has memory of its own.
struct TText {
  explicit TText(const std::string& text) : fText(std::make_unique<std::string>(text)) {}
  TText(const TText& other) : TText(*other.fText) {}

  std::unique_ptr<std::string> fText;
};

}  // namespace

TOperations ValueOperations() {
  const std::string letters(60, 'x');
  const std::string real = "3.14159265";
  return {
      {"uint32: create", [] { return ConstructionFrom<TCIMValue>(7); }, "one allocation",
       [] { return ConstructionFrom<TNumber>(7); }, 1.3},
      {"uint32: copy", [] { return CopyOf(TCIMValue(7U)); }, "one allocation",
       [] { return CopyOf(TNumber(7)); }, 1.3},
      {"uint32: equal", [] { return EqualityOf(TCIMValue(7U), TCIMValue(7U)); }, "by hand",
       [] { return EqualityOf(TNumber(7), TNumber(7)); }, 11.2},
      {"uint32: text", [] { return TextOf(TCIMValue(4294967295U)); }, "std::to_chars", TextByHand,
       1.3},
      {"uint32: parse", [] { return ParseOf(TCIMType::kCIMTypeUint32, "4294967295"); },
       "strtoul and one allocation", ParseByHand, 1.6},
      {"real64: parse", [real] { return ParseOf(TCIMType::kCIMTypeReal64, real); },
       "std::from_chars and one allocation", ParseRealByHand, 1.5},
      {"string of 60: copy", [letters] { return CopyOf(TCIMValue(letters)); }, "two allocations",
       [letters] { return CopyOf(TText(letters)); }, 1.2},
      {"array of 100: create",
       [] {
         return Repeat([elements = std::vector<TCIMValue>(100, TCIMValue(70000U))] {
           return TCIMValue(TCIMType::kCIMTypeUint32, 0, elements);
         });
       },
       "101 allocations", [] { return CopyOf(MakeNumbers()); }, 1.2},
      {"array of 100: copy", [] { return CopyOf(MakeArray()); }, "101 allocations",
       [] { return CopyOf(MakeNumbers()); }, 1.2},
      {"array of 100: equal", [] { return EqualityOf(MakeArray(), MakeArray()); }, "by hand",
       [] { return EqualityOf(MakeNumbers(), MakeNumbers()); }, 2},
      {"array of 100: text", [] { return TextOf(MakeArray()); }, "by hand", ArrayTextByHand, 0.73}};
}

}  // namespace NBench
