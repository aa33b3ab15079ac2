// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_NextHopIPRoute: routes to networks and other machines.
#include <algorithm>
#include <iterator>

#include <linux/rtnetlink.h>

#include "classes/catalogue.h"
#include "sources/network/routes.h"
#include "sources/network/tables.h"

namespace NVORNQDX20 {
namespace {

constexpr TConstantEnumeration kRouteAddressTypes = {{0, "Unknown"}, {1, "IPv4"}, {2, "IPv6"}};
constexpr TConstantEnumeration kDerivations = {{0, "Unknown"},      {1, "Other"}, {2, "Connected"},
                                               {3, "User-Defined"}, {4, "IGRP"},  {5, "EIGRP"},
                                               {6, "RIP"},          {7, "Hello"}, {8, "EGP"},
                                               {9, "BGP"},          {10, "ISIS"}, {11, "OSPF"}};
/// The numbers of the kernel.
constexpr TConstantEnumeration kActions = {{RTN_UNICAST, "Forward"},
                                           {RTN_BLACKHOLE, "Blackhole"},
                                           {RTN_UNREACHABLE, "Unreachable"},
                                           {RTN_PROHIBIT, "Prohibit"}};

struct TProtocol {
  unsigned fNumber;
  std::uint16_t fDerivation;
  const char* fOther;
};

/// The numbers of the kernel, which routing daemons have agreed on.
constexpr TProtocol kProtocols[] = {{RTPROT_UNSPEC, 0, ""},   {RTPROT_REDIRECT, 1, "redirect"},
                                    {RTPROT_KERNEL, 2, ""},   {RTPROT_BOOT, 3, ""},
                                    {RTPROT_STATIC, 3, ""},   {RTPROT_RA, 1, "ra"},
                                    {RTPROT_DHCP, 1, "dhcp"}, {RTPROT_BGP, 9, ""},
                                    {RTPROT_ISIS, 10, ""},    {RTPROT_OSPF, 11, ""},
                                    {RTPROT_RIP, 6, ""},      {RTPROT_EIGRP, 5, ""}};

/// Null for a protocol that has no agreed number.
const TProtocol* FindProtocol(const TRoute& route) {
  const auto* const found =
      std::find_if(std::begin(kProtocols), std::end(kProtocols),
                   [&route](const TProtocol& each) { return each.fNumber == route.fProtocol; });
  return found == std::end(kProtocols) ? nullptr : found;
}

/// Tables do not tell who made a route; one without a next hop leads to a connected network.
std::uint16_t Derivation(const TRoute& route) {
  const TProtocol* const known = FindProtocol(route);
  if (known == nullptr) return 1;
  if (known->fDerivation == 0 && route.fNextHop.empty() && !route.fPort.empty()) return 2;
  return known->fDerivation;
}

std::string OtherDerivation(const TRoute& route) {
  if (Derivation(route) != 1) return {};
  const TProtocol* const known = FindProtocol(route);
  return known == nullptr ? "protocol " + std::to_string(route.fProtocol) : known->fOther;
}

/// What distinguishes a route from all others.
std::string IDOf(const TRoute& route) {
  std::string id = std::to_string(route.fTable) + " " + AddressText(route.fDestination) + "/" +
                   std::to_string(route.fPrefixLength);
  for (const std::string& part : {AddressText(route.fNextHop), route.fPort}) {
    if (!part.empty()) id += " " + part;
  }
  return id + " " + std::to_string(route.fMetric);
}

std::string Mask(const TRoute& route) {
  return route.fIsIPv6 ? std::string() : MaskText(route.fPrefixLength);
}

}  // namespace

TClass NextHopIPRouteClass() {
  return THostTable<TRoute>{
      "VORNSG_NextHopIPRoute",
      "A route: where packets to a network are sent next.",
      [](const THost& host) { return host.Shared<TRoutes>().fAll; },
      {{"InstanceID", "Tells the route from all others.", IDOf, kKey, ESecret::kAddress},
       {"DestinationAddress", "The network that it leads to; only zeros for the default route.",
        [](const TRoute& each) { return AddressText(each.fDestination); }, ESecret::kAddress},
       {"DestinationMask", "The mask of an IPv4 network; empty for IPv6.", Mask},
       {"PrefixLength", "The bits of the address that name the network.",
        [](const TRoute& each) { return static_cast<std::uint8_t>(each.fPrefixLength); }},
       {"AddressType", "The version of the protocol.",
        [](const TRoute& each) -> std::uint16_t { return each.fIsIPv6 ? 2 : 1; },
        kRouteAddressTypes},
       {"NextHopAddress", "The router that it leads over; empty for a connected network.",
        [](const TRoute& each) { return AddressText(each.fNextHop); }, ESecret::kAddress},
       {"PortName", "The interface that it leads over; empty if it leads nowhere.", &TRoute::fPort},
       {"PreferredSourceAddress", "The own address that packets get; empty if the kernel chooses.",
        [](const TRoute& each) { return AddressText(each.fSource); }, ESecret::kAddress},
       // Wider than the schema's uint16, since the kernel's metrics have 32 bits.
       {"RouteMetric", "Of two routes to a network, the lower one is taken.", &TRoute::fMetric},
       {"Table", "The number of the kernel's table: 254 is the main one.", &TRoute::fTable},
       {"Action", "What happens to the packets.",
        [](const TRoute& each) { return static_cast<std::uint16_t>(each.fType); }, kActions},
       {"RouteDerivation", "Who made the route.", Derivation, kDerivations},
       {"OtherDerivation", "Who, if it is another one, as in \"dhcp\"; else empty.",
        OtherDerivation}}};
}

}  // namespace NVORNQDX20
