// SPDX-License-Identifier: Apache-2.0
#include "sight.h"

#include <qdxcore/status.h>

#include <algorithm>

#include <nlohmann/json.hpp>

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;

const char* const kNamespaces = "namespaces";
const char* const kUnknown = "unknown";
const char* const kUnknownKeys = "unknownKeys";
const char* const kShown[] = {"shownFacts", "shownMissing"};

bool Matches(const std::string& pattern, const std::string& text) {
  return pattern.empty() || pattern == text;
}

/// A part that is not known may be any.
bool MatchesPart(const std::string& part, const TKeyNames& names) {
  if (part.empty() || (names.fParts.empty() && !names.fObject)) return true;
  return (" " + names.fParts + " ").find(" " + part + " ") != std::string::npos;
}

bool Matches(const TUnknown& unknown, const TKeyNames& names) {
  return Matches(unknown.fNamespace, names.fNamespace) && MatchesPart(unknown.fPart, names) &&
         Matches(unknown.fProperty, names.fProperty) &&
         (!unknown.fObject || unknown.fObject == names.fObject);
}

bool MatchesAny(const std::vector<TUnknown>& unknown, const TKeyNames& names) {
  return std::any_of(unknown.begin(), unknown.end(),
                     [&](const TUnknown& each) { return Matches(each, names); });
}

TJSON ToJSON(const TUnknown& unknown) {
  return {unknown.fNamespace, unknown.fClass, unknown.fPart,
          unknown.fObject ? TJSON(*unknown.fObject) : TJSON(), unknown.fProperty};
}

TUnknown ToUnknown(const TJSON& json) {
  TUnknown unknown{json.at(0), json.at(1), json.at(2), {}, json.at(4)};
  if (json.at(3).is_string()) unknown.fObject = json.at(3).get<std::string>();
  return unknown;
}

}  // namespace

TSight::TSight(const TDocumentFacts& facts)
    : fNamespaces(facts.fNamespaces.begin(), facts.fNamespaces.end()) {
  for (const TUnknown& unknown : facts.fUnknown) Add(unknown);
}

TSight::TSight(const std::string& text) {
  try {
    const TJSON json = TJSON::parse(text);
    json.at(kNamespaces).get_to(fNamespaces);
    for (const TJSON& unknown : json.at(kUnknown)) Add(ToUnknown(unknown));
    json.at(kUnknownKeys).get_to(fUnknownKeys);
    for (const EKind kind : {kFacts, kMissing}) {
      for (const TJSON& key : json.at(kShown[kind])) {
        fShown[kind].insert({key.at(0).get<std::int64_t>(), key.at(1).get<std::int64_t>()});
      }
    }
  } catch (const TJSON::exception&) {
    throw TExplainedException(kQDXStatusCorruptedContainer,
                              "the store has no list of what a document could see");
  }
}

void TSight::Add(const TUnknown& unknown) {
  const bool namesEverything = !unknown.fNamespace.empty() && !unknown.fClass.empty() &&
                               unknown.fPart.empty() && unknown.fObject &&
                               !unknown.fProperty.empty();
  if (namesEverything) {
    fUnknownKeys.insert({unknown.fNamespace, unknown.fClass, *unknown.fObject, unknown.fProperty});
  } else {
    fUnknown[unknown.fClass].push_back(unknown);
  }
}

bool TSight::Covers(EKind kind, const TKeyNames& names) const {
  if (fNamespaces.count(names.fNamespace) == 0) return false;
  const auto everywhere = fUnknown.find("");
  if (everywhere != fUnknown.end() && MatchesAny(everywhere->second, names)) return false;
  if (kind == kMissing) return true;
  const auto inClass = fUnknown.find(names.fClass);
  if (inClass != fUnknown.end() && MatchesAny(inClass->second, names)) return false;
  return fUnknownKeys.empty() || !names.fObject ||
         fUnknownKeys.count({names.fNamespace, names.fClass, *names.fObject, names.fProperty}) == 0;
}

bool TSight::Knows(EKind kind, const TKey& key, const TKeyNames& names) const {
  return fShown[kind].count(key) != 0 || Covers(kind, names);
}

std::string TSight::ToText() const {
  std::set<TJSON> unknown;
  for (const auto& [name, all] : fUnknown) {
    for (const TUnknown& each : all) unknown.insert(ToJSON(each));
  }
  TJSON json = {{kNamespaces, fNamespaces}, {kUnknown, unknown}, {kUnknownKeys, fUnknownKeys}};
  for (const EKind kind : {kFacts, kMissing}) {
    TJSON& keys = json[kShown[kind]] = TJSON::array();
    for (const TKey& key : fShown[kind]) keys.push_back({key.fObject, key.fProperty});
  }
  return json.dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

}  // namespace NVORNQDX20::NStore
