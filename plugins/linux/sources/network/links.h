// SPDX-License-Identifier: Apache-2.0
/// What the running kernel says about its network interfaces and sysfs does not, or only in many
/// files.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_LINKS_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_LINKS_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <linux/if_link.h>

#include "sources/host.h"

namespace NVORNQDX20 {

struct TLink {
  unsigned fIndex;
  std::string fName;
  std::string fKind;              ///< Such as "veth"; empty for hardware.
  std::string fPermanentAddress;  ///< The bytes of the hardware's address; empty if not known.
  std::optional<std::uint16_t> fVLAN;
  unsigned fParent;  ///< The index of the interface below it; 0 for none.
  std::optional<rtnl_link_stats64> fStatistics;
};

/// Parses a dump of RTM_GETLINK.
std::map<unsigned, TLink> ParseLinks(std::string_view dump);

/// The links of the running machine; none below another root, or if the kernel gives none.
struct TLinks {
  TLinks() = default;
  explicit TLinks(const THost& host);

  /// Returns null for an interface that netlink does not know, or knows by another index, because
  /// sysfs is that of another network namespace.
  const TLink* Find(const std::string& name, std::uint64_t index) const;
  /// Returns an empty name for an unknown index.
  std::string NameOf(unsigned index) const;

  std::map<unsigned, TLink> fByIndex;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_LINKS_H_
