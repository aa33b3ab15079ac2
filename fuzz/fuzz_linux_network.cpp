// SPDX-License-Identifier: Apache-2.0
// What the kernel tells about the network: what is parsed from any bytes is well-formed. The first
// byte selects tables of /proc/net (0) or dumps of netlink (1).
#include <sources/network/addresses.h>
#include <sources/network/bonds.h>
#include <sources/network/links.h>
#include <sources/network/resolver.h>
#include <sources/network/routes.h>
#include <sources/network/tables.h>
#include <sources/network/vlans.h>

#include "checks.h"

using namespace NVORNQDX20;

namespace {

void CheckRoutes(const std::vector<TRoute>& routes, std::size_t addressSize) {
  for (const TRoute& route : routes) {
    Require(route.fDestination.size() == addressSize && route.fPrefixLength <= addressSize * 8);
    Require(!AddressText(route.fDestination).empty() && PrintableText(route.fPort) == route.fPort);
  }
}

void CheckAddresses(const std::vector<TIPAddress>& addresses) {
  for (const TIPAddress& address : addresses) {
    Require(!address.fAddress.empty() && PrintableText(address.fPort) == address.fPort);
    Require((address.fAddress.find(':') != std::string::npos) == address.fIsIPv6);
  }
}

void CheckNetworkTables(const std::string& text) {
  const std::vector<TRoute> routes = ParseRoutes(text);
  CheckRoutes(routes, 4);
  CheckRoutes(ParseIPv6Routes(text), 16);
  CheckAddresses(ParseFibTrie(text, routes));
  CheckAddresses(ParseIfInet6(text));
  for (const auto& [name, counters] : ParseDeviceTable(text)) Require(PrintableText(name) == name);
  for (const TBondMember& member : ParseBond("bond0", "source", text).fMembers.ValueOr({})) {
    Require(PrintableText(member.fPort) == member.fPort);
  }
  for (const auto& [name, vlan] : ParseVLANs(text)) Require(PrintableText(name) == name);
  for (const std::string& server : ParseResolver(text).fServers) {
    Require(PrintableText(server) == server);
  }
}

void CheckNetlink(const std::string& dump) {
  TLinks links;
  links.fByIndex = ParseLinks(dump);
  for (const auto& [index, link] : links.fByIndex) Require(PrintableText(link.fName) == link.fName);
  CheckAddresses(ParseAddressDump(dump, links));
  for (const TRoute& route : ParseRouteDump(dump, links)) {
    Require(route.fDestination.size() == (route.fIsIPv6 ? 16 : 4));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return RunCheck({CheckNetworkTables, CheckNetlink}, data, size);
}
