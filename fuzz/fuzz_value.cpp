// SPDX-License-Identifier: Apache-2.0
// A value read from text is written as a text that gives an equal value; and reading agrees with
// the classic streams wherever those succeed.
#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>
#include <qdxcore/value.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

using namespace NVORNQDX20;

namespace {

using TCIMType = TCIMValue::TCIMType;

void Require(bool holds) {
  if (!holds) std::abort();
}

TCIMValue Read(TCIMType type, std::string text) {
  return TCIMValue(type, text, boost::shared_ptr<ICIMNamespace>());
}

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
  if constexpr (!std::is_same_v<T, bool>) {
    const std::string written = Read(type, text).ToString(10);
    if (std::is_integral_v<T>) Require(Read(type, written) == TCIMValue(value));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  CompareWithStream<unsigned short>(text, TCIMType::kCIMTypeUint16);
  CompareWithStream<short>(text, TCIMType::kCIMTypeSint16);
  CompareWithStream<unsigned int>(text, TCIMType::kCIMTypeUint32);
  CompareWithStream<int>(text, TCIMType::kCIMTypeSint32);
  CompareWithStream<unsigned long>(text, TCIMType::kCIMTypeUint64);
  CompareWithStream<long>(text, TCIMType::kCIMTypeSint64);
  CompareWithStream<float>(text, TCIMType::kCIMTypeReal32);
  CompareWithStream<double>(text, TCIMType::kCIMTypeReal64);
  Require(Read(TCIMType::kCIMTypeString, text).ToString(10) == text);
  return 0;
}
