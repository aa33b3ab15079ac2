// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_IPProtocolEndpoint: IP addresses of the machine.
#include "access_point.h"
#include "sources/network/tables.h"

namespace NVORNQDX20 {
namespace {

struct TIPEndpoint : TAccessPoint, TIPAddress {};

constexpr TConstantEnumeration kEndpointAddressTypes = {{0, "Unknown"}, {1, "IPv4"}, {2, "IPv6"}};
constexpr TConstantEnumeration kInterfaceTypes = {{4096, "IPv4"}, {4097, "IPv6"}};
constexpr TConstantEnumeration kOrigins = {
    {0, "Unknown"},        {1, "Other"},     {2, "Not Applicable"},  {3, "Static"},
    {4, "DHCP"},           {5, "BOOTP"},     {6, "IPv4 Link Local"}, {7, "DHCPv6"},
    {8, "IPv6AutoConfig"}, {9, "Stateless"}, {10, "Link Local"}};

TInstances<TIPEndpoint> ListIPEndpoints(const THost& host) {
  const TInstances<TIPAddress>& all = host.Shared<TIPAddresses>().fAll;
  TInstances<TIPEndpoint> endpoints({}, all.fReason);
  endpoints.fAll.reserve(all.fAll.size());
  for (const TIPAddress& address : all.fAll) {
    endpoints.fAll.push_back({{NameOf(address)}, address});
  }
  return endpoints;
}

/// Empty for the other family.
std::string AddressIf(const TIPEndpoint& endpoint, bool isIPv6) {
  return endpoint.fIsIPv6 == isIPv6 ? endpoint.fAddress : std::string();
}

TText PortName(const TIPEndpoint& endpoint) {
  if (endpoint.fPort.empty()) return Missing("the tables do not tell which port has it");
  return endpoint.fPort;
}

}  // namespace

TClass IPProtocolEndpointClass() {
  return THostTable<TIPEndpoint>{
      kIPEndpointClassName,
      "An IP address of this machine.",
      ListIPEndpoints,
      {{"IPv4Address", "The address; empty if it is one of IPv6.",
        [](const TIPEndpoint& each) { return AddressIf(each, false); }, ESecret::kAddress},
       {"IPv6Address", "The address; empty if it is one of IPv4.",
        [](const TIPEndpoint& each) { return AddressIf(each, true); }, ESecret::kAddress},
       {"AddressType", "The version of the protocol.",
        [](const TIPEndpoint& each) -> std::uint16_t { return each.fIsIPv6 ? 2 : 1; },
        kEndpointAddressTypes},
       {"ProtocolIFType", "The same, with the numbers of all protocols.",
        [](const TIPEndpoint& each) -> std::uint16_t { return each.fIsIPv6 ? 4097 : 4096; },
        kInterfaceTypes},
       {"SubnetMask", "The mask of the network of IPv4; empty for IPv6.",
        [](const TIPEndpoint& each) {
          return each.fIsIPv6 ? std::string() : MaskText(each.fPrefixLength);
        }},
       {"PrefixLength", "The bits of the address that name the network.",
        [](const TIPEndpoint& each) { return static_cast<std::uint8_t>(each.fPrefixLength); }},
       {"AddressOrigin",
        "How it was assigned: one that lasts for ever is taken for static, one with a lifetime for "
        "one of a server or router.",
        [](const TIPEndpoint& each) { return static_cast<std::uint16_t>(each.fOrigin); }, kOrigins},
       {"PortName", "The interface that has it.", PortName}}}
      .DerivedFrom(ProtocolEndpointTable());
}

}  // namespace NVORNQDX20
