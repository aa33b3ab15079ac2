// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_LogicalPortGroup and VORNSG_MemberOfPortGroup: ports that work together, and which
// ports those are.
#include "port_group.h"

#include <map>

#include "network_port.h"
#include "sources/network/bonds.h"

namespace NVORNQDX20 {
namespace {

struct TMembership {
  TInstanceName fGroup;
  TInstanceName fPort;
  TText fMIIStatus;
  TNumber fLinkFailures;
};

/// The members of all bridges.
struct TBridges {
  explicit TBridges(const THost& host) {
    for (const TPort& port : host.Shared<TPorts>().fAll.fAll) {
      if (!port.IsOfKind("bridge")) continue;
      const TFiles files = host.In("/sys/class/net").In(port.fInterface);
      fMembers.emplace(port.fInterface, files.List("brif"));
    }
  }

  std::map<std::string, TReading<std::vector<std::string>>> fMembers;
};

TInstanceName InstanceOf(const TPorts& ports, const std::string& interface) {
  const TPort* const port = ports.Find(interface);
  return {port == nullptr ? kNetworkPortClassName : ClassOfInterface(*port), interface};
}

TInstances<TMembership> ListMembers(const THost& host) {
  const TPorts& ports = host.Shared<TPorts>();
  TInstances<TMembership> members;
  for (const TBond& bond : host.Shared<TBonds>().fAll.fAll) {
    if (!bond.fMembers) members.Miss(bond.fMembers.GetReason());
    for (const TBondMember& member : bond.fMembers.ValueOr({})) {
      members.fAll.push_back({{kPortGroupClassName, bond.fName},
                              InstanceOf(ports, member.fPort),
                              member.fMIIStatus,
                              member.fLinkFailures});
    }
  }
  for (const auto& [bridge, interfaces] : host.Shared<TBridges>().fMembers) {
    if (!interfaces) members.Miss(interfaces.GetReason());
    for (const std::string& member : interfaces.ValueOr({})) {
      members.fAll.push_back({{kPortGroupClassName, bridge},
                              InstanceOf(ports, member),
                              std::string(),
                              Missing("counted of bonds only")});
    }
  }
  return members;
}

}  // namespace

THostTable<TPortGroup> PortGroupTable() {
  return {kPortGroupClassName,
          "Network ports that work together.",
          {{"InstanceID", "The name of the interface that stands for the group.",
            &TPortGroup::fName, kKey},
           {"Name", "The same.", &TPortGroup::fName}}};
}

TClass LogicalPortGroupClass() { return PortGroupTable(); }

TReading<std::vector<std::string>> MembersOfBridge(const THost& host, const std::string& bridge) {
  return host.Shared<TBridges>().fMembers.at(bridge);
}

TClass MemberOfPortGroupClass() {
  return THostTable<TMembership>{
      "VORNSG_MemberOfPortGroup",
      "Ties a port to the group that it is a member of.",
      ListMembers,
      {{"Collection", "The group.", &TMembership::fGroup, kKey, TRefersTo{kPortGroupClassName}},
       {"Member", "The port.", &TMembership::fPort, kKey, TRefersTo{kNetworkPortClassName}},
       {"MIIStatus", "What a bond makes of the member's link, as in \"up\"; empty for a bridge.",
        &TMembership::fMIIStatus},
       {"LinkFailures", "How often the member's link failed.", &TMembership::fLinkFailures,
        kCounter, kVolatile}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
