// SPDX-License-Identifier: Apache-2.0
// Association VORNSG_Realizes: the parts that a device consists of.
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

/// The modules of the machine's own memory.
TInstances<TTie> ListModulesOfMemory(const THost& host) {
  const auto& devices = host.Shared<TMemoryDevices>();
  TInstances<TTie> ties({}, devices.GetReason());
  for (const TMemoryDevice& device : devices.GetAll()) {
    if (!device.fIsInstalled || !device.fIsSystem) continue;
    ties.fAll.push_back({{"VORNSG_PhysicalMemory", device.fTag}, {"VORNSG_Memory", "Memory"}});
  }
  return ties;
}

}  // namespace

TClass RealizesClass() {
  return THostTable<TTie>{
      "VORNSG_Realizes",
      "Ties a device to a part that it consists of.",
      ListModulesOfMemory,
      {{"Antecedent", "The part.", &TTie::fFirst, kKey, TRefersTo{"VORNSG_PhysicalElement"}},
       {"Dependent", "The device.", &TTie::fSecond, kKey, TRefersTo{"VORNSG_LogicalDevice"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
