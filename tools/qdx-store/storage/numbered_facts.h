// SPDX-License-Identifier: Apache-2.0
/// The facts of a document by the numbers of the store.
#ifndef TOOLS_QDX_STORE_STORAGE_NUMBERED_FACTS_H_
#define TOOLS_QDX_STORE_STORAGE_NUMBERED_FACTS_H_

#include <string>
#include <vector>

#include "input/document_facts.h"
#include "interner.h"
#include "sight.h"
#include "timeline.h"

namespace NVORNQDX20::NStore {

/// What changes by itself, which has no span.
struct TReadingRow {
  TKey fKey;
  std::string fValue;
};

struct TNumberedFacts {
  std::vector<TObservation> fFacts;    ///< Sorted by key, each once.
  std::vector<TObservation> fMissing;  ///< Sorted by key, each once.
  std::vector<TReadingRow> fReadings;  ///< Each once.
  TSight fSight;
};

/// Throws kQDXStatusInvalidFormat for indexes that do not exist and for names that are too long,
/// and a TDatabaseError.
TNumberedFacts Number(const TDocumentFacts& facts, TInterner& interner);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_NUMBERED_FACTS_H_
