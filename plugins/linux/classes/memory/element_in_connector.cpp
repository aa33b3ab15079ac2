// SPDX-License-Identifier: Apache-2.0
// Association VORNSG_ElementInConnector: modules of memory and their sockets.
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

TInstances<TTie> ListSocketed(const THost& host) {
  const auto& devices = host.Shared<TMemoryDevices>();
  TInstances<TTie> ties({}, devices.GetReason());
  for (const TMemoryDevice& device : devices.GetAll()) {
    if (!device.fIsInstalled || !device.fStructure) continue;
    ties.fAll.push_back(
        {{"VORNSG_MemorySlot", device.fTag}, {"VORNSG_PhysicalMemory", device.fTag}});
  }
  return ties;
}

}  // namespace

TClass ElementInConnectorClass() {
  return THostTable<TTie>{
      "VORNSG_ElementInConnector",
      "Ties a module to the socket that it is in.",
      ListSocketed,
      {{"Antecedent", "The socket.", &TTie::fFirst, kKey, TRefersTo{"VORNSG_MemorySlot"}},
       {"Dependent", "The module.", &TTie::fSecond, kKey, TRefersTo{"VORNSG_PhysicalElement"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
