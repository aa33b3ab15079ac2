// SPDX-License-Identifier: Apache-2.0
#include "timeline.h"

#include <algorithm>
#include <cstddef>

namespace NVORNQDX20::NStore {
namespace {

/// The spans of one key.
struct TKeySpans {
  TSpans::const_iterator fBegin;
  TSpans::const_iterator fEnd;

  /// Returns null if there is none.
  const TSpan* Find(const std::function<bool(const TSpan&)>& matches) const {
    const auto found = std::find_if(fBegin, fEnd, matches);
    return found == fEnd ? nullptr : &*found;
  }
  const TSpan* At(TMoment moment) const {
    return Find([=](const TSpan& span) { return span.fSince <= moment && moment < span.fUntil; });
  }
  const TSpan* BeginningAt(TMoment moment) const {
    return Find([=](const TSpan& span) { return span.fSince == moment; });
  }
  const TSpan* EndingAt(TMoment moment) const {
    return Find([=](const TSpan& span) { return span.fUntil == moment; });
  }
};

/// Calls `visit(key, spans, observation)` for each key of either, in order; the observation is null
/// if there is none.
template <typename TVisit>
void ForEachKey(const TSpans& spans, const std::vector<TObservation>& observations,
                const TVisit& visit) {
  auto span = spans.begin();
  auto observation = observations.begin();
  while (span != spans.end() || observation != observations.end()) {
    const bool isSpanNext = observation == observations.end() ||
                            (span != spans.end() && !(observation->fKey < span->fKey));
    const TKey key = isSpanNext ? span->fKey : observation->fKey;
    const auto begin = span;
    while (span != spans.end() && span->fKey == key) ++span;
    const TObservation* shown = nullptr;
    if (observation != observations.end() && observation->fKey == key) shown = &*observation++;
    visit(key, TKeySpans{begin, span}, shown);
  }
}

/// Returns the moment of the first document after this one that knows the key. The document at a
/// later boundary does.
TMoment NextKnown(const TKeySpans& spans, TMoment moment, const TKey& key,
                  const TKnowledge& knowledge) {
  TMoment next = knowledge.fNextKnown(key);
  for (auto span = spans.fBegin; span != spans.fEnd; ++span) {
    next = std::min(next, span->fSince > moment ? span->fSince : kStillValid);
    next = std::min(next, span->fUntil > moment ? span->fUntil : kStillValid);
  }
  return next;
}

bool IsSame(const TSpan* span, const TObservation* shown) {
  return span == nullptr ? shown == nullptr : shown != nullptr && span->fValue == shown->fValue;
}

TSpan Moved(TSpan span, TMoment since, TMoment until) {
  span.fSince = since;
  span.fUntil = until;
  return span;
}

void InsertKey(const TKeySpans& spans, TMoment moment, const TKey& key, const TObservation* shown,
               const TKnowledge& knowledge, TSpanChanges& changes) {
  const TSpan* const covering = spans.At(moment);
  if (IsSame(covering, shown)) return;
  if (shown == nullptr && !knowledge.fKnows(key)) return;
  const TMoment next = NextKnown(spans, moment, key, knowledge);
  if (covering != nullptr) {
    changes.fPut.push_back(Moved(*covering, covering->fSince, moment));
    // The next document that knows the key shows the old value again.
    if (next < covering->fUntil) changes.fPut.push_back(Moved(*covering, next, covering->fUntil));
  }
  if (shown == nullptr) return;
  const TSpan* const following = next == kStillValid ? nullptr : spans.BeginningAt(next);
  if (following != nullptr && following->fValue == shown->fValue) {
    changes.fRemoved.push_back(*following);
    changes.fPut.push_back(Moved(*following, moment, following->fUntil));
  } else {
    changes.fPut.push_back({key, shown->fValue, moment, next});
  }
}

void RemoveKey(const TKeySpans& spans, TMoment moment, const TKnowledge& knowledge,
               TSpanChanges& changes) {
  const TSpan* const before = spans.EndingAt(moment);
  const TSpan* const own = spans.BeginningAt(moment);
  if (before == nullptr && own == nullptr) return;  // it only confirmed what was known
  const TKey& key = own != nullptr ? own->fKey : before->fKey;
  const TMoment next = NextKnown(spans, moment, key, knowledge);
  const TSpan* following = next == kStillValid ? nullptr : spans.BeginningAt(next);
  TSpan rest{};
  if (own != nullptr) {
    changes.fRemoved.push_back(*own);
    if (next < own->fUntil) {
      rest = Moved(*own, next, own->fUntil);
      changes.fPut.push_back(rest);
      following = nullptr;  // the rest, whose value differs from the one before
    }
  }
  if (before == nullptr) return;
  if (following != nullptr && following->fValue == before->fValue) {
    changes.fRemoved.push_back(*following);
    changes.fPut.push_back(Moved(*before, before->fSince, following->fUntil));
  } else {
    changes.fPut.push_back(Moved(*before, before->fSince, next));
  }
}

}  // namespace

std::vector<TKey> ChangedKeys(const TSpans& spans, TMoment moment,
                              const std::vector<TObservation>& observations) {
  std::vector<TKey> keys;
  ForEachKey(spans, observations,
             [&](const TKey& key, const TKeySpans& own, const TObservation* shown) {
               if (!IsSame(own.At(moment), shown)) keys.push_back(key);
             });
  return keys;
}

TSpanChanges Insert(const TSpans& spans, TMoment moment,
                    const std::vector<TObservation>& observations, const TKnowledge& knowledge) {
  TSpanChanges changes;
  ForEachKey(spans, observations,
             [&](const TKey& key, const TKeySpans& own, const TObservation* shown) {
               InsertKey(own, moment, key, shown, knowledge, changes);
             });
  return changes;
}

TSpanChanges Remove(const TSpans& spans, TMoment moment, const TKnowledge& knowledge) {
  TSpanChanges changes;
  ForEachKey(spans, {}, [&](const TKey&, const TKeySpans& own, const TObservation*) {
    RemoveKey(own, moment, knowledge, changes);
  });
  return changes;
}

}  // namespace NVORNQDX20::NStore
