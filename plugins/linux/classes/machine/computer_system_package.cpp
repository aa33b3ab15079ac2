// SPDX-License-Identifier: Apache-2.0
// Association VORNSG_ComputerSystemPackage: the machine and its chassis.
#include "packages.h"

namespace NVORNQDX20 {
namespace {

TInstances<TTie> ListPackages(const THost& host) {
  TInstances<TPhysicalElement> chassis = ListChassis(host);
  TInstances<TTie> ties({}, chassis.fReason);
  ties.fAll.reserve(chassis.fAll.size());
  for (const TPhysicalElement& each : chassis.fAll) {
    ties.fAll.push_back({{kChassisClassName, each.fTag}, TheSystem(host)});
  }
  return ties;
}

}  // namespace

TClass ComputerSystemPackageClass() {
  return THostTable<TTie>{
      "VORNSG_ComputerSystemPackage",
      "Ties the machine to the chassis that it is in.",
      ListPackages,
      {{"Antecedent", "The chassis.", &TTie::fFirst, kKey, TRefersTo{"VORNSG_PhysicalPackage"}},
       {"Dependent", "The machine.", &TTie::fSecond, kKey, TRefersTo{"VORNSG_ComputerSystem"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
