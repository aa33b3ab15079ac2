// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_BridgePortGroup: bridges, which join networks.
#include "port_group.h"
#include "sources/network/ports.h"

namespace NVORNQDX20 {
namespace {

struct TBridge : TPortGroup, TFiles {
  TReading<std::vector<std::string>> fMembers;
};

TInstances<TBridge> ListBridges(const THost& host) {
  const TInstances<TPort>& ports = host.Shared<TPorts>().fAll;
  TInstances<TBridge> bridges({}, ports.fReason);
  for (const TPort& port : ports.fAll) {
    if (!port.IsOfKind("bridge")) continue;
    bridges.fAll.push_back({{port.fInterface},
                            host.In("/sys/class/net").In(port.fInterface).In("bridge"),
                            MembersOfBridge(host, port.fInterface)});
  }
  return bridges;
}

/// 2 means that a program of the user runs the protocol.
TReading<bool> ReadSpanningTree(const TBridge& bridge) {
  return bridge.ReadNumber("stp_state").map([](std::uint64_t state) { return state != 0; });
}

}  // namespace

TClass BridgePortGroupClass() {
  return THostTable<TBridge>{
      "VORNSG_BridgePortGroup",
      "A bridge: interfaces whose networks are joined to one.",
      ListBridges,
      {{"Members", "The interfaces that are joined.", &TBridge::fMembers},
       {"BridgeID", "Priority and address of the bridge.", FileLine("bridge_id"),
        ESecret::kAddress},
       {"RootID", "Those of the root of the spanning tree.", FileLine("root_id"),
        ESecret::kAddress},
       {"SpanningTree", "Whether it runs the spanning tree protocol.", ReadSpanningTree}}}
      .DerivedFrom(PortGroupTable());
}

}  // namespace NVORNQDX20
