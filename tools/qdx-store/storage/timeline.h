// SPDX-License-Identifier: Apache-2.0
/// The values of a host over time, kept as spans.
///
/// Documents show values at moments. A span is a value from the first document that shows it up to
/// the first later one that shows another value or none. A document that does not know about a key
/// neither begins nor ends a span. So the spans depend only on the documents and their moments, not
/// on the order in which they are inserted. Plain data: the caller reads and writes the spans.
#ifndef TOOLS_QDX_STORE_STORAGE_TIMELINE_H_
#define TOOLS_QDX_STORE_STORAGE_TIMELINE_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <tuple>
#include <vector>

#include "moment.h"

namespace NVORNQDX20::NStore {

/// What has a value: a property of an object, by their numbers in the store.
struct TKey {
  std::int64_t fObject;
  std::int64_t fProperty;

  bool operator<(const TKey& other) const {
    return std::tie(fObject, fProperty) < std::tie(other.fObject, other.fProperty);
  }
  bool operator==(const TKey& other) const {
    return std::tie(fObject, fProperty) == std::tie(other.fObject, other.fProperty);
  }
};

/// A value that a document shows, by its number in the store.
struct TObservation {
  TKey fKey;
  std::int64_t fValue;
};

struct TSpan {
  TKey fKey;
  std::int64_t fValue;
  TMoment fSince;
  TMoment fUntil;  ///< Excluded; kStillValid if no later document ends it.

  bool operator==(const TSpan& other) const {
    return fKey == other.fKey && fValue == other.fValue && fSince == other.fSince &&
           fUntil == other.fUntil;
  }
};

/// Sorted by key, then by the beginning.
using TSpans = std::vector<TSpan>;

/// A span is found by its key and its beginning.
struct TSpanChanges {
  TSpans fRemoved;
  TSpans fPut;  ///< New, or in the place of one with the same key and beginning.
};

/// What documents know about a key.
struct TKnowledge {
  /// Whether the document that is inserted or removed knows that it has no value, if it shows none.
  std::function<bool(const TKey&)> fKnows;
  /// The moment of the first later document that knows the key; kStillValid if there is none.
  std::function<TMoment(const TKey&)> fNextKnown;
};

/// Returns the keys about which Insert() may ask.
std::vector<TKey> ChangedKeys(const TSpans& spans, TMoment moment,
                              const std::vector<TObservation>& observations);

/// A document of this moment is added, which shows `observations`, sorted by key. `spans` are those
/// that end after the moment. REQUIRES: no other document has this moment.
TSpanChanges Insert(const TSpans& spans, TMoment moment,
                    const std::vector<TObservation>& observations, const TKnowledge& knowledge);

/// The document of this moment is taken away. `spans` are those that end at the moment or later.
TSpanChanges Remove(const TSpans& spans, TMoment moment, const TKnowledge& knowledge);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_TIMELINE_H_
