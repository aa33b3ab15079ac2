// SPDX-License-Identifier: Apache-2.0
// Association VORNSG_SystemBIOS: the machine and its firmware.
#include <qdxmodel/classes.h>

#include "classes/physical_element.h"

namespace NVORNQDX20 {
namespace {

const char* const kBIOSClassName = "VORNSG_BIOSElement";

std::vector<TTie> ListBIOSes(const THost& host, const ICIMNamespace& ns) {
  std::vector<TTie> ties;
  NModel::ForEachInstance(*ns.GetClass(kBIOSClassName, {}), [&](const ICIMInstance& bios) {
    const auto id = bios.GetProperty("SoftwareElementID", {})->GetValue();
    ties.push_back({TheSystem(host), {kBIOSClassName, id}});
  });
  return ties;
}

}  // namespace

TClass SystemBIOSClass() {
  return THostTable<TTie>{
      "VORNSG_SystemBIOS",
      "Ties the machine to the firmware that starts it.",
      ListBIOSes,
      {{"GroupComponent", "The machine.", &TTie::fFirst, kKey, TRefersTo{"VORNSG_ComputerSystem"}},
       {"PartComponent", "The firmware.", &TTie::fSecond, kKey, TRefersTo{kBIOSClassName}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
