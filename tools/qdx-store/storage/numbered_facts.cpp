// SPDX-License-Identifier: Apache-2.0
#include "numbered_facts.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;
using TRows = std::vector<TInterner::TInternedRow>;
using TNumbers = std::vector<std::int64_t>;

/// Longer names are no names of CIM.
const std::size_t kLongestName = 1000;

void Require(bool isValid, const char* what) {
  if (!isValid) throw TExplainedException(kQDXStatusInvalidFormat, what);
}

void RequireName(const std::string& name) {
  Require(name.size() <= kLongestName, "it has a name that is too long");
}

/// The part of the document that has numbers first, and all else refers to.
class TNumbering {
 public:
  TNumbering(const TDocumentFacts& facts, TInterner& interner)
      : fFacts(facts), fInterner(interner) {
    NumberClasses();
    NumberProperties();
    NumberObjects();
  }

  TNumberedFacts Run() {
    TNumberedFacts result{{}, {}, {}, TSight(fFacts)};
    AddFacts(result);
    AddMissing(result);
    return result;
  }

 private:
  void NumberClasses() {
    TRows rows;
    for (const TDocumentFacts::TClass& each : fFacts.fClasses) {
      RequireName(each.fNamespace);
      RequireName(each.fName);
      rows.push_back({each.fNamespace, each.fName});
    }
    fClasses = fInterner.Intern(kClassTable, rows);
  }

  std::int64_t ClassOf(std::uint32_t index) const {
    Require(index < fClasses.size(), "it refers to a class that it does not have");
    return fClasses[index];
  }

  void NumberProperties() {
    TRows rows;
    for (const TDocumentFacts::TProperty& each : fFacts.fProperties) {
      RequireName(each.fName);
      RequireName(each.fType);
      rows.push_back({ClassOf(each.fClass), each.fName, each.fType, each.fSecret,
                      static_cast<int>(each.fIsKey)});
    }
    fProperties = fInterner.Intern(kPropertyTable, rows);
  }

  void NumberObjects() {
    TRows rows;
    for (const TDocumentFacts::TObject& each : fFacts.fObjects) {
      RequireName(each.fParts);
      rows.push_back({ClassOf(each.fClass), each.fName, each.fParts});
    }
    fObjects = fInterner.Intern(kObjectTable, rows);
  }

  void AddFacts(TNumberedFacts& result) {
    std::vector<std::string> values;
    std::map<TKey, std::size_t> indexes;  // in values
    std::set<TKey> readings;
    for (const TDocumentFacts::TFact& fact : fFacts.fFacts) {
      Require(fact.fProperty < fProperties.size() && fact.fObject < fObjects.size(),
              "it refers to a property or an object that it does not have");
      const TKey key = {fObjects[fact.fObject], fProperties[fact.fProperty]};
      if (fFacts.fProperties[fact.fProperty].fIsVolatile) {
        if (readings.insert(key).second) result.fReadings.push_back({key, fact.fValue});
      } else if (indexes.emplace(key, values.size()).second) {
        values.push_back(fact.fValue);
        if (!result.fSight.Covers(TSight::kFacts, NamesOf(fact))) {
          result.fSight.AddShown(TSight::kFacts, key);
        }
      }
    }
    const TNumbers numbers = fInterner.InternStrings(values);
    for (const auto& [key, index] : indexes) result.fFacts.push_back({key, numbers[index]});
  }

  TKeyNames NamesOf(const TDocumentFacts::TFact& fact) const {
    const TDocumentFacts::TObject& object = fFacts.fObjects[fact.fObject];
    const TDocumentFacts::TClass& cimClass = fFacts.fClasses[object.fClass];
    return {cimClass.fNamespace, cimClass.fName, object.fParts, object.fName,
            fFacts.fProperties[fact.fProperty].fName};
  }

  void AddMissing(TNumberedFacts& result) {
    std::map<std::pair<std::int64_t, std::string>, std::string> parts;
    for (std::size_t i = 0; i < fFacts.fObjects.size(); ++i) {
      const TDocumentFacts::TObject& object = fFacts.fObjects[i];
      parts.emplace(std::pair(ClassOf(object.fClass), object.fName), object.fParts);
    }
    TRows objects;
    TRows properties;
    TRows reasons;
    for (const TDocumentFacts::TMissing& missing : fFacts.fMissing) {
      RequireName(missing.fProperty);
      const std::int64_t number = ClassOf(missing.fClass);
      const auto known = parts.find({number, missing.fObject.value_or("")});
      const bool hasParts = missing.fObject && known != parts.end();
      objects.push_back({number, missing.fObject ? TJSON(*missing.fObject) : TJSON(),
                         hasParts ? known->second : ""});
      // No value has an empty type.
      properties.push_back({number, missing.fProperty, "", "", 0});
      reasons.push_back({missing.fReason, static_cast<int>(missing.fIsError)});
    }
    const TNumbers objectNumbers = fInterner.Intern(kObjectTable, objects);
    const TNumbers propertyNumbers = fInterner.Intern(kPropertyTable, properties);
    const TNumbers reasonNumbers = fInterner.Intern(kReasonTable, reasons);
    std::map<TKey, std::int64_t> observed;
    for (std::size_t i = 0; i < fFacts.fMissing.size(); ++i) {
      const TDocumentFacts::TMissing& missing = fFacts.fMissing[i];
      const TDocumentFacts::TClass& cimClass = fFacts.fClasses[missing.fClass];
      const TKey key = {objectNumbers[i], propertyNumbers[i]};
      observed.emplace(key, reasonNumbers[i]);
      const TKeyNames names = {cimClass.fNamespace, cimClass.fName,
                               objects[i][2].get<std::string>(), missing.fObject,
                               missing.fProperty};
      if (!result.fSight.Covers(TSight::kMissing, names)) {
        result.fSight.AddShown(TSight::kMissing, key);
      }
    }
    for (const auto& [key, reason] : observed) result.fMissing.push_back({key, reason});
  }

  const TDocumentFacts& fFacts;
  TInterner& fInterner;
  TNumbers fClasses;
  TNumbers fProperties;
  TNumbers fObjects;
};

}  // namespace

TNumberedFacts Number(const TDocumentFacts& facts, TInterner& interner) {
  return TNumbering(facts, interner).Run();
}

}  // namespace NVORNQDX20::NStore
