// SPDX-License-Identifier: Apache-2.0
#include "host_timelines.h"

#include <map>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;

std::string TableOf(TSight::EKind kind) { return kind == TSight::kFacts ? "fact" : "gap"; }

/// The names of keys, read when they are needed.
class TNames {
 public:
  TNames(TDatabase& database, const std::vector<TKey>& keys) {
    if (keys.empty()) return;
    TJSON rows = TJSON::array();
    for (const TKey& key : keys) rows.push_back({key.fObject, key.fProperty});
    database.Query(
        "SELECT o.id, p.id, c.namespace, c.name, o.parts, o.name, p.name"
        " FROM (SELECT CAST(value ->> 0 AS BIGINT) AS object,"
        " CAST(value ->> 1 AS BIGINT) AS property FROM @ROWS(:keys)) AS k"
        " JOIN object AS o ON o.id = k.object JOIN class AS c ON c.id = o.class"
        " JOIN property AS p ON p.id = k.property",
        7, {rows.dump()}, [this](const TRow& row) {
          fNames[{ToNumber(row[0]), ToNumber(row[1])}] = {*row[2], *row[3], *row[4], row[5],
                                                          *row[6]};
        });
  }

  const TKeyNames& operator[](const TKey& key) { return fNames[key]; }

 private:
  std::map<TKey, TKeyNames> fNames;
};

/// The documents of a host after a moment.
class TLaterDocuments {
 public:
  TLaterDocuments(TDatabase& database, std::int64_t host, TMoment moment) : fDatabase(database) {
    database.Query(
        "SELECT moment, sight FROM document WHERE host = :host AND moment > :moment"
        " ORDER BY moment",
        2, {host, moment}, [this](const TRow& row) {
          fDocuments.push_back({ToNumber(row[0]), ToNumber(row[1])});
        });
  }

  /// Returns the first moment at which a document knows the key.
  TMoment FirstKnown(TSight::EKind kind, const TKey& key, const TKeyNames& names) {
    for (const auto& [moment, sight] : fDocuments) {
      if (SightOf(sight).Knows(kind, key, names)) return moment;
    }
    return kStillValid;
  }

 private:
  struct TDocument {
    TMoment fMoment;
    std::int64_t fSight;
  };

  const TSight& SightOf(std::int64_t number) {
    const auto found = fSights.find(number);
    if (found != fSights.end()) return found->second;
    std::optional<TSight> sight;
    fDatabase.Query("SELECT value FROM string WHERE id = :id", 1, {number},
                    [&](const TRow& row) { sight.emplace(*row[0]); });
    if (!sight) {
      throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusCorruptedContainer,
                           "it has lost what a document could see");
    }
    return fSights.emplace(number, *sight).first->second;
  }

  TDatabase& fDatabase;
  std::vector<TDocument> fDocuments;
  std::map<std::int64_t, TSight> fSights;
};

/// REQUIRES: the names of the keys about which will be asked.
TKnowledge KnowledgeOf(TSight::EKind kind, const TSight& sight, TNames& names,
                       TLaterDocuments& later) {
  return {
      [kind, &sight, &names](const TKey& key) { return sight.Knows(kind, key, names[key]); },
      [kind, &later, &names](const TKey& key) { return later.FirstKnown(kind, key, names[key]); }};
}

std::vector<TKey> KeysOf(const TSpans& spans) {
  std::vector<TKey> keys;
  for (const TSpan& span : spans) {
    if (keys.empty() || !(keys.back() == span.fKey)) keys.push_back(span.fKey);
  }
  return keys;
}

}  // namespace

void THostTimelines::Insert(TSight::EKind kind, TMoment moment, const TSight& sight,
                            const std::vector<TObservation>& observations) {
  const TSpans spans = ReadSpans(kind, moment);
  TNames names(fDatabase, ChangedKeys(spans, moment, observations));
  TLaterDocuments later(fDatabase, fHost, moment);
  Write(kind, NStore::Insert(spans, moment, observations, KnowledgeOf(kind, sight, names, later)));
}

std::vector<TObservation> THostTimelines::Remove(TSight::EKind kind, TMoment moment,
                                                 const TSight& sight) {
  const TSpans spans = ReadSpans(kind, moment - 1);
  TNames names(fDatabase, KeysOf(spans));
  TLaterDocuments later(fDatabase, fHost, moment);
  std::vector<TObservation> observations;
  for (const TSpan& span : spans) {
    const bool isValid = span.fSince <= moment && moment < span.fUntil;
    if (isValid && sight.Knows(kind, span.fKey, names[span.fKey])) {
      observations.push_back({span.fKey, span.fValue});
    }
  }
  Write(kind, NStore::Remove(spans, moment, KnowledgeOf(kind, sight, names, later)));
  return observations;
}

TSpans THostTimelines::ReadSpans(TSight::EKind kind, TMoment endAfter) const {
  TSpans spans;
  fDatabase.Query("SELECT object, property, value, since, until FROM " + TableOf(kind) +
                      " WHERE host = :host AND until > :moment ORDER BY object, property, since",
                  5, {fHost, endAfter}, [&](const TRow& row) {
                    spans.push_back({{ToNumber(row[0]), ToNumber(row[1])},
                                     ToNumber(row[2]),
                                     ToNumber(row[3]),
                                     ToNumber(row[4])});
                  });
  return spans;
}

void THostTimelines::Write(TSight::EKind kind, const TSpanChanges& changes) const {
  const std::string table = TableOf(kind);
  WriteSpans("DELETE FROM " + table +
                 " WHERE host = :host AND (object, property, since) IN"
                 " (SELECT CAST(value ->> 0 AS BIGINT), CAST(value ->> 1 AS BIGINT),"
                 " CAST(value ->> 2 AS BIGINT) FROM @ROWS(:rows))",
             changes.fRemoved);
  WriteSpans("INSERT INTO " + table +
                 " (host, object, property, since, until, value)"
                 " SELECT CAST(:host AS BIGINT), CAST(value ->> 0 AS BIGINT),"
                 " CAST(value ->> 1 AS BIGINT), CAST(value ->> 2 AS BIGINT),"
                 " CAST(value ->> 3 AS BIGINT), CAST(value ->> 4 AS BIGINT) FROM @ROWS(:rows)"
                 " WHERE 1 = 1 ON CONFLICT (host, object, property, since)"
                 " DO UPDATE SET until = excluded.until, value = excluded.value",
             changes.fPut);
}

void THostTimelines::WriteSpans(const std::string& sql, const TSpans& spans) const {
  if (spans.empty()) return;
  TJSON rows = TJSON::array();
  for (const TSpan& span : spans) {
    rows.push_back({span.fKey.fObject, span.fKey.fProperty, span.fSince, span.fUntil, span.fValue});
  }
  fDatabase.Execute(sql, {fHost, rows.dump()});
}

void MoveDocument(TDatabase& database, std::int64_t document, std::int64_t toHost) {
  std::int64_t fromHost = 0;
  TMoment moment = 0;
  std::optional<TSight> sight;
  database.Query(
      "SELECT d.host, d.moment, s.value FROM document AS d JOIN string AS s ON s.id = d.sight"
      " WHERE d.id = :document",
      3, {document}, [&](const TRow& row) {
        fromHost = ToNumber(row[0]);
        moment = ToNumber(row[1]);
        sight.emplace(*row[2]);
      });
  for (const TSight::EKind kind : {TSight::kFacts, TSight::kMissing}) {
    const auto observations = THostTimelines(database, fromHost).Remove(kind, moment, *sight);
    THostTimelines(database, toHost).Insert(kind, moment, *sight, observations);
  }
  database.Execute("UPDATE document SET host = :host WHERE id = :document", {toHost, document});
}

}  // namespace NVORNQDX20::NStore
