// SPDX-License-Identifier: Apache-2.0
#include "hosts.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>

#include <nlohmann/json.hpp>

#include "database/locks.h"
#include "host_timelines.h"
#include "identity_group.h"
#include "input/digest.h"

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;

std::string DigestOfTexts(const TIdentity& identity) {
  return ShortDigestOf(TJSON({identity.fUUID, identity.fMachineID, identity.fSerialNumber,
                              identity.fMaker, identity.fName})
                           .dump(-1, ' ', false, TJSON::error_handler_t::replace));
}

std::optional<TKnownHost> Lookup(TDatabase& database, const std::string& digest) {
  std::optional<TKnownHost> found;
  database.Query("SELECT id, host FROM identity WHERE digest = :digest", 2, {digest},
                 [&](const TRow& row) {
                   found = {ToNumber(row[0]), ToNumber(row[1])};
                 });
  return found;
}

std::int64_t RequireHost(TDatabase& database, const std::string& key) {
  database.Execute("INSERT INTO host (key, name) VALUES (:key, '') ON CONFLICT (key) DO NOTHING",
                   {key});
  return database.QueryNumber("SELECT id FROM host WHERE key = :key", {key}).value();
}

/// Returns whether the host has no other identities than so many, and none has the key.
bool CanBeRenamed(TDatabase& database, std::int64_t host, std::size_t identities,
                  const std::string& key) {
  const char* const kCount = "SELECT COUNT(*) FROM identity WHERE host = :host";
  const char* const kHasKey = "SELECT COUNT(*) FROM host WHERE key = :key";
  return database.QueryNumber(kCount, {host}) == static_cast<std::int64_t>(identities) &&
         database.QueryNumber(kHasKey, {key}) == 0;
}

/// Gives a host that goes on as another one as a whole its new key.
void RenameHosts(TDatabase& database, std::vector<TStoredIdentity>& stored,
                 const std::vector<std::string>& keys) {
  std::map<std::int64_t, std::vector<std::size_t>> byHost;
  for (std::size_t i = 0; i < stored.size(); ++i) byHost[stored[i].fHost].push_back(i);
  for (const auto& [host, indexes] : byHost) {
    const std::string& key = keys[indexes.front()];
    const bool isWhole =
        std::all_of(indexes.begin(), indexes.end(), [&](std::size_t i) { return keys[i] == key; });
    if (!isWhole || stored[indexes.front()].fHostKey == key ||
        !CanBeRenamed(database, host, indexes.size(), key)) {
      continue;
    }
    database.Execute("UPDATE host SET key = :key WHERE id = :host", {key, host});
    for (const std::size_t i : indexes) stored[i].fHostKey = key;
  }
}

void RemoveUnusedHost(TDatabase& database, std::int64_t host) {
  database.Execute(
      "DELETE FROM host WHERE id = :host AND NOT EXISTS"
      " (SELECT 1 FROM identity WHERE identity.host = host.id)",
      {host});
}

void MoveIdentity(TDatabase& database, const TStoredIdentity& identity, const std::string& key) {
  const std::int64_t host = RequireHost(database, key);
  std::vector<std::int64_t> documents;
  database.Query("SELECT id FROM document WHERE identity = :identity ORDER BY moment", 1,
                 {identity.fNumber},
                 [&](const TRow& row) { documents.push_back(ToNumber(row[0])); });
  for (const std::int64_t document : documents) MoveDocument(database, document, host);
  database.Execute("UPDATE identity SET host = :host WHERE id = :identity",
                   {host, identity.fNumber});
  NameHost(database, host);
  NameHost(database, identity.fHost);
  RemoveUnusedHost(database, identity.fHost);
}

/// Moves the documents of identities whose hosts have these keys from now on.
void GiveKeys(TDatabase& database, std::vector<TStoredIdentity> stored,
              const std::vector<std::string>& keys) {
  RenameHosts(database, stored, keys);
  for (std::size_t i = 0; i < stored.size(); ++i) {
    if (stored[i].fHostKey != keys[i]) MoveIdentity(database, stored[i], keys[i]);
  }
}

/// Adds the identity, and moves the documents of others that belong to other hosts from now on.
TKnownHost AddIdentity(TDatabase& database, const TIdentity& identity, const std::string& digest) {
  const TIdentityGroup group(database, identity, TIdentityGroup::kAdded);
  const std::vector<std::string>& keys = group.GetKeys();
  GiveKeys(database, group.GetStored(), keys);
  const std::int64_t host = RequireHost(database, keys.back());
  database.Execute(
      "INSERT INTO identity (digest, uuid, machine_id, serial_number, manufacturer, name, host)"
      " VALUES (:digest, :uuid, :machine, :serial, :maker, :name, :host)",
      {digest, identity.fUUID, identity.fMachineID, identity.fSerialNumber, identity.fMaker,
       identity.fName, host});
  return *Lookup(database, digest);
}

void WarnOfClone(TDatabase& database, const TIdentity& identity,
                 std::vector<std::string>& warnings) {
  if (identity.fMachineID.empty()) return;
  const auto hosts =
      database.QueryNumber("SELECT COUNT(DISTINCT host) FROM identity WHERE machine_id = :machine",
                           {identity.fMachineID});
  if (hosts.value_or(0) < 2) return;
  warnings.push_back("machine-id " + identity.fMachineID + " is that of " + std::to_string(*hosts) +
                     " hosts: copies of one installation?");
}

/// Returns how many values the column has in the documents with a UUID, if this one is new there.
std::int64_t CountIfNew(TDatabase& database, const std::string& uuid, const std::string& column,
                        const std::string& value) {
  if (uuid.empty() || value.empty()) return 0;
  const std::string select = "SELECT COUNT(DISTINCT " + column + "), COUNT(CASE WHEN " + column +
                             " = :value THEN 1 END) FROM identity WHERE uuid = :uuid AND " +
                             column + " <> ''";
  std::int64_t count = 0;
  database.Query(select, 2, {value, uuid}, [&count](const TRow& row) {
    if (ToNumber(row[1]) == 1) count = ToNumber(row[0]);
  });
  return count;
}

/// A UUID that several machines have makes them one host.
void WarnOfSharedUUID(TDatabase& database, const TIdentity& identity,
                      std::vector<std::string>& warnings) {
  const auto warn = [&](std::int64_t count, const std::string& what) {
    if (count < 2) return false;
    warnings.push_back("product UUID " + identity.fUUID + " comes with " + std::to_string(count) +
                       what);
    return true;
  };
  const auto count = [&](const std::string& column, const std::string& value) {
    return CountIfNew(database, identity.fUUID, column, value);
  };
  const bool hasWarned = warn(count("serial_number", identity.fSerialNumber),
                              " serial numbers: several machines, which are one host here?");
  if (hasWarned) return;
  warn(count("machine_id", identity.fMachineID),
       " machine-ids: a new installation, or several machines, which are one host here?");
}

}  // namespace

void NameHost(TDatabase& database, std::int64_t host) {
  std::string name;
  database.Query(
      "SELECT COALESCE((SELECT s.value FROM document AS d JOIN string AS s ON s.id = d.name"
      " WHERE d.host = h.id AND s.value <> '' ORDER BY d.moment DESC LIMIT 1), h.key)"
      " FROM host AS h WHERE h.id = :host",
      1, {host}, [&](const TRow& row) { name = *row[0]; });
  database.Execute("UPDATE host SET name = :name WHERE id = :host AND name <> :same",
                   {name, host, name});
}

void LockAllHosts(TDatabase& database) { LockStore(database, ELock::kExclusive); }

TKnownHost FindHost(TDatabase& database, const TIdentity& identity,
                    std::vector<std::string>& warnings) {
  const std::string digest = DigestOfTexts(identity);
  // Before the lock, which cannot become a stronger one later.
  const bool isKnown = Lookup(database, digest).has_value();
  LockStore(database, isKnown ? ELock::kShared : ELock::kExclusive);
  std::optional<TKnownHost> found = Lookup(database, digest);
  if (!found && isKnown) {
    throw TDatabaseError(TDatabaseError::kConflict, kQDXStatusFail,
                         "another program has removed the host");
  }
  if (!found) {
    found = AddIdentity(database, identity, digest);
    WarnOfClone(database, identity, warnings);
    WarnOfSharedUUID(database, identity, warnings);
  }
  LockHost(database, found->fHost);
  return *found;
}

void RemoveIdentity(TDatabase& database, std::int64_t number) {
  TIdentity identity;
  std::int64_t host = 0;
  database.Query(
      "SELECT uuid, machine_id, serial_number, manufacturer, name, host FROM identity"
      " WHERE id = :identity",
      6, {number}, [&](const TRow& row) {
        identity = {*row[0], *row[1], *row[2], *row[3], *row[4]};
        host = ToNumber(row[5]);
      });
  database.Execute("DELETE FROM identity WHERE id = :identity", {number});
  const TIdentityGroup group(database, identity, TIdentityGroup::kRemoved);
  GiveKeys(database, group.GetStored(), group.GetKeys());
  RemoveUnusedHost(database, host);
}

}  // namespace NVORNQDX20::NStore
