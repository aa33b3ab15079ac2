// SPDX-License-Identifier: Apache-2.0
#include "records.h"

#include <qdxdisplay/names.h>
#include <qdxdisplay/value_text.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace NVORNQDX20::NReport {

std::optional<std::size_t> TRecord::Find(const std::string& property) const {
  const auto& properties = fClass->fProperties;
  const auto found =
      std::find_if(properties.begin(), properties.end(), [&](const TPropertySnapshot& each) {
        return NModel::EqualIgnoringCase(each.fName, property);
      });
  if (found == properties.end()) return std::nullopt;
  return static_cast<std::size_t>(found - properties.begin());
}

const TJSON* TRecord::FindValue(const std::string& property) const {
  const auto position = Find(property);
  return position ? &fInstance->fValues[*position] : nullptr;
}

std::string TRecord::GetText(const std::string& property) const {
  const TJSON* const value = FindValue(property);
  return value != nullptr && value->is_string() ? value->get<std::string>() : "";
}

std::string TRecord::GetShown(const std::string& property) const {
  const auto position = Find(property);
  if (!position || fInstance->fValues[*position].is_null()) return "";
  return TextForPeople(*fClass, *fInstance, *position);
}

std::optional<double> TRecord::GetNumber(const std::string& property) const {
  const TJSON* const value = FindValue(property);
  if (value == nullptr) return std::nullopt;
  if (value->is_number()) return value->get<double>();
  if (value->is_boolean()) return value->get<bool>() ? 1 : 0;
  if (!value->is_string()) return std::nullopt;
  // 64-bit integers are texts.
  const auto& text = value->get_ref<const std::string&>();
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0') return std::nullopt;
  return number;
}

TRecords::TRecords(const std::vector<TReportedNamespace>& namespaces, std::size_t chosen)
    : fNamespace(namespaces.at(chosen)) {
  for (std::size_t i = 0; i < chosen; ++i) {
    for (const TClassSnapshot& cimClass : namespaces[i].fClasses) {
      fFirst += cimClass.fInstances.size();
    }
  }
}

std::vector<TRecord> TRecords::Of(const std::string& shortName) const {
  std::vector<TRecord> records;
  std::size_t number = fFirst;
  for (const TClassSnapshot& cimClass : fNamespace.fClasses) {
    if (!NModel::EqualIgnoringCase(ShortClassName(cimClass.fName), shortName)) {
      number += cimClass.fInstances.size();
      continue;
    }
    for (const TInstanceSnapshot& instance : cimClass.fInstances) {
      records.emplace_back(cimClass, instance, number++);
    }
  }
  return records;
}

std::optional<TRecord> TRecords::Find(const std::vector<std::string>& shortNames,
                                      const std::string& property, const std::string& text) const {
  for (const std::string& shortName : shortNames) {
    for (const TRecord& record : Of(shortName)) {
      if (record.GetText(property) == text) return record;
    }
  }
  return std::nullopt;
}

std::set<unsigned> NumbersIn(const std::string& list) {
  constexpr unsigned kMostNumber = 1 << 16;
  std::set<unsigned> numbers;
  const char* next = list.data();
  const char* const end = next + list.size();
  while (next < end) {
    unsigned first = 0;
    auto parsed = std::from_chars(next, end, first);
    if (parsed.ec != std::errc()) break;
    unsigned last = first;
    if (parsed.ptr < end && *parsed.ptr == '-') {
      parsed = std::from_chars(parsed.ptr + 1, end, last);
      if (parsed.ec != std::errc()) break;
    }
    for (unsigned i = first; i <= std::min(last, kMostNumber); ++i) numbers.insert(i);
    if (parsed.ptr < end && *parsed.ptr != ',') break;
    next = parsed.ptr + 1;
  }
  return numbers;
}

}  // namespace NVORNQDX20::NReport
