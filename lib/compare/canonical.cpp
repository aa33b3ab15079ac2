// SPDX-License-Identifier: Apache-2.0
#include "canonical.h"

#include <qdxcore/interfaces.h>
#include <qdxmodel/names.h>
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "embedded_text.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

const char* const kNull = "0";
/// In the place of the machine's name. A control character, so that no name is equal to it.
constexpr char kMachine = '\x02';
constexpr char kOther = '\x03';
/// Shorter names can be a part of many texts by chance, and only replace a whole text.
constexpr std::size_t kShortestToken = 3;

/// With its size, so that no text can be mistaken for the next part.
void AppendText(std::string_view text, std::string& to) {
  to += 's';
  to += std::to_string(text.size());
  to += ':';
  to += text;
}

/// Returns the days since 1970-01-01 (proleptic Gregorian calendar).
std::int64_t DaysOf(std::int64_t year, std::int64_t month, std::int64_t day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t ofEra = year - era * 400;
  const std::int64_t ofYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  return era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - 719468;
}

/// Returns the instant of a point in time, whatever its offset.
std::string TextOf(const TCIMDateTime& dateTime) {
  const auto body = dateTime.GetBody();
  if (body->IsNull()) return kNull;
  if (body->IsInterval()) return "i" + dateTime.ToString();
  const std::int64_t days = DaysOf(body->GetYear(), body->GetMonth(), body->GetDay());
  const std::int64_t minutes =
      (days * 24 + body->GetHour()) * 60 + body->GetMinute() - body->GetUTCOffset();
  return "t" + std::to_string(minutes * 60 + body->GetSecond()) + "." +
         std::to_string(body->GetMicroSeconds());
}

/// The shortest decimal that reads back as the value, so that the width of its type is no matter.
template <typename T>
std::string TextOfReal(T value) {
  char text[64];
  return {text, std::to_chars(text, std::end(text), value).ptr};
}

bool IsOfWord(char c) {
  const char lower = NModel::Lower(c);
  return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

/// Replaces a name, in any case, where it is a whole word.
std::string Replaced(const std::string& text, const std::string& name, char placeholder) {
  std::string replaced;
  std::size_t copied = 0;
  for (std::size_t at = 0; at + name.size() <= text.size(); ++at) {
    const std::size_t end = at + name.size();
    const bool isWord =
        (at == 0 || !IsOfWord(text[at - 1])) && (end == text.size() || !IsOfWord(text[end]));
    if (!isWord ||
        !NModel::EqualIgnoringCase(std::string_view(text).substr(at, name.size()), name)) {
      continue;
    }
    replaced.append(text, copied, at - copied).push_back(placeholder);
    copied = end;
    at = end - 1;
  }
  return replaced.append(text, copied);
}

/// Returns the name, and the part of it before the domain.
std::vector<std::string> NamesOf(const std::string& machine) {
  std::vector<std::string> names;
  const std::size_t dot = machine.find('.');
  if (!machine.empty()) names.push_back(machine);
  if (dot != std::string::npos && dot != 0) names.push_back(machine.substr(0, dot));
  return names;
}

std::string Without(const std::vector<std::string>& names, std::string text, char placeholder) {
  for (const std::string& name : names) {
    if (NModel::EqualIgnoringCase(text, name)) return std::string(1, placeholder);
    if (name.size() >= kShortestToken) text = Replaced(text, name, placeholder);
  }
  return text;
}

}  // namespace

TCanonical::TCanonical(const std::string& ownNamespace, const std::string& machine,
                       const TLeftOut& leftOut)
    : fNamespace(NModel::Folded(ownNamespace)), fMachines(NamesOf(machine)), fLeftOut(leftOut) {}

TCanonical TCanonical::WithOtherMachine(const std::string& machine) const {
  TCanonical copy = *this;
  copy.fOthers = NamesOf(machine);
  return copy;
}

std::string TCanonical::WithoutMachine(std::string text) const {
  return Without(fOthers, Without(fMachines, std::move(text), kMachine), kOther);
}

std::string TCanonical::TextOf(const TCIMValue& value, const TPropertyKind& kind) const {
  std::string text;
  if (value.IsNull()) return kNull;
  value.IsArray() ? AppendArray(value, kind, text) : AppendScalar(value, kind, text);
  return text;
}

void TCanonical::AppendArray(const TCIMValue& value, const TPropertyKind& kind,
                             std::string& text) const {
  const std::vector<TCIMValue>& elements = value;
  std::vector<std::string> texts;
  texts.reserve(elements.size());
  for (const TCIMValue& element : elements) texts.push_back(TextOf(element, kind));
  if (kind.fIsBag) std::sort(texts.begin(), texts.end());
  text += '[';
  for (const std::string& each : texts) AppendText(each, text);
  text += ']';
}

void TCanonical::AppendScalar(const TCIMValue& value, const TPropertyKind& kind,
                              std::string& text) const {
  if (const std::string* const string = value.FindString()) {
    AppendText(WithoutMachine(kind.fIsEmbedded ? ContentOfEmbedded(*string) : *string), text);
    return;
  }
  if (const TCIMReference* const reference = value.FindReference()) {
    text += LeadsToLeftOut(value) ? kNull : TextOfPath(*reference);
    return;
  }
  text += NModel::VisitScalar(value, [](const auto& native) -> std::string {
    using T = std::decay_t<decltype(native)>;
    if constexpr (std::is_same_v<T, bool>) {
      return native ? "true" : "false";
    } else if constexpr (std::is_integral_v<T>) {
      return "#" + std::to_string(native);
    } else if constexpr (std::is_floating_point_v<T>) {
      return "r" + TextOfReal(native);
    } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
      return NVORNQDX20::TextOf(native);
    } else {
      return {};  // texts and references are written above
    }
  });
}

std::string TCanonical::TextOfKey(const TCIMValue& value) const {
  const std::string* const text = value.FindString();
  const bool isHidden =
      text != nullptr && std::find(fHidden.begin(), fHidden.end(), *text) != fHidden.end();
  return isHidden ? "s0:" : TextOf(value, {});
}

std::string TCanonical::TextOfPath(const TCIMReference& path) const {
  TCanonicalKeys keys;
  for (const auto& [name, value] : path.GetBody()->GetKeyBindings()) {
    keys.emplace_back(NModel::Folded(name), TextOfKey(value));
  }
  const auto ns = path.GetNamespace();
  const std::string name = path.GetClassName();
  return (ns ? NModel::Folded(ns->GetName({})) : fNamespace) + ":" + TextOfInstance(name, keys);
}

std::string TCanonical::IdentityOf(const std::string& className, TCanonicalKeys& keys) const {
  return fNamespace + ":" + TextOfInstance(className, keys);
}

std::string TCanonical::TextOfInstance(const std::string& className, TCanonicalKeys& keys) {
  if (!std::is_sorted(keys.begin(), keys.end())) std::sort(keys.begin(), keys.end());
  std::string text = NModel::Folded(className);
  for (const auto& [name, value] : keys) {
    text += ',';
    text += name;
    text += '=';
    AppendText(value, text);
  }
  return text;
}

bool TCanonical::LeadsToLeftOut(const TCIMValue& value) const {
  const TCIMReference* const reference = value.FindReference();
  if (fLeftOut.fClasses.empty() || reference == nullptr) return false;
  return fLeftOut.fClasses.count(NModel::Folded(reference->GetClassName())) != 0;
}

std::string WithoutPlaceholders(std::string text) {
  std::replace(text.begin(), text.end(), kOther, kMachine);
  return text;
}

bool MayBeEqual(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char inA, char inB) {
    // Each side's name for the other: these are two machines.
    if (inA == kOther && inB == kOther) return false;
    return inA == inB || (inA == kMachine && inB == kOther) || (inA == kOther && inB == kMachine);
  });
}

bool AreIdentical(const TCIMValue& a, const TCIMValue& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  if (const std::string* const text = a.FindString()) {
    const std::string* const other = b.FindString();
    return other != nullptr && *text == *other;
  }
  const TType type = a.GetType();
  const TType element = NModel::ElementType(type);
  // These do not compare as needed: intervals modulo 2^32 seconds, references by their objects.
  if (element == TType::kCIMTypeDateTime || element == TType::kCIMTypeReference) return false;
  return type == b.GetType() && a == b;
}

}  // namespace NVORNQDX20
