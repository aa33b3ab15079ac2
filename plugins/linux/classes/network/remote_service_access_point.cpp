// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_RemoteServiceAccessPoint: the servers and routers that the machine is set up to use.
#include <set>
#include <string_view>

#include "access_point.h"
#include "sources/network/resolver.h"
#include "sources/network/routes.h"
#include "sources/network/tables.h"

namespace NVORNQDX20 {
namespace {

constexpr std::uint16_t kDefaultGateway = 2;
constexpr std::uint16_t kDNSServer = 3;

constexpr TConstantEnumeration kContexts = {{kDefaultGateway, "Default Gateway"},
                                            {kDNSServer, "DNS Server"}};
constexpr TConstantEnumeration kFormats = {{1, "Other"}, {3, "IPv4 Address"}, {4, "IPv6 Address"}};

struct TRemotePoint : TAccessPoint {
  std::string fAddress;
  std::uint16_t fContext;
};

TInstances<TRemotePoint> ListPoints(const THost& host) {
  TInstances<TRemotePoint> points;
  std::set<std::string> names;
  const auto add = [&](std::uint16_t context, const char* role, const std::string& address) {
    std::string name = role + address;
    if (address.empty() || !names.insert(name).second) return;
    points.fAll.push_back({{std::move(name)}, address, context});
  };
  const TInstances<TRoute>& routes = host.Shared<TRoutes>().fAll;
  for (const TRoute& route : routes.fAll) {
    if (route.fPrefixLength == 0) add(kDefaultGateway, "gateway ", AddressText(route.fNextHop));
  }
  const TReading<TResolver>& resolver = host.Shared<TResolverFile>().fResolver;
  if (resolver) {
    for (const std::string& server : resolver->fServers) add(kDNSServer, "dns ", server);
  }
  for (const TReason& reason : {routes.fReason, resolver.GetReason()}) {
    if (!reason.empty()) points.Miss(reason);
  }
  return points;
}

std::uint16_t FormatOf(const TRemotePoint& point) {
  if (point.fAddress.find(':') != std::string::npos) return 4;
  return BytesOfIPv4(point.fAddress).empty() ? 1 : 3;
}

}  // namespace

TClass RemoteServiceAccessPointClass() {
  return THostTable<TRemotePoint>{
      "VORNSG_RemoteServiceAccessPoint",
      "A router or server of the network that this machine uses.",
      ListPoints,
      {{"AccessInfo", "Its address.", &TRemotePoint::fAddress, ESecret::kAddress},
       {"InfoFormat", "The form of the address.", FormatOf, kFormats},
       {"AccessContext", "What it is used for.", &TRemotePoint::fContext, kContexts}}}
      .DerivedFrom(AccessPointTable());
}

}  // namespace NVORNQDX20
