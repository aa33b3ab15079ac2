// SPDX-License-Identifier: Apache-2.0
#include "removal.h"

#include <algorithm>
#include <set>

#include "host_timelines.h"
#include "hosts.h"

namespace NVORNQDX20::NStore {
namespace {

struct TStoredDocument {
  std::int64_t fNumber;
  std::int64_t fIdentity;
  TMoment fMoment;
  std::string fDigest;
  std::string fSight;
};

/// The last one first: then no later one has to be asked what it knows.
std::vector<TStoredDocument> DocumentsOf(TDatabase& database, std::int64_t host, std::int64_t since,
                                         std::int64_t until) {
  std::vector<TStoredDocument> documents;
  database.Query(
      "SELECT d.id, d.identity, d.moment, d.digest, s.value FROM document AS d"
      " JOIN string AS s ON s.id = d.sight WHERE d.host = :host ORDER BY d.moment DESC",
      5, {host}, [&](const TRow& row) {
        TStoredDocument document = {ToNumber(row[0]), ToNumber(row[1]), ToNumber(row[2]),
                                    row[3].value_or(""), row[4].value_or("")};
        const std::int64_t time = TimeOf(document.fMoment);
        if (time < since || time >= until) return;
        documents.push_back(std::move(document));
      });
  return documents;
}

void Remove(TDatabase& database, std::int64_t host, const TStoredDocument& document) {
  const TSight sight(document.fSight);
  THostTimelines timelines(database, host);
  for (const TSight::EKind kind : {TSight::kFacts, TSight::kMissing}) {
    timelines.Remove(kind, document.fMoment, sight);
  }
  for (const char* const table : {"reading", "problem"}) {
    database.Execute(std::string("DELETE FROM ") + table + " WHERE document = :document",
                     {document.fNumber});
  }
  database.Execute("DELETE FROM document WHERE id = :document", {document.fNumber});
}

}  // namespace

std::vector<TRemovedDocument> RemoveDocuments(TDatabase& database, std::int64_t host,
                                              std::int64_t since, std::int64_t until) {
  std::vector<TRemovedDocument> removed;
  std::set<std::int64_t> identities;
  for (const TStoredDocument& document : DocumentsOf(database, host, since, until)) {
    Remove(database, host, document);
    removed.push_back({TimeOf(document.fMoment), document.fDigest});
    identities.insert(document.fIdentity);
  }
  NameHost(database, host);
  for (const std::int64_t identity : identities) {
    const bool isUsed =
        database.QueryNumber("SELECT 1 FROM document WHERE identity = :id LIMIT 1", {identity})
            .has_value();
    if (!isUsed) RemoveIdentity(database, identity);
  }
  std::reverse(removed.begin(), removed.end());
  return removed;
}

}  // namespace NVORNQDX20::NStore
