// SPDX-License-Identifier: Apache-2.0
// Association VORNSG_Container: parts that are in others.
#include <qdxmodel/classes.h>

#include <map>

#include "packages.h"

namespace NVORNQDX20 {
namespace {

/// Boards name their chassis by its handle.
void AddBoards(const THost& host, std::vector<TTie>& ties) {
  std::map<std::uint16_t, std::string> tags;
  for (const TPhysicalElement& chassis : ListChassis(host).fAll) {
    if (chassis.fStructure) tags.emplace(chassis.fStructure->GetHandle(), chassis.fTag);
  }
  for (const TPhysicalElement& board : ListBoards(host).fAll) {
    const auto handle = FirmwareNumber<std::uint16_t>(0x0B)(board);
    if (!handle) continue;
    const auto tag = tags.find(*handle);
    if (tag == tags.end()) continue;
    ties.push_back({{kChassisClassName, tag->second}, {kCardClassName, board.fTag}});
  }
}

/// The class is not there if only other parts were asked for.
void AddMemorySlots(const ICIMNamespace& ns, std::vector<TTie>& ties) {
  const std::string name = "VORNSG_MemorySlot";
  for (const auto& each : NModel::WithSubclasses(ns.GetClass("VORNSG_PhysicalElement", {}))) {
    if (each->GetName({}) != name) continue;
    NModel::ForEachInstance(*each, [&](const ICIMInstance& slot) {
      const auto array = slot.GetProperty("MemoryArray", {})->GetValue();
      if (array.IsNull()) return;
      const auto tag = slot.GetProperty("Tag", {})->GetValue();
      ties.push_back({{"VORNSG_MemoryArray", array}, {name, tag}});
    });
  }
}

TInstances<TTie> ListContents(const THost& host, const ICIMNamespace& ns) {
  TInstances<TTie> ties;
  AddBoards(host, ties.fAll);
  AddMemorySlots(ns, ties.fAll);
  if (ties.fAll.empty()) ties.Miss("no part names the part that it is in");
  return ties;
}

}  // namespace

TClass ContainerClass() {
  return THostTable<TTie>{
      "VORNSG_Container",
      "Ties a part to the part that it is in.",
      ListContents,
      {{"GroupComponent", "What has the part in it.", &TTie::fFirst, kKey,
        TRefersTo{"VORNSG_PhysicalPackage"}},
       {"PartComponent", "The part.", &TTie::fSecond, kKey, TRefersTo{"VORNSG_PhysicalElement"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
