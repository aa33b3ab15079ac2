// SPDX-License-Identifier: Apache-2.0
/// The routes to other machines and networks: of the running kernel, or of the copied tables
/// /proc/net/route and ipv6_route.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_ROUTES_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_ROUTES_H_

#include <qdxdescribe/table.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "links.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// One hop: a route with several next hops is as many of these.
struct TRoute {
  bool fIsIPv6 = false;
  std::string fDestination;  ///< The bytes of the address.
  unsigned fPrefixLength = 0;
  std::string fNextHop;  ///< The bytes of the address; empty for a network that is connected.
  std::string fPort;     ///< Empty for a route that leads nowhere.
  std::string fSource;   ///< The bytes of the machine's own address for it; empty if not told.
  std::uint32_t fMetric = 0;
  std::uint32_t fTable = 254;  ///< The table "main".
  unsigned fProtocol = 0;      ///< Who made it: RTPROT_KERNEL and others; 0 if not told.
  unsigned fType = 1;          ///< RTN_UNICAST, RTN_BLACKHOLE and others.
};

std::vector<TRoute> ParseRoutes(std::string_view table);
std::vector<TRoute> ParseIPv6Routes(std::string_view table);
/// Parses a dump of RTM_GETROUTE.
std::vector<TRoute> ParseRouteDump(std::string_view dump, const TLinks& links);

/// The routes of the machine. Those to its own addresses, and to broadcast and multicast addresses,
/// which the kernel keeps by itself, are left out.
struct TRoutes {
  explicit TRoutes(const THost& host);

  TInstances<TRoute> fAll;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_ROUTES_H_
