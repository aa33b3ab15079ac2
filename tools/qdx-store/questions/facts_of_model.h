// SPDX-License-Identifier: Apache-2.0
/// What the hosts of a model have now.
#ifndef TOOLS_QDX_STORE_QUESTIONS_FACTS_OF_MODEL_H_
#define TOOLS_QDX_STORE_QUESTIONS_FACTS_OF_MODEL_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "odd.h"
#include "storage/sight.h"

namespace NVORNQDX20::NStore {

class TFactsOfModel {
 public:
  struct TFact {
    std::int64_t fObject;
    std::int64_t fProperty;
    std::int64_t fValue;
    std::size_t fHost;  ///< An index of the model's hosts.

    bool operator<(const TFact& other) const {
      return std::tie(fObject, fProperty, fValue, fHost) <
             std::tie(other.fObject, other.fProperty, other.fValue, other.fHost);
    }
  };
  struct TProperty {
    std::int64_t fClass;
    std::string fName;
    bool fIsSecret;
  };
  struct TClass {
    std::string fNamespace;
    std::string fName;
    bool fIsAssociation = false;
  };
  struct TObject {
    std::string fName;
    std::string fParts;
  };

  /// Reads the facts of one class, or for an empty name of all classes but associations. Throws a
  /// TDatabaseError.
  TFactsOfModel(TDatabase& database, const TModel& model, const std::string& className);

  /// Returns the facts, sorted.
  const std::vector<TFact>& GetFacts() const { return fFacts; }
  const TProperty& GetProperty(std::int64_t property) const { return fProperties.at(property); }
  const TClass& GetClass(std::int64_t cimClass) const { return fClasses.at(cimClass); }
  const TObject& GetObject(std::int64_t object) const { return fObjects.at(object); }
  /// Returns what the last document of a host could see. Equal ones are one object.
  const TSight& GetSight(std::size_t host) const { return *fSights[host]; }
  /// Reads texts by their numbers. Throws a TDatabaseError.
  std::unordered_map<std::int64_t, std::string> ReadTexts(
      const std::vector<std::int64_t>& numbers) const;

 private:
  void ReadClasses();
  void ReadFacts(const TModel& model, const std::string& className);
  void ReadObjects();
  void ReadSights(const TModel& model);

  TDatabase& fDatabase;
  std::string fHostNumbers;  // a JSON array
  std::vector<TFact> fFacts;
  std::unordered_map<std::int64_t, TProperty> fProperties;
  std::unordered_map<std::int64_t, TClass> fClasses;
  std::unordered_map<std::int64_t, TObject> fObjects;
  std::map<std::int64_t, TSight> fKnownSights;
  std::vector<const TSight*> fSights;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_QUESTIONS_FACTS_OF_MODEL_H_
