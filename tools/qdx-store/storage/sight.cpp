// SPDX-License-Identifier: Apache-2.0
#include "sight.h"

#include <qdxcore/status.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include <nlohmann/json.hpp>

#include "database/error.h"

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;

const char* const kNamespaces = "namespaces";
const char* const kUnknown = "unknown";
const char* const kShown[] = {"shownFacts", "shownMissing"};

enum EElement : std::size_t { kNamespace, kClass, kPart, kObject, kProperty };

unsigned BitOf(EElement element) { return 1U << element; }

}  // namespace

TSight::TSight(const TDocumentFacts& facts)
    : fNamespaces(facts.fNamespaces.begin(), facts.fNamespaces.end()) {
  for (const TUnknown& unknown : facts.fUnknown) Add(unknown);
}

TSight::TSight(const std::string& text) {
  try {
    const TJSON json = TJSON::parse(text);
    json.at(kNamespaces).get_to(fNamespaces);
    for (const TJSON& unknown : json.at(kUnknown)) {
      std::optional<std::string> object;
      if (unknown.at(3).is_string()) object = unknown.at(3).get<std::string>();
      Add({unknown.at(0), unknown.at(1), unknown.at(2), object, unknown.at(4)});
    }
    for (const EKind kind : {kFacts, kMissing}) {
      for (const TJSON& key : json.at(kShown[kind])) {
        fShown[kind].insert({key.at(0).get<std::int64_t>(), key.at(1).get<std::int64_t>()});
      }
    }
  } catch (const TJSON::exception&) {
    throw TDatabaseError(TDatabaseError::kRefused, kQDXStatusCorruptedContainer,
                         "it has lost what a document could see");
  }
}

void TSight::Add(const TUnknown& unknown) {
  const auto& [ns, className, part, object, property] = unknown;
  if (!fUnknown.insert({ns, className, part, object, property}).second) return;
  TNamesOfScope names = {ns, className, part, object.value_or(""), property};
  TShape shape = object ? BitOf(kObject) : 0;
  for (const EElement element : {kNamespace, kClass, kPart, kProperty}) {
    if (!names[element].empty()) shape |= BitOf(element);
  }
  fScopes[shape].insert(names);
  if (part.empty()) return;
  names[kPart].clear();
  fScopesOfAnyPart[shape].insert(names);
}

bool TSight::Covers(EKind kind, const TKeyNames& names) const {
  if (fNamespaces.count(names.fNamespace) == 0) return false;
  return std::none_of(fScopes.begin(), fScopes.end(), [&](const auto& each) {
    const TShape shape = each.first;
    const bool isOfClass = (shape & BitOf(kClass)) != 0;
    return !(kind == kMissing && isOfClass) && Has(shape, names);
  });
}

/// Returns whether a scope of this shape has the key.
bool TSight::Has(TShape shape, const TKeyNames& names) const {
  if ((shape & BitOf(kObject)) != 0 && !names.fObject) return false;
  const TNamesOfScope all = {names.fNamespace, names.fClass, "", names.fObject.value_or(""),
                             names.fProperty};
  TNamesOfScope key;
  for (const EElement element : {kNamespace, kClass, kObject, kProperty}) {
    if ((shape & BitOf(element)) != 0) key[element] = all[element];
  }
  const std::set<TNamesOfScope>& scopes = fScopes.at(shape);
  if ((shape & BitOf(kPart)) == 0) return scopes.count(key) != 0;
  // The parts of all objects of a class are not known: they may be any.
  if (!names.fObject) return fScopesOfAnyPart.at(shape).count(key) != 0;
  std::istringstream parts(names.fParts);
  while (parts >> key[kPart]) {
    if (scopes.count(key) != 0) return true;
  }
  return false;
}

bool TSight::Knows(EKind kind, const TKey& key, const TKeyNames& names) const {
  return fShown[kind].count(key) != 0 || Covers(kind, names);
}

std::string TSight::ToText() const {
  TJSON unknown = TJSON::array();
  for (const auto& [ns, className, part, object, property] : fUnknown) {
    unknown.push_back({ns, className, part, object ? TJSON(*object) : TJSON(), property});
  }
  TJSON json = {{kNamespaces, fNamespaces}, {kUnknown, unknown}};
  for (const EKind kind : {kFacts, kMissing}) {
    TJSON& keys = json[kShown[kind]] = TJSON::array();
    for (const TKey& key : fShown[kind]) keys.push_back({key.fObject, key.fProperty});
  }
  return json.dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

}  // namespace NVORNQDX20::NStore
