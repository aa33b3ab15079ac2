// SPDX-License-Identifier: Apache-2.0
/// The hosts of a store, and who of them is meant.
#ifndef TOOLS_QDX_STORE_QUESTIONS_FLEET_H_
#define TOOLS_QDX_STORE_QUESTIONS_FLEET_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"

namespace NVORNQDX20::NStore {

/// Something that went wrong when the last document was collected or read.
struct TProblem {
  std::string fKind;
  std::string fProvider;
  std::string fNamespace;
  std::string fOperation;
  std::string fReason;
};

/// A host; texts are empty if they are unknown.
struct TFleetHost {
  std::int64_t fID = 0;
  std::string fName;
  std::string fUUID = {};
  std::string fMachineID = {};
  std::string fSerialNumber = {};
  std::string fMaker = {};
  std::string fModel = {};
  std::string fFirstSeen = {};  ///< UTC, "2004-03-15T13:30:00Z".
  std::string fLastSeen = {};
  std::int64_t fDocuments = 0;
  // Of the last document:
  bool fHasAllPermissions = false;
  bool fIsComplete = false;
  std::vector<std::string> fPartsLeftOut = {};
  std::vector<TProblem> fProblems = {};
  /// The names of other hosts with the same machine ID, the first ones: a thousand copies of one
  /// installation would have a million.
  static constexpr std::size_t kMostClones = 100;
  std::vector<std::string> fClones = {};
  /// What changes to and fro between its documents, as if several machines had its UUID.
  enum EIdentifier { kMachineID, kSerialNumber, kName };
  std::vector<EIdentifier> fAlternating = {};
};

/// Returns the hosts by name. Throws a TDatabaseError.
std::vector<TFleetHost> ReadFleet(TDatabase& database);

/// Returns the hosts that a person can mean: with this name, UUID, machine ID or serial number, or
/// with this number as in "host_id=3"; if there is none, those of which one of the first three
/// begins so. In any case of letters.
std::vector<TFleetHost> FindHosts(const std::vector<TFleetHost>& fleet, const std::string& typed);

/// Returns "maker model", what is known of it.
std::string ProductOf(const TFleetHost& host);

/// Returns the text of a time as the views have it, without the fraction of a second if that is 0.
std::string WithoutFraction(const std::string& time);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_QUESTIONS_FLEET_H_
