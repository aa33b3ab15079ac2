// SPDX-License-Identifier: Apache-2.0
/// The identities of the store whose hosts one more or one less can change.
#ifndef TOOLS_QDX_STORE_STORAGE_IDENTITY_GROUP_H_
#define TOOLS_QDX_STORE_STORAGE_IDENTITY_GROUP_H_

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "database/database.h"
#include "identity.h"

namespace NVORNQDX20::NStore {

/// An identity in the store.
struct TStoredIdentity {
  std::int64_t fNumber;
  std::int64_t fHost;
  std::string fHostKey;
  TIdentity fIdentity;
};

/// Reads as few as can be: a thousand hosts that share a name, or a thousand copies of one
/// installation that have UUIDs or serial numbers, are no group.
class TIdentityGroup {
 public:
  enum EChange {
    kAdded,   ///< The identity is not in the store yet.
    kRemoved  ///< The identity is no longer in the store.
  };

  /// Throws a TDatabaseError.
  TIdentityGroup(TDatabase& database, const TIdentity& identity, EChange change);

  /// Those that are to have other hosts, among others.
  const std::vector<TStoredIdentity>& GetStored() const { return fStored; }
  /// The keys of their hosts from now on, in the same order, then that of the added identity.
  const std::vector<std::string>& GetKeys() const { return fKeys; }

 private:
  /// What the identities with a machine-id are about, at most two of each: two are as many as more.
  struct TMachine {
    std::set<std::string> fUUIDs;
    std::set<std::pair<std::string, std::string>> fSerials;  // makers and serial numbers

    void Add(const TIdentity& identity);
    bool IsCloned() const { return fUUIDs.size() > 1 || fSerials.size() > 1; }
  };

  void SpreadOverMachine();
  void Spread(const TIdentity& changed);
  bool SpreadChangedKeys();
  void ReadWhatMattersFor(const TIdentity& identity);
  void ReadWhatMattersOnMachine(const TIdentity& identity);
  TMachine ReadMachine();
  void ReadTwoHosts(const std::string& condition, const std::vector<TValue>& values);
  std::vector<std::int64_t> Read(const std::string& condition, const std::vector<TValue>& values);
  void ReadAffected(const std::string& condition, const std::vector<TValue>& values);
  void AssignKeys();

  TDatabase& fDatabase;
  const TIdentity fIdentity;
  const EChange fChange;
  std::vector<TStoredIdentity> fStored;
  std::vector<std::string> fKeys;
  std::map<std::int64_t, std::size_t> fIndexes;  // in fStored, by number
  /// Numbers of those whose keys may be other ones. All others keep theirs.
  std::set<std::int64_t> fAffected;
  std::set<std::int64_t> fSpread;
  bool fHasWholeMachine = false;  // all identities with the machine-id are read
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_IDENTITY_GROUP_H_
