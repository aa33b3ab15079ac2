// SPDX-License-Identifier: Apache-2.0
/// The IP addresses of the machine: of the running kernel, or of the copied tables
/// /proc/net/fib_trie and if_inet6.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_ADDRESSES_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_ADDRESSES_H_

#include <qdxdescribe/table.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "links.h"
#include "routes.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// How an address was assigned, with the numbers of CIM_IPProtocolEndpoint.AddressOrigin.
enum class EAddressOrigin : std::uint16_t {
  kUnknown = 0,
  kNotApplicable = 2,
  kStatic = 3,
  kDHCP = 4,
  kIPv4LinkLocal = 6,
  kDHCPv6 = 7,
  kIPv6AutoConfig = 8,
  kLinkLocal = 10
};

struct TIPAddress {
  bool fIsIPv6 = false;
  std::string fAddress;  ///< "192.0.2.1"
  unsigned fPrefixLength = 0;
  std::string fPort;  ///< Empty if the tables do not tell it.
  EAddressOrigin fOrigin = EAddressOrigin::kUnknown;
};

std::vector<TIPAddress> ParseIfInet6(std::string_view table);
/// The table has no ports and no lengths of prefixes; the networks to which the machine is
/// connected give them.
std::vector<TIPAddress> ParseFibTrie(std::string_view table, const std::vector<TRoute>& routes);
/// Parses a dump of RTM_GETADDR.
std::vector<TIPAddress> ParseAddressDump(std::string_view dump, const TLinks& links);

struct TIPAddresses {
  explicit TIPAddresses(const THost& host);

  TInstances<TIPAddress> fAll;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_ADDRESSES_H_
