// SPDX-License-Identifier: Apache-2.0
// Texts of the core: what is parsed is written as a text that parses to the same. The first byte
// selects a date-time (0), a value (1) or an object path (2).
#include <qdxcore/datetime.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxcore/value.h>

#include <locale>
#include <sstream>
#include <type_traits>

#include "checks.h"
#include "support/class_builder.h"

using namespace NVORNQDX20;

namespace {

using TCIMType = TCIMValue::TCIMType;

void CheckDateTime(const std::string& text) {
  TCIMDateTime value;
  try {
    value.Set(text);
  } catch (const TQDXException& e) {
    Require(e.GetStatusCode() == kQDXStatusInvalidDateTime && value.IsNull());
    return;
  }
  const std::string written = value.ToString();
  const TCIMDateTime again(written);
  Require(again.ToString() == written && again == value && !(again < value));
  value.ToUIString();
  try {
    const TCIMDateTime hour(0, 1, 0, 0, 0);
    Require((value + hour).IsInterval() == value.IsInterval());
    Require((value - value) == TCIMDateTime(0, 0, 0, 0, 0));
  } catch (const TQDXException& e) {
    Require(e.GetStatusCode() == kQDXStatusInvalidDateTime);
  }
}

TCIMValue Read(TCIMType type, std::string text) {
  return TCIMValue(type, text, boost::shared_ptr<ICIMNamespace>());
}

/// Checks that parsing agrees with the classic streams where these succeed.
template <typename T>
void CompareWithStream(const std::string& text, TCIMType type) {
  if (std::is_unsigned_v<T> && sizeof(T) < 8 && text.find('-') != std::string::npos) return;
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  if constexpr (std::is_integral_v<T>) stream.unsetf(std::ios::basefield);
  T expected{};
  stream >> expected;
  if (stream.fail()) expected = T{0};
  const T value = Read(type, text);
  Require(value == expected);
  const std::string written = Read(type, text).ToString(10);
  if (std::is_integral_v<T>) Require(Read(type, written) == TCIMValue(value));
}

void CheckValue(const std::string& text) {
  CompareWithStream<unsigned short>(text, TCIMType::kCIMTypeUint16);
  CompareWithStream<short>(text, TCIMType::kCIMTypeSint16);
  CompareWithStream<unsigned int>(text, TCIMType::kCIMTypeUint32);
  CompareWithStream<int>(text, TCIMType::kCIMTypeSint32);
  CompareWithStream<unsigned long>(text, TCIMType::kCIMTypeUint64);
  CompareWithStream<long>(text, TCIMType::kCIMTypeSint64);
  CompareWithStream<float>(text, TCIMType::kCIMTypeReal32);
  CompareWithStream<double>(text, TCIMType::kCIMTypeReal64);
  Require(Read(TCIMType::kCIMTypeString, text).ToString(10) == text);
}

/// Without reals, which are written with six digits and so do not come back exactly.
TNamespace MakeSchema() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "C", {{"a", ""}, {"b", 0U}, {"c", false}});
  AddClass(ns, "L", {{"r", NullReference(ns, "C")}, {"s", NullReference(ns, "C")}, {"i", -1L}});
  AddClass(ns, "M", {{"l", NullReference(ns, "L")}, {"a", ""}});
  return ns;
}

/// Returns whether a nested reference has no keys. Its text extends to the end of the text that
/// contains it, so it does not come back.
bool HasKeylessPart(const TCIMReference& reference) {
  bool keyless = false;
  reference.EnumerateKeyBindings([&keyless](std::pair<std::string, TCIMValue> binding) {
    if (!binding.second.IsReference()) return true;
    const TCIMReference part = binding.second;
    keyless = part.GetPath().find('.') == std::string::npos || HasKeylessPart(part);
    return !keyless;
  });
  return keyless;
}

void CheckObjectPath(const std::string& text) {
  static const TNamespace ns = MakeSchema();
  TCIMReference reference(ns, TOptionsMap());
  try {
    reference.SetPath(text);
  } catch (const TQDXException&) {
    return;
  }
  if (HasKeylessPart(reference)) return;
  const std::string written = reference.GetPath();
  const TCIMReference again(ns, written, TOptionsMap());
  Require(again.GetPath() == written);
  Require(again == reference);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return RunCheck({CheckDateTime, CheckValue, CheckObjectPath}, data, size);
}
