// SPDX-License-Identifier: Apache-2.0
/// The virtual LANs of the machine.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_VLANS_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_VLANS_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ports.h"

namespace NVORNQDX20 {

struct TVLAN {
  std::string fInterface;  ///< "eth0.5"
  TReading<std::uint16_t> fID;
  TText fParent;  ///< "eth0"
};

/// Parses /proc/net/vlan/config, with rows such as "eth0.5 | 5 | eth0", by interface.
std::map<std::string, TVLAN> ParseVLANs(std::string_view table);

struct TVLANs {
  explicit TVLANs(const THost& host);

  TInstances<TVLAN> fAll;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_VLANS_H_
