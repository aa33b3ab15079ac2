// SPDX-License-Identifier: Apache-2.0
#include "storage/timeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>

using namespace NVORNQDX20::NStore;

namespace {

/// What a document knows of each key: a value, that there is none, or nothing.
struct TObserved {
  bool fIsKnown;
  std::optional<std::int64_t> fValue;
};

using TDocument = std::map<TKey, TObserved>;
using TDocuments = std::map<TMoment, TDocument>;

const std::vector<TKey> kKeys = {{1, 1}, {1, 2}, {2, 1}};

/// From the definition, document by document.
TSpans SpansOf(const TDocuments& documents) {
  TSpans spans;
  for (const TKey& key : kKeys) {
    std::optional<TSpan> open;
    for (const auto& [moment, document] : documents) {
      const TObserved& observed = document.at(key);
      if (!observed.fIsKnown || (open && observed.fValue == open->fValue)) continue;
      if (open) {
        open->fUntil = moment;
        spans.push_back(*open);
        open.reset();
      }
      if (observed.fValue) open = {key, *observed.fValue, moment, kStillValid};
    }
    if (open) spans.push_back(*open);
  }
  return spans;
}

/// Spans that are changed as the store does it.
class TStoredSpans {
 public:
  void Insert(TMoment moment, const TDocument& document) {
    std::vector<TObservation> observations;
    for (const auto& [key, observed] : document) {
      if (observed.fValue) observations.push_back({key, *observed.fValue});
    }
    Change(NVORNQDX20::NStore::Insert(EndingAfter(moment), moment, observations,
                                      KnowledgeOf(moment, document)));
    fDocuments[moment] = document;
  }

  void Remove(TMoment moment) {
    const TDocument document = fDocuments.at(moment);
    Change(
        NVORNQDX20::NStore::Remove(EndingAfter(moment - 1), moment, KnowledgeOf(moment, document)));
    fDocuments.erase(moment);
  }

  TSpans Get() const { return EndingAfter(-1); }
  const TDocuments& Documents() const { return fDocuments; }

 private:
  TKnowledge KnowledgeOf(TMoment moment, const TDocument& document) const {
    return {[&document](const TKey& key) { return document.at(key).fIsKnown; },
            [this, moment](const TKey& key) {
              for (auto later = fDocuments.upper_bound(moment); later != fDocuments.end();
                   ++later) {
                if (later->second.at(key).fIsKnown) return later->first;
              }
              return kStillValid;
            }};
  }

  TSpans EndingAfter(TMoment moment) const {
    TSpans spans;
    for (const auto& [begin, span] : fSpans) {
      if (span.fUntil > moment) spans.push_back(span);
    }
    return spans;
  }

  void Change(const TSpanChanges& changes) {
    for (const TSpan& span : changes.fRemoved) fSpans.erase({span.fKey, span.fSince});
    for (const TSpan& span : changes.fPut) fSpans[{span.fKey, span.fSince}] = span;
  }

  std::map<std::pair<TKey, TMoment>, TSpan> fSpans;
  TDocuments fDocuments;
};

TDocuments RandomDocuments(std::mt19937& random) {
  TDocuments documents;
  const auto count = 1 + random() % 8;
  for (std::size_t i = 0; i < count; ++i) {
    TDocument& document = documents[10 + static_cast<TMoment>(10 * i)];
    for (const TKey& key : kKeys) {
      const auto what = random() % 5;
      document[key] = {
          what != 0, what > 1 ? std::optional(static_cast<std::int64_t>(what % 3)) : std::nullopt};
    }
  }
  return documents;
}

TEST(StoreTimeline, DependsOnTheDocumentsAndNotOnTheirOrder) {
  std::mt19937 random(17);
  for (int round = 0; round < 3000; ++round) {
    const TDocuments documents = RandomDocuments(random);
    std::vector<TMoment> order;
    for (const auto& [moment, document] : documents) order.push_back(moment);
    std::shuffle(order.begin(), order.end(), random);
    TStoredSpans stored;
    for (const TMoment moment : order) {
      stored.Insert(moment, documents.at(moment));
      ASSERT_EQ(stored.Get(), SpansOf(stored.Documents())) << "round " << round;
    }
    std::shuffle(order.begin(), order.end(), random);
    for (const TMoment moment : order) {
      stored.Remove(moment);
      ASSERT_EQ(stored.Get(), SpansOf(stored.Documents())) << "round " << round;
    }
  }
}

}  // namespace
