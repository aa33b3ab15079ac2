// SPDX-License-Identifier: Apache-2.0
#include "history.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "storage/moment.h"

namespace NVORNQDX20::NStore {
namespace {

std::int64_t TimeOf(TMoment moment) { return moment >> kDigestBits; }

/// A value of the host over a time. Sorted by what it is of, then by time.
struct TSpanOfHost {
  std::string fNamespace;
  std::string fClass;
  std::string fObject;
  std::string fProperty;
  TMoment fSince;
  TMoment fUntil;
  std::string fValue;

  auto Object() const { return std::tie(fNamespace, fClass, fObject); }
  auto Key() const { return std::tie(fNamespace, fClass, fObject, fProperty); }
};

std::vector<TSpanOfHost> ReadSpans(TDatabase& database, const THistoryRequest& request) {
  constexpr std::size_t kColumns = 7;
  std::vector<TSpanOfHost> spans;
  const bool isOfAll = request.fClass.empty();
  std::vector<TValue> values = {request.fHost};
  if (!isOfAll) values.emplace_back(request.fClass);
  database.Query(
      std::string("SELECT c.namespace, c.name, o.name, p.name, f.since, f.until, s.value"
                  " FROM fact AS f JOIN object AS o ON o.id = f.object"
                  " JOIN class AS c ON c.id = o.class JOIN property AS p ON p.id = f.property"
                  " JOIN string AS s ON s.id = f.value WHERE f.host = :host") +
          (isOfAll ? "" : " AND c.name = :class"),
      kColumns, values, [&spans](const TRow& row) {
        spans.push_back({row[0].value_or(""), row[1].value_or(""), row[2].value_or(""),
                         row[3].value_or(""), ToNumber(row[4]), ToNumber(row[5]),
                         row[6].value_or("")});
      });
  std::sort(spans.begin(), spans.end(), [](const TSpanOfHost& a, const TSpanOfHost& b) {
    return std::tie(a.fNamespace, a.fClass, a.fObject, a.fProperty, a.fSince) <
           std::tie(b.fNamespace, b.fClass, b.fObject, b.fProperty, b.fSince);
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
  using TSpanIterator = std::vector<TSpanOfHost>::const_iterator;

  TChangesOfObject(TSpanIterator begin, TSpanIterator end, const std::vector<TMoment>& moments,
                   std::vector<TChange>& changes)
      : fMoments(moments), fChanges(changes) {
    for (auto span = begin; span != end; ++span) fLife.Add(*span);
    for (auto span = begin; span != end; ++span) {
      const bool hasBefore = span != begin && std::prev(span)->Key() == span->Key() &&
                             std::prev(span)->fUntil == span->fSince;
      const bool hasNext = std::next(span) != end && std::next(span)->Key() == span->Key() &&
                           std::next(span)->fSince == span->fUntil;
      if (span->fSince > moments.front()) {
        Add(span->fSince, *span, hasBefore ? &std::prev(span)->fValue : nullptr, &span->fValue);
      }
      if (span->fUntil != kStillValid && !hasNext) {
        Add(span->fUntil, *span, &span->fValue, nullptr);
      }
    }
  }

 private:
  void Add(TMoment moment, const TSpanOfHost& span, const std::string* was, const std::string* is) {
    const auto here = std::lower_bound(fMoments.begin(), fMoments.end(), moment);
    const TMoment before = here == fMoments.begin() ? moment : *std::prev(here);
    const bool isWhole = was == nullptr  ? !fLife.HasBefore(moment)
                         : is == nullptr ? !fLife.HasAfter(moment)
                                         : false;
    fChanges.push_back({TimeOf(moment), TimeOf(before),
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

}  // namespace

std::vector<TChange> ReadHistory(TDatabase& database, const THistoryRequest& request) {
  const std::vector<TMoment> moments = ReadMoments(database, request.fHost);
  std::vector<TChange> changes;
  if (moments.empty()) return changes;
  const std::vector<TSpanOfHost> spans = ReadSpans(database, request);
  for (auto begin = spans.begin(); begin != spans.end();) {
    const auto end = std::find_if(begin, spans.end(), [begin](const TSpanOfHost& span) {
      return span.Object() != begin->Object();
    });
    const TChangesOfObject added(begin, end, moments, changes);
    begin = end;
  }
  const auto isAsked = [&request](const TChange& change) {
    return change.fTime >= request.fSince && change.fTime < request.fUntil;
  };
  changes.erase(std::remove_if(changes.begin(), changes.end(),
                               [&isAsked](const TChange& change) { return !isAsked(change); }),
                changes.end());
  std::stable_sort(changes.begin(), changes.end(),
                   [](const TChange& a, const TChange& b) { return a.fTime < b.fTime; });
  return changes;
}

}  // namespace NVORNQDX20::NStore
