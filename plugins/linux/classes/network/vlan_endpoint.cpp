// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_VLANEndpoint: virtual LANs that the machine takes part in.
#include "access_point.h"
#include "sources/network/vlans.h"

namespace NVORNQDX20 {
namespace {

struct TVLANEndpoint : TAccessPoint, TVLAN {};

TInstances<TVLANEndpoint> ListVLANEndpoints(const THost& host) {
  const TInstances<TVLAN>& all = host.Shared<TVLANs>().fAll;
  TInstances<TVLANEndpoint> endpoints({}, all.fReason);
  endpoints.fAll.reserve(all.fAll.size());
  for (const TVLAN& vlan : all.fAll) endpoints.fAll.push_back({{vlan.fInterface}, vlan});
  return endpoints;
}

}  // namespace

TClass VLANEndpointClass() {
  return THostTable<TVLANEndpoint>{
      kVLANEndpointClassName,
      "A virtual LAN that this machine takes part in, by the name of its interface.",
      ListVLANEndpoints,
      {{"VLANID", "The number of the virtual LAN.", &TVLANEndpoint::fID},
       {"PortName", "The interface whose link carries it.", &TVLANEndpoint::fParent}}}
      .DerivedFrom(ProtocolEndpointTable());
}

}  // namespace NVORNQDX20
