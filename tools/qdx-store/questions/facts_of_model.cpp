// SPDX-License-Identifier: Apache-2.0
#include "facts_of_model.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "storage/moment.h"

namespace NVORNQDX20::NStore {
namespace {

std::string JSONArrayOf(const std::vector<std::int64_t>& numbers) {
  std::string text = "[";
  for (const std::int64_t number : numbers) {
    if (text.size() > 1) text += ',';
    text += std::to_string(number);
  }
  return text + "]";
}

/// The numbers in the parameter of this name, for "IN".
std::string NumbersIn(const std::string& parameter) {
  return "(SELECT CAST(e.value AS BIGINT) FROM @ROWS(" + parameter + ") AS e)";
}

/// Takes the next number off a text of numbers with one character between them; -1 at the end.
std::int64_t TakeNumber(const char*& next, const char* end) {
  std::int64_t number = -1;
  next = std::from_chars(next, end, number).ptr;
  if (next != end) ++next;
  return number;
}

}  // namespace

TFactsOfModel::TFactsOfModel(TDatabase& database, const TModel& model, const std::string& className)
    : fDatabase(database) {
  std::vector<std::int64_t> hosts;
  for (const TFleetHost* const host : model.fHosts) hosts.push_back(host->fID);
  fHostNumbers = JSONArrayOf(hosts);
  ReadClasses();
  ReadFacts(model, className);
  ReadObjects();
  ReadSights(model);
}

void TFactsOfModel::ReadClasses() {
  fDatabase.Query("SELECT id, namespace, name FROM class", 3, {}, [this](const TRow& row) {
    fClasses[ToNumber(row[0])] = {row[1].value_or(""), row[2].value_or("")};
  });
  fDatabase.Query("SELECT id, class, name, secret, is_key, type FROM property", 6, {},
                  [this](const TRow& row) {
                    const std::int64_t cimClass = ToNumber(row[1]);
                    fProperties[ToNumber(row[0])] = {cimClass, row[2].value_or(""),
                                                     !row[3].value_or("").empty()};
                    const bool isReference = ToNumber(row[4]) != 0 && row[5] == "reference";
                    if (isReference) fClasses[cimClass].fIsAssociation = true;
                  });
}

void TFactsOfModel::ReadFacts(const TModel& model, const std::string& className) {
  std::unordered_map<std::int64_t, std::size_t> indexes;
  for (const TFleetHost* const host : model.fHosts) indexes.emplace(host->fID, indexes.size());
  const auto isWanted = [&](std::int64_t property) {
    const TClass& cimClass = GetClass(GetProperty(property).fClass);
    return className.empty() ? !cimClass.fIsAssociation
                             : NModel::EqualIgnoringCase(cimClass.fName, className);
  };
  // One row for each host: rows cost more than what is in them.
  fDatabase.Query(
      "SELECT f.host, @LIST(f.object || ' ' || f.property || ' ' || f.value) FROM fact AS f"
      " WHERE f.until = " +
          std::to_string(kStillValid) + " AND f.host IN " + NumbersIn(":hosts") +
          " GROUP BY f.host",
      2, {fHostNumbers}, [&](const TRow& row) {
        const std::size_t host = indexes.at(ToNumber(row[0]));
        const std::string list = row[1].value_or("");
        const char* next = list.data();
        const char* const end = next + list.size();
        while (next != end) {
          TFact fact{};
          fact.fObject = TakeNumber(next, end);
          fact.fProperty = TakeNumber(next, end);
          fact.fValue = TakeNumber(next, end);
          fact.fHost = host;
          if (isWanted(fact.fProperty)) fFacts.push_back(fact);
        }
      });
  std::sort(fFacts.begin(), fFacts.end());
}

void TFactsOfModel::ReadObjects() {
  std::vector<std::int64_t> numbers;
  for (const TFact& fact : fFacts) {
    if (numbers.empty() || numbers.back() != fact.fObject) numbers.push_back(fact.fObject);
  }
  fDatabase.Query(
      "SELECT o.id, o.name, o.parts FROM object AS o WHERE o.id IN " + NumbersIn(":objects"), 3,
      {JSONArrayOf(numbers)}, [this](const TRow& row) {
        fObjects[ToNumber(row[0])] = {row[1].value_or(""), row[2].value_or("")};
      });
}

void TFactsOfModel::ReadSights(const TModel& model) {
  std::unordered_map<std::int64_t, const TSight*> byHost;
  fDatabase.Query(
      "SELECT d.host, d.sight, s.value FROM document AS d JOIN string AS s ON s.id = d.sight"
      " WHERE d.host IN " +
          NumbersIn(":hosts") +
          " AND d.moment = (SELECT MAX(x.moment) FROM document AS x WHERE x.host = d.host)",
      3, {fHostNumbers}, [&](const TRow& row) {
        const std::int64_t number = ToNumber(row[1]);
        auto known = fKnownSights.find(number);
        if (known == fKnownSights.end()) {
          known = fKnownSights.emplace(number, TSight(row[2].value_or(""))).first;
        }
        byHost[ToNumber(row[0])] = &known->second;
      });
  for (const TFleetHost* const host : model.fHosts) fSights.push_back(byHost.at(host->fID));
}

std::unordered_map<std::int64_t, std::string> TFactsOfModel::ReadTexts(
    const std::vector<std::int64_t>& numbers) const {
  std::unordered_map<std::int64_t, std::string> texts;
  fDatabase.Query("SELECT s.id, s.value FROM string AS s WHERE s.id IN " + NumbersIn(":strings"), 2,
                  {JSONArrayOf(numbers)},
                  [&texts](const TRow& row) { texts[ToNumber(row[0])] = row[1].value_or(""); });
  return texts;
}

}  // namespace NVORNQDX20::NStore
