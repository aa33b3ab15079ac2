// SPDX-License-Identifier: Apache-2.0
/// The timelines of a host in the database.
#ifndef TOOLS_QDX_STORE_STORAGE_HOST_TIMELINES_H_
#define TOOLS_QDX_STORE_STORAGE_HOST_TIMELINES_H_

#include <cstdint>
#include <vector>

#include "database/database.h"
#include "sight.h"
#include "timeline.h"

namespace NVORNQDX20::NStore {

/// All members throw a TDatabaseError. REQUIRES: a transaction, in which no other one changes the
/// host.
class THostTimelines {
 public:
  THostTimelines(TDatabase& database, std::int64_t host) : fDatabase(database), fHost(host) {}

  /// Adds what a document shows. Its row may exist already. `observations` are sorted by key.
  void Insert(TSight::EKind kind, TMoment moment, const TSight& sight,
              const std::vector<TObservation>& observations);
  /// Takes away what a document shows, and returns it.
  std::vector<TObservation> Remove(TSight::EKind kind, TMoment moment, const TSight& sight);

 private:
  TSpans ReadSpans(TSight::EKind kind, TMoment endAfter) const;
  void Write(TSight::EKind kind, const TSpanChanges& changes) const;
  void WriteSpans(const std::string& sql, const TSpans& spans) const;

  TDatabase& fDatabase;
  std::int64_t fHost;
};

/// Moves a document to another host.
void MoveDocument(TDatabase& database, std::int64_t document, std::int64_t toHost);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_HOST_TIMELINES_H_
