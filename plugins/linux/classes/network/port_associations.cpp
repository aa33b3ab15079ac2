// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_PortImplementsEndpoint and VORNSG_DeviceIdentity: what ports carry, and which PCI
// functions they are.
#include "access_point.h"
#include "network_port.h"
#include "sources/network/vlans.h"

namespace NVORNQDX20 {
namespace {

struct TTie {
  TInstanceName fOne;
  TInstanceName fOther;
};

TInstances<TTie> ListTies(const THost& host) {
  const TPorts& ports = host.Shared<TPorts>();
  TInstances<TTie> ties;
  const auto add = [&](const std::string& interface, const char* endpoint, std::string name) {
    const TPort* const port = ports.Find(interface);
    if (port == nullptr) return;
    ties.fAll.push_back({{ClassOfInterface(*port), interface}, {endpoint, std::move(name)}});
  };
  for (const TIPAddress& address : host.Shared<TIPAddresses>().fAll.fAll) {
    add(address.fPort, kIPEndpointClassName, NameOf(address));
  }
  for (const TVLAN& vlan : host.Shared<TVLANs>().fAll.fAll) {
    if (vlan.fParent.GetReason().IsError()) ties.Miss(vlan.fParent.GetReason());
    add(vlan.fParent.ValueOr(""), kVLANEndpointClassName, vlan.fInterface);
  }
  return ties;
}

TInstances<TTie> ListFunctions(const THost& host) {
  TInstances<TTie> ties;
  for (const TPort& port : host.Shared<TPorts>().fAll.fAll) {
    const TFiles function = host.In("/sys/bus/pci/devices").In(port.fPCIFunction);
    if (port.fPCIFunction.empty() || function.IsAbsent("")) continue;
    ties.fAll.push_back(
        {{"VORNSG_PCIDevice", port.fPCIFunction}, {ClassOfInterface(port), port.fInterface}});
  }
  return ties;
}

}  // namespace

TClass PortImplementsEndpointClass() {
  return THostTable<TTie>{
      "VORNSG_PortImplementsEndpoint",
      "Ties a port to an address or a virtual LAN that it carries.",
      ListTies,
      {{"Antecedent", "The port.", &TTie::fOne, kKey, TRefersTo{kNetworkPortClassName}},
       {"Dependent", "What it carries.", &TTie::fOther, kKey,
        TRefersTo{kProtocolEndpointClassName}}}}
      .AsAssociation();
}

TClass DeviceIdentityClass() {
  return THostTable<TTie>{
      "VORNSG_DeviceIdentity",
      "Ties a network port to the PCI function that it is.",
      ListFunctions,
      {{"SystemElement", "The PCI function.", &TTie::fOne, kKey, TRefersTo{"VORNSG_PCIDevice"}},
       {"SameElement", "The port.", &TTie::fOther, kKey, TRefersTo{kNetworkPortClassName}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
