// SPDX-License-Identifier: Apache-2.0
#include "value_texts.h"

#include <qdxcore/interfaces.h>
#include <qdxdisplay/names.h>
#include <qdxmodel/names.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <type_traits>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <nlohmann/json.hpp>

namespace NVORNQDX20::NStore {
namespace {

using NModel::EqualIgnoringCase;

constexpr std::int64_t kMicroseconds = 1'000'000;
/// Deeper references within keys are made to hurt.
constexpr int kDeepest = 8;

std::string InQuotes(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// Returns the shortest decimal that reads back as the same value.
template <typename T>
std::string TextOfReal(T value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  std::array<char, 64> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

/// Without the fraction of a second, of which TCIMDateTime keeps no more than 16 bits.
std::string TextOfDateTime(const TCIMDateTime& dateTime) {
  const auto instant = InstantOf(dateTime);
  if (!instant) return dateTime.ToString();
  const std::time_t seconds = *instant / kMicroseconds;
  std::tm clock = {};
  if (::gmtime_r(&seconds, &clock) == nullptr) return dateTime.ToString();
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &clock);
  return text.data();
}

/// Returns whether the text needs quotes among others that are joined by ", ".
bool IsMistakable(const std::string& text) {
  return text.empty() || text[0] == '"' || text.find(", ") != std::string::npos;
}

bool IsOfTexts(TCIMValue::TCIMType type) {
  return type == TCIMValue::TCIMType::kCIMTypeString ||
         type == TCIMValue::TCIMType::kCIMTypeDateTime ||
         type == TCIMValue::TCIMType::kCIMTypeReference;
}

bool IsReal(TCIMValue::TCIMType type) {
  return type == TCIMValue::TCIMType::kCIMTypeReal32 || type == TCIMValue::TCIMType::kCIMTypeReal64;
}

/// Returns whether the key says what state the object is in: the firmware of a machine is the same
/// object after an update. Classes of software have such keys (DMTF CIM, CIM_SoftwareElement).
bool IsState(const std::string& key) {
  static constexpr std::string_view kStates[] = {"Version", "SoftwareElementState",
                                                 "TargetOperatingSystem"};
  return std::any_of(std::begin(kStates), std::end(kStates),
                     [&key](std::string_view state) { return EqualIgnoringCase(key, state); });
}

/// JSON has no numbers for what is no number.
bool IsInJSON(const std::string& real) {
  return real.find_first_not_of("+-.0123456789e") == std::string::npos;
}

}  // namespace

std::optional<std::int64_t> InstantOf(const TCIMDateTime& dateTime) {
  const auto body = dateTime.GetBody();
  if (body->IsNull() || body->IsInterval()) return std::nullopt;
  std::tm clock = {};
  clock.tm_year = body->GetYear() - 1900;
  clock.tm_mon = body->GetMonth() - 1;
  clock.tm_mday = static_cast<int>(body->GetDay());
  clock.tm_hour = body->GetHour();
  clock.tm_min = body->GetMinute() - body->GetUTCOffset();
  clock.tm_sec = body->GetSecond();
  return std::int64_t{::timegm(&clock)} * kMicroseconds;
}

TValueTexts::TValueTexts(std::string ownNamespace, std::string machine)
    : fNamespace(std::move(ownNamespace)), fMachine(std::move(machine)) {}

std::string TValueTexts::TextOf(const TCIMValue& value, bool isBag) const {
  if (!value.IsArray()) return TextOfScalar(value, 0);
  const std::vector<TCIMValue>& elements = value;
  std::vector<std::string> texts;
  texts.reserve(elements.size());
  for (const TCIMValue& element : elements) {
    std::string text = element.IsNull() ? "null" : TextOfScalar(element, 0);
    const auto type = element.GetType();
    const bool isText = IsOfTexts(type) || (IsReal(type) && !IsInJSON(text));
    texts.push_back(isText && !element.IsNull() ? InQuotes(text) : std::move(text));
  }
  if (isBag) std::sort(texts.begin(), texts.end());
  return "[" + boost::algorithm::join(texts, ",") + "]";
}

std::string TValueTexts::TextOfScalar(const TCIMValue& value, int depth) const {
  if (const std::string* const text = value.FindString()) return *text;
  if (const TCIMReference* const reference = value.FindReference()) {
    return TextOfReference(*reference, depth);
  }
  return NModel::VisitScalar(value, [](const auto& native) -> std::string {
    using T = std::decay_t<decltype(native)>;
    if constexpr (std::is_same_v<T, bool>) {
      return native ? "true" : "false";
    } else if constexpr (std::is_integral_v<T>) {
      return std::to_string(native);
    } else if constexpr (std::is_floating_point_v<T>) {
      return TextOfReal(native);
    } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
      return TextOfDateTime(native);
    } else {
      return {};  // texts and references are handled above
    }
  });
}

std::string TValueTexts::TextOfReference(const TCIMReference& reference, int depth) const {
  std::string text;
  const auto ns = reference.GetNamespace();
  const std::string there = ns ? ns->GetName({}) : fNamespace;
  if (!EqualIgnoringCase(there, fNamespace)) text = there + ":";
  const std::string className = reference.GetClassName();
  text += className;
  if (depth >= kDeepest) return text;
  TKeyTexts keys;
  for (const auto& [name, value] : reference.GetBody()->GetKeyBindings()) {
    keys.emplace_back(name, value.IsNull() ? "" : TextOfScalar(value, depth + 1));
  }
  const std::string name = NameOf(className, std::move(keys));
  return name.empty() ? text : text + " " + name;
}

bool TValueTexts::IsSilent(const std::string& className, const std::string& key,
                           const std::string& text) const {
  const bool isMachine = text.empty() || EqualIgnoringCase(text, fMachine);
  if (EqualIgnoringCase(key, "SystemName") || EqualIgnoringCase(key, "CSName")) return isMachine;
  if (IsSilentKey(key)) return true;
  return isMachine && EqualIgnoringCase(key, "Name") &&
         boost::algorithm::iends_with(className, "ComputerSystem");
}

std::string TValueTexts::NameOf(const std::string& className, TKeyTexts keys) const {
  keys.erase(
      std::remove_if(keys.begin(), keys.end(),
                     [&](const auto& key) { return IsSilent(className, key.first, key.second); }),
      keys.end());
  const auto states = std::stable_partition(keys.begin(), keys.end(),
                                            [](const auto& key) { return !IsState(key.first); });
  if (states != keys.begin()) keys.erase(states, keys.end());
  const bool isOneText = std::all_of(keys.begin(), keys.end(), [&keys](const auto& key) {
    return key.second == keys.front().second;
  });
  if (isOneText) return keys.empty() ? "" : keys.front().second;
  for (auto& [name, text] : keys) name = NModel::Folded(name);
  std::sort(keys.begin(), keys.end());
  std::string all;
  for (const auto& [name, text] : keys) {
    if (!all.empty()) all += ", ";
    all += IsMistakable(text) ? InQuotes(text) : text;
  }
  return all;
}

}  // namespace NVORNQDX20::NStore
