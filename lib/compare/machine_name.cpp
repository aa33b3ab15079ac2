// SPDX-License-Identifier: Apache-2.0
#include "machine_name.h"

#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <map>
#include <optional>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

/// Returns the name of the key that is `folded` in lower case; empty if there is none.
std::string FindKey(const ICIMClass& cimClass, const std::vector<std::string>& folded) {
  for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
    const std::string& name = decl->GetName();
    if (isKey && std::find(folded.begin(), folded.end(), NModel::Folded(name)) != folded.end()) {
      return name;
    }
  }
  return "";
}

/// Returns the text of a property of the instance; empty for null.
std::string TextOf(const ICIMInstance& instance, const std::string& property) {
  const auto value = instance.GetProperty(property, {});
  const std::string* const text = value->GetValue().FindString();
  return text == nullptr ? "" : *text;
}

/// Returns the text that all instances have; none if they differ, or without instances.
std::optional<std::string> CommonText(const ICIMClass& cimClass, const std::string& property) {
  std::optional<std::string> common;
  bool isCommon = true;
  cimClass.EnumerateInstances(
      [&](const TInstance& instance) {
        const std::string text = TextOf(*instance, property);
        isCommon = !common || *common == text;
        common = text;
        return isCommon;
      },
      false, {});
  return isCommon ? common : std::nullopt;
}

TClass FindClass(const TSide& side, const std::string& name) {
  TClass found;
  (void)TryUnlessOutOfMemory([&] { found = side.fNamespace.fNamespace->GetClass(name, {}); });
  return found;
}

/// Calls `visit(const TClass&)` for each class.
template <typename TVisit>
void ForEachClass(const std::vector<TComparedNamespace>& namespaces, const TVisit& visit) {
  for (const TComparedNamespace& each : namespaces) {
    each.fNamespace->EnumerateClasses(
        [&visit](const TClass& root) {
          for (const TClass& cimClass : NModel::WithSubclasses(root)) visit(cimClass);
          return true;
        },
        {});
  }
}

/// Returns the text of the first instance; empty if the class has none.
std::string FirstText(const ICIMClass& cimClass, const std::string& property) {
  std::string text;
  cimClass.EnumerateInstances(
      [&](const TInstance& instance) {
        text = TextOf(*instance, property);
        return false;
      },
      false, {});
  return text;
}

}  // namespace

std::string FindMachineName(const std::vector<TComparedNamespace>& namespaces) {
  std::map<std::string, int> counts;
  std::optional<std::string> ofSystem;
  ForEachClass(namespaces, [&](const TClass& cimClass) {
    const std::string key = FindKey(*cimClass, {"systemname", "csname"});
    const std::string text = key.empty() ? "" : FirstText(*cimClass, key);
    if (!text.empty()) ++counts[text];
    if (boost::algorithm::iends_with(cimClass->GetName({}), "ComputerSystem")) {
      const std::string name = FindKey(*cimClass, {"name"});
      const auto common = name.empty() ? std::nullopt : CommonText(*cimClass, name);
      if (common) ofSystem = ofSystem.value_or(*common) == *common ? *common : "";
    }
  });
  const auto most = std::max_element(
      counts.begin(), counts.end(),
      [](const auto& one, const auto& other) { return one.second < other.second; });
  return most != counts.end() ? most->first : ofSystem.value_or("");
}

void HideUnknownKeys(const TSide& unknown, TSide& known) {
  if (!unknown.fNamespace.fNamespace || !known.fNamespace.fNamespace) return;
  for (const auto& [where, reason] : unknown.fNamespace.fReasons) {
    const auto& [className, key, property] = where;
    if (!reason.IsError() || property.empty()) continue;
    const TClass cimClass = FindClass(unknown, className);
    const TClass other = FindClass(known, className);
    if (!cimClass || !other) continue;
    const std::string name = FindKey(*cimClass, {NModel::Folded(property)});
    const std::string ofOther = FindKey(*other, {NModel::Folded(property)});
    if (name.empty() || ofOther.empty() || CommonText(*cimClass, name) != "") continue;
    const auto text = CommonText(*other, ofOther);
    if (text && !text->empty()) known.fCanonical.HideInKeys(*text);
  }
}

}  // namespace NVORNQDX20
