// SPDX-License-Identifier: Apache-2.0
#include "addresses.h"

#include <map>
#include <set>
#include <utility>

#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "netlink.h"
#include "sources/fields.h"
#include "tables.h"

namespace NVORNQDX20 {
namespace {

using EOrigin = EAddressOrigin;

bool StartsWith(const std::string& text, std::string_view start) {
  return text.compare(0, start.size(), start) == 0;
}

/// A lifetime shows that a server or a router gave the address, and hosts take 128 bits from a
/// server only.
EOrigin OriginOf(const TIPAddress& address, bool isPermanent) {
  if (address.fAddress == "::1" || StartsWith(address.fAddress, "127.")) {
    return EOrigin::kNotApplicable;
  }
  if (StartsWith(address.fAddress, "169.254.")) return EOrigin::kIPv4LinkLocal;
  if (StartsWith(address.fAddress, "fe80:")) return EOrigin::kLinkLocal;
  if (isPermanent) return EOrigin::kStatic;
  if (!address.fIsIPv6) return EOrigin::kDHCP;
  return address.fPrefixLength == 128 ? EOrigin::kDHCPv6 : EOrigin::kIPv6AutoConfig;
}

std::uint32_t NumberOf(const std::string& bytes) {
  std::uint32_t number = 0;
  for (const char byte : bytes) number = number << 8U | static_cast<unsigned char>(byte);
  return number;
}

/// The IPv4 networks to which the machine is connected.
class TConnectedNetworks {
 public:
  explicit TConnectedNetworks(const std::vector<TRoute>& routes) {
    for (const TRoute& route : routes) {
      const bool isConnected = !route.fIsIPv6 && route.fNextHop.empty() && !route.fPort.empty();
      if (isConnected) Add(route.fDestination, route.fPrefixLength, route.fPort);
    }
  }

  void Add(const std::string& network, unsigned length, const std::string& port) {
    if (length > 0 && length <= 32) fPorts.try_emplace({length, NumberOf(network)}, port);
  }

  /// Sets port and prefix of the smallest network that has the address.
  void Complete(const std::string& bytes, TIPAddress& address) const {
    for (unsigned length = 32; length > 0; --length) {
      const std::uint32_t network = NumberOf(bytes) & ~std::uint32_t{0} << (32 - length);
      const auto found = fPorts.find({length, network});
      if (found == fPorts.end()) continue;
      address.fPrefixLength = length;
      address.fPort = found->second;
      return;
    }
  }

 private:
  std::map<std::pair<unsigned, std::uint32_t>, std::string> fPorts;
};

/// An entry of fib_trie: "|-- 192.0.2.1", and on the next lines "/32 host LOCAL".
struct TTrieEntry {
  std::string fBytes;
  unsigned fLength;
};

/// Returns the machine's own networks and addresses, each once: two tables can have the same.
std::vector<TTrieEntry> LocalEntries(std::string_view table) {
  std::vector<TTrieEntry> entries;
  std::set<std::pair<std::string, unsigned>> known;
  std::string bytes;
  while (!table.empty()) {
    const auto words = WordsOf(TakeLine(table));
    if (words.size() == 2 && words[0] == "|--") bytes = BytesOfIPv4(std::string(words[1]));
    const bool isLocal = words.size() >= 3 && words[0].front() == '/' && words[2] == "LOCAL";
    if (!isLocal || bytes.empty()) continue;
    const auto length = ParseNumber<unsigned>(words[0].substr(1));
    if (length && *length <= 32 && known.emplace(bytes, *length).second) {
      entries.push_back({bytes, *length});
    }
  }
  return entries;
}

TInstances<TIPAddress> ReadAddressTables(const THost& host) {
  const TText trie = ReadNetTable(host, "fib_trie");
  const TText second = ReadNetTable(host, "if_inet6");
  TInstances<TIPAddress> all(trie.map([&host](const std::string& table) {
    return ParseFibTrie(table, host.Shared<TRoutes>().fAll.fAll);
  }));
  if (!second && !IsNetTableAbsent(host, "if_inet6")) all.Miss(second.GetReason());
  for (TIPAddress& address : ParseIfInet6(second.ValueOr(""))) {
    all.fAll.push_back(std::move(address));
  }
  return all;
}

}  // namespace

std::vector<TIPAddress> ParseIfInet6(std::string_view table) {
  enum EColumn { kAddress, kLength = 2, kFlags = 4, kPort, kColumns };
  std::vector<TIPAddress> addresses;
  while (!table.empty()) {
    const auto row = WordsOf(TakeLine(table));
    if (row.size() < kColumns) continue;
    TIPAddress address;
    address.fIsIPv6 = true;
    address.fAddress = AddressText(BytesOfHex(row[kAddress]));
    const auto length = ParseHex(row[kLength]);
    const auto flags = ParseHex(row[kFlags]);
    if (address.fAddress.find(':') == std::string::npos || !flags) continue;
    if (!length || *length > 128) continue;
    address.fPrefixLength = static_cast<unsigned>(*length);
    address.fPort = PrintableText(row[kPort]);
    address.fOrigin = OriginOf(address, (*flags & IFA_F_PERMANENT) != 0);
    addresses.push_back(std::move(address));
  }
  return addresses;
}

std::vector<TIPAddress> ParseFibTrie(std::string_view table, const std::vector<TRoute>& routes) {
  const std::vector<TTrieEntry> entries = LocalEntries(table);
  TConnectedNetworks networks(routes);
  for (const TTrieEntry& entry : entries) {
    // All addresses of a network that is local itself are the machine's own, as 127.0.0.0/8.
    if (entry.fLength < 32) networks.Add(entry.fBytes, entry.fLength, "lo");
  }
  std::vector<TIPAddress> addresses;
  addresses.reserve(entries.size());
  for (const TTrieEntry& entry : entries) {
    if (entry.fLength < 32) continue;
    TIPAddress address;
    address.fAddress = AddressText(entry.fBytes);
    address.fPrefixLength = 32;
    networks.Complete(entry.fBytes, address);
    // The table has no lifetimes.
    const EOrigin origin = OriginOf(address, true);
    address.fOrigin = origin == EOrigin::kStatic ? EOrigin::kUnknown : origin;
    addresses.push_back(std::move(address));
  }
  return addresses;
}

std::vector<TIPAddress> ParseAddressDump(std::string_view dump, const TLinks& links) {
  std::vector<TIPAddress> addresses;
  ForEachMessage(dump, [&](unsigned type, std::string_view payload) {
    const auto header = FrontOf<ifaddrmsg>(payload);
    if (type != RTM_NEWADDR || !header) return;
    TIPAddress address;
    std::string_view own;
    std::string_view other;
    std::uint32_t flags = header->ifa_flags;
    ForEachAttribute(AttributesAfter(payload, sizeof *header),
                     [&](unsigned attribute, std::string_view value) {
                       if (attribute == IFA_LOCAL) own = value;
                       if (attribute == IFA_ADDRESS) other = value;
                       if (attribute == IFA_FLAGS) {
                         flags = FrontOf<std::uint32_t>(value).value_or(flags);
                       }
                     });
    // On a link between two machines, the second is the peer's.
    const std::string_view bytes = own.empty() ? other : own;
    address.fIsIPv6 = header->ifa_family == AF_INET6;
    if (bytes.size() != (address.fIsIPv6 ? 16 : 4)) return;
    address.fAddress = AddressText(bytes);
    address.fPrefixLength = header->ifa_prefixlen;
    address.fPort = links.NameOf(header->ifa_index);
    address.fOrigin = OriginOf(address, (flags & IFA_F_PERMANENT) != 0);
    addresses.push_back(std::move(address));
  });
  return addresses;
}

TIPAddresses::TIPAddresses(const THost& host) {
  if (host.IsThisMachine()) {
    const auto dump = DumpNetlink(RTM_GETADDR);
    if (dump) {
      fAll = ParseAddressDump(*dump, host.Shared<TLinks>());
      return;
    }
  }
  fAll = ReadAddressTables(host);
}

}  // namespace NVORNQDX20
