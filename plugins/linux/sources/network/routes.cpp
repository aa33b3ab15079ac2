// SPDX-License-Identifier: Apache-2.0
#include "routes.h"

#include <algorithm>
#include <functional>

#include <linux/ipv6_route.h>
#include <linux/route.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "netlink.h"
#include "sources/fields.h"
#include "tables.h"

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kIPv4Size = 4;
constexpr std::size_t kIPv6Size = 16;
/// Kernels end the IPv6 table by a route of this metric that refuses everything.
constexpr std::uint32_t kLastMetric = 0xffffffff;

/// The kernel prints the four bytes as one number of its processor.
std::string BytesOfNumber(std::string_view digits, bool isBigEndian) {
  std::string bytes = BytesOfHex(digits);
  if (!isBigEndian) std::reverse(bytes.begin(), bytes.end());
  return bytes.size() == kIPv4Size ? bytes : std::string();
}

/// Returns the length of the prefix that a mask stands for; null if it is no such mask.
std::optional<unsigned> PrefixLengthOf(const std::string& mask) {
  unsigned length = 0;
  while (length < mask.size() * 8 &&
         (static_cast<unsigned char>(mask[length / 8]) & (0x80U >> length % 8)) != 0) {
    ++length;
  }
  if (mask.empty() || MaskText(length) != AddressText(mask)) return std::nullopt;
  return length;
}

std::vector<std::vector<std::string_view>> RowsOf(std::string_view table) {
  std::vector<std::vector<std::string_view>> rows;
  while (!table.empty()) rows.push_back(WordsOf(TakeLine(table)));
  return rows;
}

/// A tree can be the copy of a machine with the other order of bytes: its masks tell.
bool IsBigEndian(const std::vector<std::vector<std::string_view>>& rows, std::size_t maskColumn) {
  return std::any_of(rows.begin(), rows.end(), [maskColumn](const auto& row) {
    return row.size() > maskColumn && !PrefixLengthOf(BytesOfNumber(row[maskColumn], false)) &&
           PrefixLengthOf(BytesOfNumber(row[maskColumn], true));
  });
}

unsigned TypeOf(std::uint64_t flags) {
  return (flags & RTF_REJECT) != 0 ? RTN_UNREACHABLE : RTN_UNICAST;
}

/// An address of zeros means none.
std::string NextHopOf(const std::string& bytes) {
  return bytes.find_first_not_of('\0') == std::string::npos ? std::string() : bytes;
}

bool IsOfNetworks(const TRoute& route) {
  const bool isMulticast = route.fIsIPv6 && route.fDestination.front() == '\xff';
  const bool isLast = route.fIsIPv6 && route.fMetric == kLastMetric && route.fType != RTN_UNICAST;
  return !isMulticast && !isLast;
}

/// Reads the next hops of a route with several.
void ForEachHop(std::string_view hops,
                const std::function<void(int index, std::string_view attributes)>& take) {
  while (const auto hop = FrontOf<rtnexthop>(hops)) {
    const std::size_t size = hop->rtnh_len;
    if (size < sizeof *hop || size > hops.size()) return;
    take(hop->rtnh_ifindex, hops.substr(sizeof *hop, size - sizeof *hop));
    hops.remove_prefix(std::min((size + 3) / 4 * 4, hops.size()));
  }
}

/// A next hop of the other family has the family before the address.
std::string AddressAfterFamily(std::string_view value) {
  return std::string(value.substr(std::min(sizeof(std::uint16_t), value.size())));
}

void TakeHop(unsigned type, std::string_view value, TRoute& route) {
  if (type == RTA_GATEWAY) route.fNextHop = value;
  if (type == RTA_VIA) route.fNextHop = AddressAfterFamily(value);
}

void AddDumped(const rtmsg& header, std::string_view attributes, const TLinks& links,
               std::vector<TRoute>& routes) {
  TRoute route;
  std::string_view hops;
  route.fIsIPv6 = header.rtm_family == AF_INET6;
  route.fDestination.assign(route.fIsIPv6 ? kIPv6Size : kIPv4Size, '\0');
  route.fPrefixLength = header.rtm_dst_len;
  route.fTable = header.rtm_table;
  route.fProtocol = header.rtm_protocol;
  route.fType = header.rtm_type;
  ForEachAttribute(attributes, [&](unsigned type, std::string_view value) {
    const std::uint32_t number = FrontOf<std::uint32_t>(value).value_or(0);
    if (type == RTA_DST && value.size() == route.fDestination.size()) route.fDestination = value;
    if (type == RTA_OIF) route.fPort = links.NameOf(number);
    if (type == RTA_PRIORITY) route.fMetric = number;
    if (type == RTA_TABLE) route.fTable = number;
    if (type == RTA_PREFSRC) route.fSource = value;
    if (type == RTA_MULTIPATH) hops = value;
    TakeHop(type, value, route);
  });
  const bool isKept =
      route.fType == RTN_UNICAST || (route.fType >= RTN_BLACKHOLE && route.fType <= RTN_PROHIBIT);
  const bool isCopy = (header.rtm_flags & static_cast<unsigned>(RTM_F_CLONED)) != 0;
  if (!isKept || isCopy || route.fTable == RT_TABLE_LOCAL || !IsOfNetworks(route)) return;
  if (hops.empty()) routes.push_back(route);
  ForEachHop(hops, [&](int index, std::string_view hop) {
    route.fPort = links.NameOf(static_cast<unsigned>(index));
    route.fNextHop.clear();
    ForEachAttribute(hop,
                     [&](unsigned type, std::string_view value) { TakeHop(type, value, route); });
    routes.push_back(route);
  });
}

TInstances<TRoute> ReadRouteTables(const THost& host) {
  const TText first = ReadNetTable(host, "route");
  const TText second = ReadNetTable(host, "ipv6_route");
  TInstances<TRoute> all(first.map([](const std::string& table) { return ParseRoutes(table); }));
  if (!second && !IsNetTableAbsent(host, "ipv6_route")) all.Miss(second.GetReason());
  for (TRoute& route : ParseIPv6Routes(second.ValueOr(""))) all.fAll.push_back(std::move(route));
  return all;
}

}  // namespace

std::vector<TRoute> ParseRoutes(std::string_view table) {
  enum EColumn { kPort, kDestination, kNextHop, kFlags, kMetric = 6, kMask, kColumns };
  const auto rows = RowsOf(table);
  const bool isBigEndian = IsBigEndian(rows, kMask);
  std::vector<TRoute> routes;
  routes.reserve(rows.size());
  for (const auto& row : rows) {
    if (row.size() < kColumns) continue;
    TRoute route;
    route.fDestination = BytesOfNumber(row[kDestination], isBigEndian);
    const auto length = PrefixLengthOf(BytesOfNumber(row[kMask], isBigEndian));
    const auto flags = ParseHex(row[kFlags]);
    if (route.fDestination.empty() || !length || !flags) continue;
    route.fPrefixLength = *length;
    if (row[kPort] != "*") route.fPort = PrintableText(row[kPort]);
    route.fNextHop = NextHopOf(BytesOfNumber(row[kNextHop], isBigEndian));
    route.fMetric = ParseNumber<std::uint32_t>(row[kMetric]).value_or(0);
    route.fType = TypeOf(*flags);
    routes.push_back(std::move(route));
  }
  return routes;
}

std::vector<TRoute> ParseIPv6Routes(std::string_view table) {
  enum EColumn { kDestination, kLength, kNextHop = 4, kMetric, kFlags = 8, kPort, kColumns };
  std::vector<TRoute> routes;
  while (!table.empty()) {
    const auto row = WordsOf(TakeLine(table));
    if (row.size() < kColumns) continue;
    TRoute route;
    route.fIsIPv6 = true;
    route.fDestination = BytesOfHex(row[kDestination]);
    const auto length = ParseHex(row[kLength]);
    const auto flags = ParseHex(row[kFlags]);
    const auto metric = ParseHex(row[kMetric]);
    if (route.fDestination.size() != kIPv6Size || !length || !flags || !metric) continue;
    route.fPrefixLength = static_cast<unsigned>(std::min(*length, std::uint64_t{128}));
    route.fNextHop = NextHopOf(BytesOfHex(row[kNextHop]));
    route.fPort = PrintableText(row[kPort]);
    route.fMetric = static_cast<std::uint32_t>(*metric);
    route.fType = TypeOf(*flags);
    const bool isKernels = (*flags & (RTF_LOCAL | RTF_ANYCAST | RTF_CACHE)) != 0;
    if (!isKernels && IsOfNetworks(route)) routes.push_back(std::move(route));
  }
  return routes;
}

std::vector<TRoute> ParseRouteDump(std::string_view dump, const TLinks& links) {
  std::vector<TRoute> routes;
  ForEachMessage(dump, [&](unsigned type, std::string_view payload) {
    const auto header = FrontOf<rtmsg>(payload);
    if (type != RTM_NEWROUTE || !header) return;
    if (header->rtm_family != AF_INET && header->rtm_family != AF_INET6) return;
    AddDumped(*header, AttributesAfter(payload, sizeof *header), links, routes);
  });
  return routes;
}

TRoutes::TRoutes(const THost& host) {
  if (host.IsThisMachine()) {
    const auto dump = DumpNetlink(RTM_GETROUTE);
    if (dump) {
      fAll = ParseRouteDump(*dump, host.Shared<TLinks>());
      return;
    }
  }
  fAll = ReadRouteTables(host);
}

}  // namespace NVORNQDX20
