// SPDX-License-Identifier: Apache-2.0
/// Which documents are of one host.
#ifndef TOOLS_QDX_STORE_STORAGE_IDENTITY_H_
#define TOOLS_QDX_STORE_STORAGE_IDENTITY_H_

#include <string>
#include <vector>

#include "input/document_facts.h"

namespace NVORNQDX20::NStore {

/// What may identify a host. Empty if a document does not have it, or if it identifies nobody, such
/// as "To be filled by O.E.M.".
struct TIdentity {
  std::string fUUID;
  std::string fMachineID;
  std::string fSerialNumber;  ///< Only with a maker.
  std::string fMaker;         ///< Only with a serial number.
  std::string fName;

  bool IsNobody() const;
};

/// Letters in lower case, no blanks at the ends, and nothing that identifies nobody, such as texts
/// of more than 255 bytes.
TIdentity IdentityOf(const THostIdentity& host);

/// Returns for each identity the key of its host: equal ones are one host. The order of the
/// identities has no effect. A host has one product UUID. An identity without a UUID belongs to the
/// only host that has its machine-id; to the one of several that also has its name. An identity
/// without a machine-id belongs to the only host with its serial number and maker, and one without
/// these to the only one with its name. Otherwise it is a host of its own. `known` are keys that
/// some have already, empty for the others: for such an identity those that decide its key need not
/// be there.
std::vector<std::string> HostKeys(const std::vector<TIdentity>& identities,
                                  const std::vector<std::string>& known = {});

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_IDENTITY_H_
