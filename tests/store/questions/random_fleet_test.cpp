// SPDX-License-Identifier: Apache-2.0
// The questions against comparisons of all documents with each other, which know no store.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <utility>

#include "database/open.h"
#include "questions/fleet.h"
#include "questions/history.h"
#include "questions/odd.h"
#include "storage/store.h"
#include "store/postgresql_server.h"
#include "store/sample_document.h"
#include "support/temp_dir.h"

namespace NVORNQDX20::NStore {
namespace {

using NSample::AddFact;
using NSample::kNamespace;

/// Class and object.
using TObjectKey = std::pair<std::string, std::string>;
using TValues = std::map<std::string, std::string>;
using TState = std::map<TObjectKey, TValues>;
using TLines = std::multiset<std::string>;

constexpr const char* kSecretProperty = "Serial";

/// Documents of hosts, with what is known of a host after each of them.
class TRandomFleet {
 public:
  explicit TRandomFleet(unsigned seed) : fRandom(seed) {
    const unsigned hosts = 1 + Below(9);
    for (unsigned host = 0; host < hosts; ++host) {
      const unsigned documents = 1 + Below(4);
      for (unsigned i = 0; i < documents; ++i) AddDocument(host, i);
    }
  }

  const std::vector<TDocumentFacts>& GetDocuments() const { return fDocuments; }
  std::vector<TDocumentFacts> Shuffled() {
    std::vector<TDocumentFacts> documents = fDocuments;
    std::shuffle(documents.begin(), documents.end(), fRandom);
    return documents;
  }

 private:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(fRandom() % limit); }

  void AddDocument(unsigned host, unsigned number) {
    const std::string name = "h" + std::to_string(host);
    auto facts = NSample::Document(
        {"4c4c4544-0000-1000-8000-00000000000" + std::to_string(host), "", "", "Acme", "M", name},
        1'700'000'000 + number * 3600, host * 100);
    for (const char* const object : {"a", "b", "c"}) {
      if (Below(5) == 0) continue;
      for (const char* const property : {"P", "Q"}) {
        if (Below(6) == 0) continue;
        AddFact(facts, "Disk", object, property, Below(5) == 0 ? name : "usual");
      }
      AddFact(facts, "Disk", object, kSecretProperty, Below(9) == 0 ? "x" : "y");
      AddFact(facts, "Disk", object, "Hours", std::to_string(Below(9)), true);
    }
    // Each host has its own address, and now and then a port that others do not have.
    AddFact(facts, "Address", name, "Kind", "4");
    if (Below(8) == 0) AddFact(facts, "Port", "extra" + name, "Speed", "1");
    if (Below(2) == 0) AddFact(facts, "Port", "eth0", "Speed", std::to_string(Below(2)));
    AddFact(facts, "Link", "a to b", "From", "a", false, "reference");
    for (auto& property : facts.fProperties) {
      if (property.fName == kSecretProperty) property.fSecret = "serial";
      if (property.fName == "From") property.fIsKey = true;
    }
    const TUnknown unknown[] = {{"", "", "part", std::nullopt, ""},
                                {kNamespace, "Disk", "", "a", "P"},
                                {kNamespace, "Disk", "", std::nullopt, "Q"},
                                {kNamespace, "Port", "", std::nullopt, ""},
                                {kNamespace, "Disk", "", "b", ""}};
    if (Below(3) == 0) facts.fUnknown.push_back(unknown[Below(5)]);
    fDocuments.push_back(std::move(facts));
  }

  std::mt19937 fRandom;
  std::vector<TDocumentFacts> fDocuments;
};

TState StateAfter(const TState& before, const TDocumentFacts& document) {
  TState after;
  for (const auto& [key, values] : before) {
    for (const auto& [property, value] : values) {
      if (document.IsUnknown(kNamespace, key.first, "part", key.second, property)) {
        after[key][property] = value;
      }
    }
  }
  for (const auto& fact : document.fFacts) {
    const auto& property = document.fProperties[fact.fProperty];
    const auto& object = document.fObjects[fact.fObject];
    if (property.fIsVolatile) continue;
    after[{document.fClasses[object.fClass].fName, object.fName}][property.fName] = fact.fValue;
  }
  return after;
}

/// A host after its last document.
struct TLast {
  std::string fHost;
  TState fState;
  TDocumentFacts fDocument;

  bool Has(const TObjectKey& key) const { return fState.count(key) != 0; }
  bool Has(const TObjectKey& key, const std::string& property) const {
    return Has(key) && fState.at(key).count(property) != 0;
  }
  bool Knows(const TObjectKey& key, const std::string& property) const {
    return !fDocument.IsUnknown(kNamespace, key.first, "part", key.second, property);
  }
};

std::vector<TLast> LastOf(const std::vector<TDocumentFacts>& documents) {
  std::vector<TLast> last;
  for (const TDocumentFacts& document : documents) {  // those of a host follow each other
    if (last.empty() || last.back().fHost != document.fHost.fName) {
      last.push_back({document.fHost.fName, {}, {}});
    }
    last.back().fState = StateAfter(last.back().fState, document);
    last.back().fDocument = document;
  }
  return last;
}

/// Returns "OBJECT PROPERTY: HOST has X, N of M have Y" for each host that differs from the value
/// of most. None stands for those that lack it.
void Judge(const std::string& what, const std::vector<std::pair<std::string, std::string>>& states,
           TLines& lines) {
  if (states.size() < 3) return;
  for (const auto& [host, value] : states) {
    for (const auto& [other, usual] : states) {
      const auto count =
          std::count_if(states.begin(), states.end(),
                        [&, &most = usual](const auto& each) { return each.second == most; });
      if (usual == value || 2 * static_cast<std::size_t>(count) <= states.size()) continue;
      lines.insert(what + ": " + host + " has " + value + ", " + std::to_string(count) + " of " +
                   std::to_string(states.size()) + " have " + usual);
      break;
    }
  }
}

TLines OddByComparison(const std::vector<TDocumentFacts>& documents) {
  const std::vector<TLast> hosts = LastOf(documents);
  TLines lines;
  if (hosts.size() < 3) return lines;
  std::set<std::pair<TObjectKey, std::string>> properties;
  std::map<TObjectKey, std::set<std::string>> havers;
  for (const TLast& host : hosts) {
    for (const auto& [key, values] : host.fState) {
      if (key.first == "Link") continue;  // an association
      havers[key].insert(host.fHost);
      for (const auto& [property, value] : values) {
        if (property != kSecretProperty) properties.insert({key, property});
      }
    }
  }
  std::map<std::string, std::set<std::string>> owners;  // of an object that nobody else has
  for (const auto& [key, names] : havers) {
    if (names.size() == 1) owners[key.first].insert(*names.begin());
  }
  for (const auto& [key, names] : havers) {
    std::vector<std::pair<std::string, std::string>> states;
    std::size_t having = 0;
    for (const TLast& host : hosts) {
      if (!host.Has(key) && !host.Knows(key, "")) continue;
      states.emplace_back(host.fHost, host.Has(key) ? "it" : "none");
      having += host.Has(key) ? 1 : 0;
    }
    const bool isExtra = 2 * having < states.size();
    if (isExtra && 2 * owners[key.first].size() > hosts.size()) continue;
    Judge(key.first + " " + key.second, states, lines);
  }
  for (const auto& [key, property] : properties) {
    std::vector<std::pair<std::string, std::string>> states;
    for (const TLast& host : hosts) {
      if (!host.Has(key)) continue;
      if (host.Has(key, property)) {
        states.emplace_back(host.fHost, "'" + host.fState.at(key).at(property) + "'");
      } else if (host.Knows(key, property)) {
        states.emplace_back(host.fHost, "none");
      }
    }
    Judge(key.first + " " + key.second + " " + property, states, lines);
  }
  return lines;
}

TLines OddByTheStore(TDatabase& database) {
  TLines lines;
  const auto fleet = ReadFleet(database);
  for (const TModel& model : ModelsOf(fleet)) {
    if (!model.IsJudged()) continue;
    for (const TOddFact& fact : FindOdd(database, model, "")) {
      const auto shown = [&fact](const std::optional<std::string>& value) {
        if (fact.fProperty.empty()) return std::string(value ? "it" : "none");
        return value ? "'" + *value + "'" : std::string("none");
      };
      for (const auto& host : fact.fOdd) {
        lines.insert(fact.fClass + " " + fact.fObject +
                     (fact.fProperty.empty() ? "" : " " + fact.fProperty) + ": " + host.fName +
                     " has " + shown(host.fValue) + ", " + std::to_string(fact.fUsualHosts) +
                     " of " + std::to_string(fact.fJudgedHosts) + " have " + shown(fact.fUsual));
      }
    }
  }
  return lines;
}

std::string LineOf(const std::string& host, std::int64_t time, std::int64_t after,
                   const TObjectKey& key, const std::string& property,
                   const std::optional<std::string>& old, const std::optional<std::string>& now,
                   bool isWhole) {
  return host + " " + std::to_string(after) + "-" + std::to_string(time) + " " + key.first + " " +
         key.second + " " + property + ": " + old.value_or("none") + " -> " + now.value_or("none") +
         (isWhole ? " (whole object)" : "");
}

std::optional<std::string> ValueIn(const TState& state, const TObjectKey& key,
                                   const std::string& property) {
  const auto object = state.find(key);
  if (object == state.end()) return std::nullopt;
  const auto value = object->second.find(property);
  return value == object->second.end() ? std::nullopt : std::optional(value->second);
}

TLines HistoryByComparison(const std::vector<TDocumentFacts>& documents) {
  TLines lines;
  TState before;
  const TDocumentFacts* last = nullptr;
  for (const TDocumentFacts& document : documents) {
    const bool isSame = last != nullptr && last->fHost.fName == document.fHost.fName;
    const TState after = StateAfter(isSame ? before : TState(), document);
    if (isSame) {
      std::set<std::pair<TObjectKey, std::string>> all;
      for (const TState* const state : {&std::as_const(before), &after}) {
        for (const auto& [key, values] : *state) {
          for (const auto& [property, value] : values) all.insert({key, property});
        }
      }
      for (const auto& [key, property] : all) {
        const auto old = ValueIn(before, key, property);
        const auto now = ValueIn(after, key, property);
        if (old == now) continue;
        lines.insert(LineOf(document.fHost.fName, document.fTime / 1000, last->fTime / 1000, key,
                            property, old, now, before.count(key) == 0 || after.count(key) == 0));
      }
    }
    before = after;
    last = &document;
  }
  return lines;
}

TLines HistoryByTheStore(TDatabase& database) {
  TLines lines;
  for (const TFleetHost& host : ReadFleet(database)) {
    for (const TChange& change : ReadHistory(database, {host.fID, ""})) {
      lines.insert(LineOf(host.fName, change.fTime, change.fAfter, {change.fClass, change.fObject},
                          change.fProperty, change.fOld, change.fNew, change.fIsOfWholeObject));
    }
  }
  return lines;
}

class Questions : public ::testing::TestWithParam<bool> {};

TEST_P(Questions, AgreeWithAComparisonOfAllDocuments) {
  const bool isOnServer = GetParam();
  if (isOnServer && !TPostgreSQLServer::Get().WhyNot().empty()) {
    GTEST_SKIP() << TPostgreSQLServer::Get().WhyNot();
  }
  const TTempDir folder;
  std::size_t odd = 0;
  std::size_t changes = 0;
  const unsigned fleets = isOnServer ? 10 : 60;
  for (unsigned seed = 1; seed <= fleets; ++seed) {
    TRandomFleet fleet(seed);
    const std::string place = isOnServer ? TPostgreSQLServer::Get().NewDatabase()
                                         : (folder.Path() / std::to_string(seed)).string();
    const auto database = OpenStore(TLocation(place), EAccess::kCreating);
    TStore store(*database);
    for (const TDocumentFacts& document : fleet.Shuffled()) store.Add(document);
    const TLines expectedOdd = OddByComparison(fleet.GetDocuments());
    ASSERT_EQ(OddByTheStore(*database), expectedOdd) << "seed " << seed;
    const TLines expectedChanges = HistoryByComparison(fleet.GetDocuments());
    ASSERT_EQ(HistoryByTheStore(*database), expectedChanges) << "seed " << seed;
    odd += expectedOdd.size();
    changes += expectedChanges.size();
  }
  // So that the fleets are not too simple to find faults.
  EXPECT_GT(odd, fleets);
  EXPECT_GT(changes, 3 * fleets);
}

INSTANTIATE_TEST_SUITE_P(Databases, Questions, ::testing::Bool(), [](const auto& each) {
  return std::string(each.param ? "PostgreSQL" : "SQLite");
});

}  // namespace
}  // namespace NVORNQDX20::NStore
