// SPDX-License-Identifier: Apache-2.0
#include "missing_reasons.h"

#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxdescribe/missing_values.h>
#include <qdxmodel/classes.h>

#include <algorithm>
#include <optional>

#include "value_reader.h"
#include "xml/literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

/// Formats a key as reasons name it.
std::string TextOf(const TCIMValue& key) {
  if (key.IsReference()) return TCIMReference(key).GetPath();
  if (key.GetType() != TCIMType::kCIMTypeBoolean) return WriteLiteral(key);
  return static_cast<bool>(key) ? "true" : "false";
}

/// Returns nothing for an instance without keys among others.
std::optional<std::string> LastKeyOf(const ICIMClass& cimClass, const ICIMInstance& instance) {
  const auto properties = NModel::PropertiesOf(cimClass);
  const auto last = std::find_if(properties.rbegin(), properties.rend(),
                                 [](const auto& property) { return property.fIsKey; });
  if (last != properties.rend()) {
    return TextOf(instance.GetProperty(last->fDecl->GetName(), {})->GetValue());
  }
  std::size_t count = 0;
  cimClass.EnumerateInstances([&count](const auto&) { return ++count < 2; }, false, {});
  if (count > 1) return std::nullopt;
  return std::string();
}

/// Returns: the document says "A", or of an array: the document says [0] "A", [2] "B".
std::string ReasonOf(const std::vector<TUnheldDateTime>& values) {
  std::string reason = "the document says";
  const char* separator = " ";
  for (const auto& [value, index] : values) {
    reason += separator + (index ? "[" + std::to_string(*index) + "] " : "") + Shown(value->fText);
    separator = ", ";
  }
  return reason;
}

bool IsRecorded(ICIMNamespace& ns, NDescribe::TMissingValue value) {
  try {
    std::vector<NDescribe::TMissingValue> values;
    values.push_back(std::move(value));
    NDescribe::WriteMissingValues(ns, std::move(values));
    return true;
  } catch (const TQDXException& e) {
    // The document declares the class in another way, or has another reason.
    if (e.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    return false;
  }
}

}  // namespace

std::size_t TMissingReasons::Add(const ICIMClass& cimClass, const ICIMInstance& instance,
                                 const std::vector<TUnheld>& unheld) {
  constexpr std::size_t kReasonBytes = 1024;
  std::size_t bytes = 0;
  const auto key = LastKeyOf(cimClass, instance);
  for (const auto& [property, values] : unheld) {
    TText text{ReasonOf(values), {}};
    for (const TUnheldDateTime& each : values) text.fPlaces.Add(PlaceOf(*each.fValue, *property));
    if (!key) {
      fUnrecorded.Add(text.fPlaces);
      continue;
    }
    const auto decl = FindDecl(cimClass, property->Get("NAME"));
    const auto [known, isNew] =
        fTexts.try_emplace(std::tuple(cimClass.GetName({}), *key, decl->GetName()), text);
    if (!isNew && known->second.fReason != text.fReason) fUnrecorded.Add(text.fPlaces);
    if (!isNew) continue;
    const std::size_t texts =
        cimClass.GetName({}).size() + key->size() + decl->GetName().size() + text.fReason.size();
    bytes += kReasonBytes + 2 * texts;
  }
  return bytes;
}

void TMissingReasons::Write(ICIMNamespace& ns, TReadingState& state) {
  for (const auto& [place, text] : fTexts) {
    const auto& [cimClass, key, property] = place;
    const NDescribe::TReason reason(text.fReason, NDescribe::TReason::kAbsence);
    if (!IsRecorded(ns, {cimClass, key, property, reason})) fUnrecorded.Add(text.fPlaces);
  }
  state.fUnheldDateTimes.Add(fUnrecorded);
  fTexts.clear();
}

}  // namespace NVORNQDX20::NCIMXML
