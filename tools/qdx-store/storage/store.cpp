// SPDX-License-Identifier: Apache-2.0
#include "store.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <boost/algorithm/string/join.hpp>
#include <nlohmann/json.hpp>

#include "host_timelines.h"
#include "hosts.h"
#include "identity.h"
#include "moment.h"
#include "numbered_facts.h"

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;

const int kMostAttempts = 6;
const std::chrono::milliseconds kFirstPause{10};

std::string TextOf(const TJSON& rows) {
  return rows.dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

/// Returns none if another writer has added the document.
std::optional<std::int64_t> AddDocumentRow(TDatabase& database, TInterner& interner,
                                           const TDocumentFacts& facts, const TKnownHost& host,
                                           TMoment moment, const TSight& sight) {
  const THostIdentity& shown = facts.fHost;
  const std::vector<std::int64_t> texts =
      interner.InternStrings({sight.ToText(), shown.fName, shown.fUUID, shown.fMachineID,
                              shown.fSerialNumber, shown.fMaker, shown.fModel, facts.fToolVersion,
                              boost::algorithm::join(facts.fPartsLeftOut, " ")});
  std::vector<TValue> values = {host.fHost, host.fIdentity, moment, facts.fDigest};
  values.insert(values.end(), texts.begin(), texts.end());
  for (const std::size_t number : {std::size_t{facts.fHasAllPermissions},
                                   std::size_t{facts.fIsComplete}, facts.fFacts.size()}) {
    values.emplace_back(static_cast<std::int64_t>(number));
  }
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  values.emplace_back(
      FirstMomentOf(std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
  return database.QueryNumber(
      "INSERT INTO document (host, identity, moment, digest, sight, name, uuid, machine_id,"
      " serial_number, manufacturer, model, tool_version, parts_left_out, has_all_permissions,"
      " is_complete, facts, added)"
      " VALUES (:host, :identity, :moment, :digest, :sight, :name, :uuid, :machine, :serial,"
      " :maker, :model, :tool, :parts, :permissions, :complete, :facts, :added)"
      " ON CONFLICT (digest) DO NOTHING RETURNING id",
      values);
}

void AddReadings(TDatabase& database, std::int64_t document,
                 const std::vector<TReadingRow>& readings) {
  if (readings.empty()) return;
  TJSON rows = TJSON::array();
  for (const auto& [key, value] : readings) {
    rows.push_back({key.fObject, key.fProperty, value});
  }
  database.Execute(
      "INSERT INTO reading (document, object, property, value)"
      " SELECT CAST(:document AS BIGINT), CAST(value ->> 0 AS BIGINT),"
      " CAST(value ->> 1 AS BIGINT), value ->> 2 FROM @ROWS(:rows)",
      {document, TextOf(rows)});
}

void AddProblems(TDatabase& database, std::int64_t document, const TDocumentFacts& facts) {
  TJSON rows = TJSON::array();
  for (const auto& [provider, ns, operation, reason] : facts.fFailures) {
    rows.push_back({rows.size(), "failure", provider, ns, operation, reason});
  }
  for (const std::string& warning : facts.fWarnings) {
    rows.push_back({rows.size(), "warning", "", "", "reading", warning});
  }
  if (rows.empty()) return;
  database.Execute(
      "INSERT INTO problem (document, number, kind, provider, namespace, operation, reason)"
      " SELECT CAST(:document AS BIGINT), CAST(value ->> 0 AS BIGINT), value ->> 1, value ->> 2,"
      " value ->> 3, value ->> 4, value ->> 5 FROM @ROWS(:rows)",
      {document, TextOf(rows)});
}

}  // namespace

TStore::TAdded TStore::Add(const TDocumentFacts& facts) {
  std::chrono::milliseconds pause = kFirstPause;
  for (int attempt = 1;; ++attempt) {
    try {
      return AddOnce(facts);
    } catch (const TDatabaseError& error) {
      fInterner.Forget();
      if (error.GetKind() != TDatabaseError::kConflict || attempt == kMostAttempts) throw;
    } catch (...) {
      fInterner.Forget();
      throw;
    }
    std::this_thread::sleep_for(pause);
    pause *= 2;
  }
}

void TStore::Check(const TDocumentFacts& facts) {
  if (IdentityOf(facts.fHost).IsNobody()) {
    throw TExplainedException(
        kQDXStatusNotFound,
        "it names no host: no UUID, machine-id, serial number or host name that is its own");
  }
  (void)MomentOf(facts.fTime, facts.fDigest);
}

TStore::TAdded TStore::AddOnce(const TDocumentFacts& facts) {
  Check(facts);
  const TIdentity identity = IdentityOf(facts.fHost);
  const TMoment moment = MomentOf(facts.fTime, facts.fDigest);
  TAdded added{true};
  TTransaction transaction(fDatabase);
  if (Has(facts.fDigest)) return {false};
  const TKnownHost host = FindHost(fDatabase, identity, added.fWarnings);
  const TNumberedFacts numbered = Number(facts, fInterner);
  const auto document = AddDocumentRow(fDatabase, fInterner, facts, host, moment, numbered.fSight);
  if (!document) {
    fInterner.Forget();
    return {false};
  }
  THostTimelines timelines(fDatabase, host.fHost);
  timelines.Insert(TSight::kFacts, moment, numbered.fSight, numbered.fFacts);
  timelines.Insert(TSight::kMissing, moment, numbered.fSight, numbered.fMissing);
  NameHost(fDatabase, host.fHost);
  AddReadings(fDatabase, *document, numbered.fReadings);
  AddProblems(fDatabase, *document, facts);
  transaction.Commit();
  return added;
}

bool TStore::Has(const std::string& digest) {
  return fDatabase.QueryNumber("SELECT id FROM document WHERE digest = :digest", {digest})
      .has_value();
}

void TStore::UpdateStatistics() {
  if (!fDatabase.IsSQLite()) return;  // a server does so by itself
  try {
    fDatabase.Execute("PRAGMA analysis_limit = 1000");
    fDatabase.Execute("ANALYZE");
  } catch (const TDatabaseError&) {  // NOLINT(bugprone-empty-catch): queries only take longer
  }
}

std::int64_t TStore::PruneReadings(std::int64_t before) {
  const TMoment end = FirstMomentOf(before);
  std::int64_t count = 0;
  std::int64_t document = 0;
  // In pieces, so that other writers do not wait, and no statement takes too long.
  for (std::vector<std::int64_t> documents;; documents.clear()) {
    fDatabase.Query(
        "SELECT id FROM document WHERE id > :id AND moment < :moment ORDER BY id LIMIT 500", 1,
        {document, end}, [&](const TRow& row) { documents.push_back(ToNumber(row[0])); });
    if (documents.empty()) return count;
    document = documents.back();
    const std::string range =
        " FROM reading WHERE document IN"
        " (SELECT CAST(value ->> 0 AS BIGINT) FROM @ROWS(:documents))";
    TJSON rows = TJSON::array();
    for (const std::int64_t each : documents) rows.push_back(TJSON::array({each}));
    TTransaction transaction(fDatabase);
    count += fDatabase.QueryNumber("SELECT COUNT(*)" + range, {rows.dump()}).value_or(0);
    fDatabase.Execute("DELETE" + range, {rows.dump()});
    transaction.Commit();
  }
}

}  // namespace NVORNQDX20::NStore
