// SPDX-License-Identifier: Apache-2.0
#include "links.h"

#include <linux/rtnetlink.h>

#include "netlink.h"

namespace NVORNQDX20 {
namespace {

/// Newer than the headers of older distributions.
constexpr unsigned kPermanentAddress = 54;  // IFLA_PERM_ADDRESS

void ReadKind(std::string_view attributes, TLink& link) {
  std::string_view data;
  ForEachAttribute(attributes, [&](unsigned type, std::string_view value) {
    if (type == IFLA_INFO_KIND) link.fKind = TextOfAttribute(value);
    if (type == IFLA_INFO_DATA) data = value;
  });
  if (link.fKind != "vlan") return;
  ForEachAttribute(data, [&link](unsigned type, std::string_view value) {
    if (type == IFLA_VLAN_ID) link.fVLAN = FrontOf<std::uint16_t>(value);
  });
}

/// Kernels of other versions have more or fewer counters at the end.
rtnl_link_stats64 StatisticsOf(std::string_view value) {
  rtnl_link_stats64 statistics{};
  std::memcpy(&statistics, value.data(), std::min(value.size(), sizeof statistics));
  return statistics;
}

TLink LinkOf(unsigned index, std::string_view attributes) {
  TLink link{index, {}, {}, {}, {}, 0, {}};
  ForEachAttribute(attributes, [&link](unsigned type, std::string_view value) {
    if (type == IFLA_IFNAME) link.fName = TextOfAttribute(value);
    if (type == IFLA_LINKINFO) ReadKind(value, link);
    if (type == IFLA_LINK) link.fParent = FrontOf<unsigned>(value).value_or(0);
    if (type == IFLA_STATS64) link.fStatistics = StatisticsOf(value);
    if (type == kPermanentAddress) link.fPermanentAddress = value;
  });
  return link;
}

}  // namespace

std::map<unsigned, TLink> ParseLinks(std::string_view dump) {
  std::map<unsigned, TLink> links;
  ForEachMessage(dump, [&links](unsigned type, std::string_view payload) {
    const auto header = FrontOf<ifinfomsg>(payload);
    if (type != RTM_NEWLINK || !header) return;
    const auto index = static_cast<unsigned>(header->ifi_index);
    links.emplace(index, LinkOf(index, AttributesAfter(payload, sizeof *header)));
  });
  return links;
}

TLinks::TLinks(const THost& host) {
  if (host.IsThisMachine()) fByIndex = ParseLinks(DumpNetlink(RTM_GETLINK).ValueOr(""));
}

const TLink* TLinks::Find(const std::string& name, std::uint64_t index) const {
  const auto found = fByIndex.find(static_cast<unsigned>(index));
  return found == fByIndex.end() || found->second.fName != name ? nullptr : &found->second;
}

std::string TLinks::NameOf(unsigned index) const {
  const auto found = fByIndex.find(index);
  return found == fByIndex.end() ? std::string() : found->second.fName;
}

}  // namespace NVORNQDX20
