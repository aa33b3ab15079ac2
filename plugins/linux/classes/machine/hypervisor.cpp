// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Hypervisor: what runs this machine, if it is a virtual one.
#include "sources/processors/hypervisor.h"

#include "classes/catalogue.h"

namespace NVORNQDX20 {
namespace {

TInstances<THypervisor> ListHypervisor(const THost& host) {
  const auto& found = host.Shared<TFoundHypervisor>();
  return found.fHypervisor ? TInstances<THypervisor>(*found.fHypervisor)
                           : TInstances<THypervisor>(Missing(found.fHypervisor.GetReason()));
}

}  // namespace

TClass HypervisorClass() {
  return THostTable<THypervisor>{
      "VORNSG_Hypervisor",
      "The hypervisor that runs this machine.",
      ListHypervisor,
      {{"InstanceID", "Always the same: a machine has one hypervisor.",
        Constant("VORNSG:hypervisor"), kKey},
       {"Name", "By which the hypervisor is known.", &THypervisor::fName},
       {"Manufacturer", "Its maker.", &THypervisor::fVendor},
       {"Version", "Its version.", &THypervisor::fVersion},
       {"VirtualizationType",
        "\"full\" if any system runs on it, \"para\" if the system must be made for it.",
        &THypervisor::fType},
       {"Evidence", "By what it was recognised.", &THypervisor::fEvidence}}};
}

}  // namespace NVORNQDX20
