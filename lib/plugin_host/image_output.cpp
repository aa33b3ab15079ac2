// SPDX-License-Identifier: Apache-2.0
#include "image_output.h"

#include <qdxcore/datetime.h>
#include <qdxmodel/visit.h>

#include <type_traits>

#include "image_format.h"

namespace NVORNQDX20::NPluginHost {
namespace {

template <typename T>
void PutNative(std::string& out, const T& number) {
  out.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void PutTime(std::string& out, const TCIMDateTime& time) {
  out += static_cast<char>(time.IsInterval());
  for (const std::uint64_t field :
       {std::uint64_t{time.GetYear()}, std::uint64_t{time.GetMonth()}, std::uint64_t{time.GetDay()},
        std::uint64_t{time.GetHour()}, std::uint64_t{time.GetMinute()},
        std::uint64_t{time.GetSecond()}, std::uint64_t{time.GetMicroSeconds()}}) {
    PutNumber(out, field);
  }
  PutNative(out, time.GetUTCOffset());
}

}  // namespace

void PutNumber(std::string& out, std::uint64_t number) {
  for (; number >= 0x80; number >>= 7U) out += static_cast<char>(number | 0x80U);
  out += static_cast<char>(number);
}

void PutText(std::string& out, std::string_view text) {
  PutNumber(out, text.size());
  out += text;
}

void PutScalar(std::string& out, const TCIMValue& value) {
  NModel::VisitScalar(value, [&out](const auto& native) {
    using T = std::decay_t<decltype(native)>;
    if constexpr (std::is_arithmetic_v<T>) {
      PutNative(out, native);
    } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
      PutTime(out, native);
    }
  });
}

void PutPlain(std::string& out, const TPlainValue& value, TCIMValue::TCIMType type) {
  out += static_cast<char>(value.fIsNull ? kNull : kPresent);
  if (value.fIsNull) return;
  if (type == TCIMValue::TCIMType::kCIMTypeString) PutNumber(out, value.fBytes.size());
  out += value.fBytes;
}

bool IsNull(const TCIMValue& value) {
  const bool isTime = !value.IsNull() && value.GetType() == TCIMValue::TCIMType::kCIMTypeDateTime;
  return value.IsNull() || (isTime && TCIMDateTime(value).IsNull());
}

bool IsPresent(const std::string& out, std::size_t content) {
  return static_cast<std::uint8_t>(out[content]) == kPresent;
}

}  // namespace NVORNQDX20::NPluginHost
