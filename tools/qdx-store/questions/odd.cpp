// SPDX-License-Identifier: Apache-2.0
#include "odd.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "facts_of_model.h"

namespace NVORNQDX20::NStore {
namespace {

using TFact = TFactsOfModel::TFact;
using TFacts = std::vector<TFact>::const_iterator;
using THosts = std::vector<std::size_t>;  // sorted

/// A value among hosts: none for those that lack it.
using TState = std::optional<std::int64_t>;

bool IsMost(std::size_t count, std::size_t of) { return 2 * count > of; }

/// Returns the end of the facts that have the same as the first one.
template <typename TWhat>
TFacts EndOf(TFacts begin, TFacts end, const TWhat& what) {
  return std::find_if(begin, end, [&](const TFact& fact) { return what(fact) != what(*begin); });
}

const auto kObject = [](const TFact& fact) { return fact.fObject; };
const auto kProperty = [](const TFact& fact) { return fact.fProperty; };

THosts HostsOf(TFacts begin, TFacts end) {
  THosts hosts;
  std::transform(begin, end, std::back_inserter(hosts),
                 [](const TFact& fact) { return fact.fHost; });
  std::sort(hosts.begin(), hosts.end());
  hosts.erase(std::unique(hosts.begin(), hosts.end()), hosts.end());
  return hosts;
}

THosts Without(const THosts& all, const THosts& some) {
  THosts rest;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(rest));
  return rest;
}

class TOddFinder {
 public:
  TOddFinder(const TModel& model, const TFactsOfModel& facts) : fModel(model), fFacts(facts) {
    for (std::size_t i = 0; i < model.fHosts.size(); ++i) fAllHosts.push_back(i);
  }

  std::vector<TOddFact> Find() {
    ForEachObject([this](std::int64_t cimClass, TFacts begin, TFacts end) {
      const THosts hosts = HostsOf(begin, end);
      if (hosts.size() == 1) fHostsWithTheirOwn[cimClass].insert(hosts.front());
    });
    ForEachObject([this](std::int64_t cimClass, TFacts begin, TFacts end) {
      JudgeObject(cimClass, begin, end);
    });
    return TakeFound();
  }

 private:
  /// What is found, with numbers for texts.
  struct TFound {
    std::int64_t fClass;
    std::int64_t fObject;
    std::int64_t fProperty;  // -1 for the object as a whole
    TState fUsual;
    std::size_t fUsualHosts;
    std::size_t fJudgedHosts;
    std::vector<std::pair<std::size_t, TState>> fOdd;
  };

  void ForEachObject(const std::function<void(std::int64_t, TFacts, TFacts)>& visit) const {
    const auto& facts = fFacts.GetFacts();
    for (auto begin = facts.begin(); begin != facts.end();) {
      const auto end = EndOf(begin, facts.end(), kObject);
      visit(fFacts.GetProperty(begin->fProperty).fClass, begin, end);
      begin = end;
    }
  }

  /// Returns those of the hosts whose last document would show it.
  THosts ThoseThatSee(const THosts& hosts, std::int64_t cimClass, std::int64_t object,
                      const std::string& property) const {
    const auto& [ns, className, isAssociation] = fFacts.GetClass(cimClass);
    const auto& [name, parts] = fFacts.GetObject(object);
    const TKeyNames names{ns, className, parts, name, property};
    std::map<const TSight*, bool> known;  // most hosts have the same
    THosts seeing;
    for (const std::size_t host : hosts) {
      const TSight& sight = fFacts.GetSight(host);
      const auto [covers, isNew] = known.try_emplace(&sight);
      if (isNew) covers->second = sight.Covers(TSight::kFacts, names);
      if (covers->second) seeing.push_back(host);
    }
    return seeing;
  }

  void JudgeObject(std::int64_t cimClass, TFacts begin, TFacts end) {
    const THosts having = HostsOf(begin, end);
    const THosts lacking = ThoseThatSee(Without(fAllHosts, having), cimClass, begin->fObject, "");
    TFound found{cimClass, begin->fObject, -1, {}, 0, having.size() + lacking.size(), {}};
    if (IsMost(having.size(), found.fJudgedHosts)) {
      found.fUsual = kThere;
      found.fUsualHosts = having.size();
      for (const std::size_t host : lacking) found.fOdd.emplace_back(host, std::nullopt);
      Add(std::move(found));
    } else if (IsMost(lacking.size(), found.fJudgedHosts) && !IsOwnOfEachHost(cimClass)) {
      found.fUsualHosts = lacking.size();
      for (const std::size_t host : having) found.fOdd.emplace_back(host, kThere);
      Add(std::move(found));
    }
    while (begin != end) {
      const auto next = EndOf(begin, end, kProperty);
      if (!fFacts.GetProperty(begin->fProperty).fIsSecret) {
        JudgeProperty(cimClass, begin, next, having);
      }
      begin = next;
    }
  }

  bool IsOwnOfEachHost(std::int64_t cimClass) const {
    const auto found = fHostsWithTheirOwn.find(cimClass);
    return found != fHostsWithTheirOwn.end() && IsMost(found->second.size(), fModel.fHosts.size());
  }

  void JudgeProperty(std::int64_t cimClass, TFacts begin, TFacts end, const THosts& having) {
    const THosts lacking = ThoseThatSee(Without(having, HostsOf(begin, end)), cimClass,
                                        begin->fObject, fFacts.GetProperty(begin->fProperty).fName);
    std::vector<std::pair<std::size_t, TState>> states;
    std::map<TState, std::size_t> counts;
    for (auto fact = begin; fact != end; ++fact) {
      states.emplace_back(fact->fHost, fact->fValue);
      ++counts[fact->fValue];
    }
    for (const std::size_t host : lacking) {
      states.emplace_back(host, std::nullopt);
      ++counts[std::nullopt];
    }
    const auto most = std::max_element(
        counts.begin(), counts.end(),
        [](const auto& one, const auto& other) { return one.second < other.second; });
    if (!IsMost(most->second, states.size())) return;
    TFound found{
        cimClass, begin->fObject, begin->fProperty, most->first, most->second, states.size(), {}};
    std::copy_if(states.begin(), states.end(), std::back_inserter(found.fOdd),
                 [&most](const auto& state) { return state.second != most->first; });
    Add(std::move(found));
  }

  void Add(TFound found) {
    if (found.fJudgedHosts >= kFewestHosts && !found.fOdd.empty()) {
      fFound.push_back(std::move(found));
    }
  }

  std::vector<TOddFact> TakeFound() const {
    std::vector<std::int64_t> numbers;
    const auto want = [&numbers](const TState& state) {
      if (state && *state != *kThere) numbers.push_back(*state);
    };
    for (const TFound& found : fFound) {
      want(found.fUsual);
      for (const auto& [host, state] : found.fOdd) want(state);
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    const auto texts = fFacts.ReadTexts(numbers);
    const auto textOf = [&texts](const TState& state) -> std::optional<std::string> {
      if (!state) return std::nullopt;
      return *state == *kThere ? "" : texts.at(*state);
    };
    std::vector<TOddFact> odd;
    odd.reserve(fFound.size());
    for (const TFound& found : fFound) {
      const auto& cimClass = fFacts.GetClass(found.fClass);
      TOddFact fact{cimClass.fNamespace,
                    cimClass.fName,
                    fFacts.GetObject(found.fObject).fName,
                    found.fProperty < 0 ? "" : fFacts.GetProperty(found.fProperty).fName,
                    textOf(found.fUsual),
                    found.fUsualHosts,
                    found.fJudgedHosts,
                    {}};
      for (const auto& [host, state] : found.fOdd) {
        fact.fOdd.push_back({fModel.fHosts[host]->fName, textOf(state)});
      }
      std::sort(fact.fOdd.begin(), fact.fOdd.end(),
                [](const auto& a, const auto& b) { return a.fName < b.fName; });
      odd.push_back(std::move(fact));
    }
    std::sort(odd.begin(), odd.end(), [](const TOddFact& a, const TOddFact& b) {
      return std::tie(a.fNamespace, a.fClass, a.fObject, a.fProperty) <
             std::tie(b.fNamespace, b.fClass, b.fObject, b.fProperty);
    });
    return odd;
  }

  /// The state of hosts that have an object. No text has this number.
  static constexpr TState kThere = -1;

  const TModel& fModel;
  const TFactsOfModel& fFacts;
  THosts fAllHosts;
  std::map<std::int64_t, std::set<std::size_t>> fHostsWithTheirOwn;  // by class
  std::vector<TFound> fFound;
};

}  // namespace

std::vector<TModel> ModelsOf(const std::vector<TFleetHost>& fleet) {
  std::map<std::pair<std::string, std::string>, TModel> models;
  for (const TFleetHost& host : fleet) {
    TModel& model = models[{host.fMaker, host.fModel}];
    model.fMaker = host.fMaker;
    model.fName = host.fModel;
    model.fHosts.push_back(&host);
  }
  std::vector<TModel> all;
  all.reserve(models.size());
  for (auto& [name, model] : models) all.push_back(std::move(model));
  return all;
}

std::vector<TOddFact> FindOdd(TDatabase& database, const TModel& model,
                              const std::string& className) {
  try {
    const TFactsOfModel facts(database, model, className);
    return TOddFinder(model, facts).Find();
  } catch (const std::out_of_range&) {
    throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusCorruptedContainer,
                         "it has lost rows to which others refer");
  }
}

}  // namespace NVORNQDX20::NStore
