// SPDX-License-Identifier: Apache-2.0
#include "history.h"

#include <qdxcompare/same_reason.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "storage/moment.h"
#include "storage/sight.h"

namespace NVORNQDX20::NStore {
namespace {

/// A value of the host over a time, or the reason why it is missing. Sorted by what it is of, then
/// by time.
struct TSpanOfHost {
  std::string fNamespace;
  std::string fClass;
  std::string fObject;
  std::int64_t fNumber;  // of the object
  bool fIsOfAll;         // objects of the class, unless they have a reason of their own
  std::string fProperty;
  TMoment fSince;
  TMoment fUntil;
  std::string fValue;

  auto Object() const { return std::tie(fNamespace, fClass, fObject, fNumber); }
  auto Key() const { return std::tie(fNamespace, fClass, fObject, fNumber, fProperty); }
};

std::vector<TSpanOfHost> ReadSpans(TDatabase& database, const THistoryRequest& request,
                                   TSight::EKind kind) {
  constexpr std::size_t kColumns = 8;
  std::vector<TSpanOfHost> spans;
  const bool isOfAll = request.fClass.empty();
  std::vector<TValue> values = {request.fHost};
  if (!isOfAll) values.emplace_back(request.fClass);
  database.Query(
      std::string("SELECT c.namespace, c.name, o.name, o.id, p.name, f.since, f.until, ") +
          (kind == TSight::kFacts ? "v.value FROM fact AS f JOIN string AS v"
                                  : "v.reason FROM gap AS f JOIN reason AS v") +
          " ON v.id = f.value JOIN object AS o ON o.id = f.object"
          " JOIN class AS c ON c.id = o.class JOIN property AS p ON p.id = f.property"
          " WHERE f.host = :host" +
          (isOfAll ? "" : " AND c.name = :class"),
      kColumns, values, [&spans](const TRow& row) {
        spans.push_back({row[0].value_or(""), row[1].value_or(""), row[2].value_or(""),
                         ToNumber(row[3]), !row[2], row[4].value_or(""), ToNumber(row[5]),
                         ToNumber(row[6]), row[7].value_or("")});
      });
  std::sort(spans.begin(), spans.end(), [](const TSpanOfHost& a, const TSpanOfHost& b) {
    return std::tuple_cat(a.Key(), std::tie(a.fSince)) <
           std::tuple_cat(b.Key(), std::tie(b.fSince));
  });
  return spans;
}

/// The moments of the documents of the host, in their order.
std::vector<TMoment> ReadMoments(TDatabase& database, std::int64_t host) {
  std::vector<TMoment> moments;
  database.Query("SELECT moment FROM document WHERE host = :host ORDER BY moment", 1, {host},
                 [&moments](const TRow& row) { moments.push_back(ToNumber(row[0])); });
  return moments;
}

/// Returns the moment of the document before this one; of the first one its own.
TMoment MomentBefore(const std::vector<TMoment>& moments, TMoment moment) {
  const auto here = std::lower_bound(moments.begin(), moments.end(), moment);
  return here == moments.begin() ? moment : *std::prev(here);
}

using TSpanIterator = std::vector<TSpanOfHost>::const_iterator;

/// Returns whether another span of the same follows at once.
bool Continues(TSpanIterator span, TSpanIterator end) {
  const auto next = std::next(span);
  return next != end && next->Key() == span->Key() && next->fSince == span->fUntil;
}

/// Finds the moments at which an object has no value before, or none after.
class TLifeOfObject {
 public:
  void Add(const TSpanOfHost& span) { fSpans.emplace_back(span.fSince, span.fUntil); }

  bool HasBefore(TMoment moment) const {
    return Any(
        [moment](TMoment since, TMoment until) { return since < moment && moment <= until; });
  }
  bool HasAfter(TMoment moment) const {
    return Any(
        [moment](TMoment since, TMoment until) { return since <= moment && moment < until; });
  }

 private:
  template <typename TIs>
  bool Any(const TIs& is) const {
    return std::any_of(fSpans.begin(), fSpans.end(),
                       [&is](const auto& span) { return is(span.first, span.second); });
  }

  std::vector<std::pair<TMoment, TMoment>> fSpans;
};

/// The changes of one object.
class TChangesOfObject {
 public:
  TChangesOfObject(TSpanIterator begin, TSpanIterator end, const std::vector<TMoment>& moments,
                   std::vector<TChange>& changes)
      : fMoments(moments), fChanges(changes) {
    for (auto span = begin; span != end; ++span) fLife.Add(*span);
    for (auto span = begin; span != end; ++span) {
      const bool hasBefore = span != begin && Continues(std::prev(span), end);
      if (span->fSince > moments.front()) {
        Add(span->fSince, *span, hasBefore ? &std::prev(span)->fValue : nullptr, &span->fValue);
      }
      if (span->fUntil != kStillValid && !Continues(span, end)) {
        Add(span->fUntil, *span, &span->fValue, nullptr);
      }
    }
  }

 private:
  void Add(TMoment moment, const TSpanOfHost& span, const std::string* was, const std::string* is) {
    const bool isWhole = was == nullptr  ? !fLife.HasBefore(moment)
                         : is == nullptr ? !fLife.HasAfter(moment)
                                         : false;
    fChanges.push_back({TimeOf(moment), TimeOf(MomentBefore(fMoments, moment)),
                        was == nullptr  ? TChange::kAdded
                        : is == nullptr ? TChange::kRemoved
                                        : TChange::kChanged,
                        span.fNamespace, span.fClass, span.fObject, span.fProperty, isWhole,
                        was == nullptr ? std::nullopt : std::optional(*was),
                        is == nullptr ? std::nullopt : std::optional(*is)});
  }

  const std::vector<TMoment>& fMoments;
  std::vector<TChange>& fChanges;
  TLifeOfObject fLife;
};

/// Finds the reason of an object in that of all objects of its class, and the other way round.
/// Which form it has depends on which other objects there are.
class TFormsOfReasons {
 public:
  explicit TFormsOfReasons(const std::vector<TSpanOfHost>& gaps) {
    for (const TSpanOfHost& gap : gaps) {
      if (!gap.fProperty.empty()) (gap.fIsOfAll ? fOfAll : fOfObjects).emplace(KeyOf(gap), &gap);
    }
  }

  /// Returns whether the reason of an object was that of all objects before. One of all objects is
  /// new for others than those that had it.
  bool HasBefore(const TSpanOfHost& gap) const {
    return !gap.fIsOfAll && Any(gap, [&gap](const TSpanOfHost& other) {
      return other.fSince < gap.fSince && gap.fSince <= other.fUntil;
    });
  }
  bool HasAfter(const TSpanOfHost& gap) const {
    return Any(gap, [&gap](const TSpanOfHost& other) {
      return other.fSince <= gap.fUntil && gap.fUntil < other.fUntil;
    });
  }

 private:
  using TKey = std::tuple<std::string, std::string, std::string>;

  static TKey KeyOf(const TSpanOfHost& gap) { return {gap.fNamespace, gap.fClass, gap.fProperty}; }

  template <typename TIs>
  bool Any(const TSpanOfHost& gap, const TIs& is) const {
    const auto [begin, end] = (gap.fIsOfAll ? fOfObjects : fOfAll).equal_range(KeyOf(gap));
    return std::any_of(begin, end, [&](const auto& other) {
      return is(*other.second) && MayBeSameReason(other.second->fValue, gap.fValue);
    });
  }

  std::multimap<TKey, const TSpanOfHost*> fOfAll;
  std::multimap<TKey, const TSpanOfHost*> fOfObjects;
};

void AddMissing(const std::vector<TSpanOfHost>& gaps, const std::vector<TMoment>& moments,
                std::vector<TChange>& changes) {
  const auto add = [&](TMoment moment, TChange::EChange change, const TSpanOfHost& gap) {
    changes.push_back({TimeOf(moment), TimeOf(MomentBefore(moments, moment)), change,
                       gap.fNamespace, gap.fClass, gap.fObject, gap.fProperty, false, std::nullopt,
                       std::nullopt, gap.fValue});
  };
  const TFormsOfReasons forms(gaps);
  for (auto gap = gaps.begin(); gap != gaps.end(); ++gap) {
    const bool isKnown = (gap != gaps.begin() && Continues(std::prev(gap), gaps.end()) &&
                          MayBeSameReason(std::prev(gap)->fValue, gap->fValue)) ||
                         forms.HasBefore(*gap);
    if (gap->fSince > moments.front() && !isKnown) add(gap->fSince, TChange::kMissing, *gap);
    if (gap->fUntil != kStillValid && !Continues(gap, gaps.end()) && !forms.HasAfter(*gap)) {
      add(gap->fUntil, TChange::kNotMissing, *gap);
    }
  }
}

}  // namespace

std::vector<TChange> ReadHistory(TDatabase& database, const THistoryRequest& request) {
  const std::vector<TMoment> moments = ReadMoments(database, request.fHost);
  std::vector<TChange> changes;
  if (moments.empty()) return changes;
  const std::vector<TSpanOfHost> spans = ReadSpans(database, request, TSight::kFacts);
  for (auto begin = spans.begin(); begin != spans.end();) {
    const auto end = std::find_if(begin, spans.end(), [begin](const TSpanOfHost& span) {
      return span.Object() != begin->Object();
    });
    const TChangesOfObject added(begin, end, moments, changes);
    begin = end;
  }
  if (request.fWithMissing) {
    AddMissing(ReadSpans(database, request, TSight::kMissing), moments, changes);
  }
  const auto isAsked = [&request](const TChange& change) {
    return change.fTime >= request.fSince && change.fTime < request.fUntil;
  };
  changes.erase(std::remove_if(changes.begin(), changes.end(),
                               [&isAsked](const TChange& change) { return !isAsked(change); }),
                changes.end());
  std::stable_sort(changes.begin(), changes.end(), [](const TChange& a, const TChange& b) {
    return std::tie(a.fTime, a.fNamespace, a.fClass, a.fObject) <
           std::tie(b.fTime, b.fNamespace, b.fClass, b.fObject);
  });
  return changes;
}

}  // namespace NVORNQDX20::NStore
