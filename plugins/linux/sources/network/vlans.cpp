// SPDX-License-Identifier: Apache-2.0
#include "vlans.h"

#include "links.h"
#include "tables.h"

namespace NVORNQDX20 {

std::map<std::string, TVLAN> ParseVLANs(std::string_view table) {
  std::map<std::string, TVLAN> vlans;
  while (!table.empty()) {
    const std::string_view line = TakeLine(table);
    const std::size_t first = line.find('|');
    const std::size_t second = line.find('|', first + 1);
    if (first == std::string_view::npos || second == std::string_view::npos) continue;
    const std::string id = PrintableText(line.substr(first + 1, second - first - 1));
    const auto number = ParseNumber<std::uint16_t>(id);
    if (!number) continue;
    std::string name = PrintableText(line.substr(0, first));
    TVLAN vlan{name, *number, PrintableText(line.substr(second + 1))};
    vlans.emplace(std::move(name), std::move(vlan));
  }
  return vlans;
}

TVLANs::TVLANs(const THost& host) {
  const TText table = ReadNetTable(host, "vlan/config");
  std::map<std::string, TVLAN> vlans = ParseVLANs(table.ValueOr(""));
  const TLinks& links = host.Shared<TLinks>();
  // The table needs a module of the kernel, which need not be there.
  for (const TPort& port : host.Shared<TPorts>().fAll.fAll) {
    if (!port.IsOfKind("vlan") || vlans.count(port.fInterface) != 0) continue;
    TVLAN vlan{port.fInterface, Missing(table.GetReason()), Missing(table.GetReason())};
    const TLink* const link = links.Find(port.fInterface, port.fIndex);
    if (link != nullptr && link->fVLAN) vlan.fID = *link->fVLAN;
    const std::string parent = link == nullptr ? "" : links.NameOf(link->fParent);
    if (!parent.empty()) vlan.fParent = parent;
    vlans.emplace(port.fInterface, std::move(vlan));
  }
  for (auto& [name, vlan] : vlans) fAll.fAll.push_back(std::move(vlan));
  if (!fAll.fAll.empty()) return;
  fAll.fReason = host.Shared<TPorts>().fAll.fReason;
  // The kernel itself lists all VLANs, also to users who may not read the table.
  const bool isKnown = !links.fByIndex.empty();
  if (!isKnown && table.GetReason().IsError()) fAll.Miss(table.GetReason());
}

}  // namespace NVORNQDX20
