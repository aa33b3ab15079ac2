// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of groups of ports.
#ifndef PLUGINS_LINUX_CLASSES_NETWORK_PORT_GROUP_H_
#define PLUGINS_LINUX_CLASSES_NETWORK_PORT_GROUP_H_

#include <string>
#include <vector>

#include "classes/catalogue.h"

namespace NVORNQDX20 {

struct TPortGroup {
  std::string fName;  ///< Of the interface that stands for the group.
};

inline constexpr const char* kPortGroupClassName = "VORNSG_LogicalPortGroup";

/// The superclass, which has key and name.
THostTable<TPortGroup> PortGroupTable();

/// Returns the members of a bridge.
TReading<std::vector<std::string>> MembersOfBridge(const THost& host, const std::string& bridge);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_NETWORK_PORT_GROUP_H_
