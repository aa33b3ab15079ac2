// SPDX-License-Identifier: Apache-2.0
/// Common parts of all classes of protocol endpoints and of remote services.
#ifndef PLUGINS_LINUX_CLASSES_NETWORK_ACCESS_POINT_H_
#define PLUGINS_LINUX_CLASSES_NETWORK_ACCESS_POINT_H_

#include <string>

#include "classes/catalogue.h"
#include "sources/network/addresses.h"

namespace NVORNQDX20 {

struct TAccessPoint {
  std::string fName;
};

/// The superclass of all, which has their keys.
THostTable<TAccessPoint> AccessPointTable();

/// The superclass of those that are in this machine.
THostTable<TAccessPoint> ProtocolEndpointTable();

inline constexpr const char* kProtocolEndpointClassName = "VORNSG_ProtocolEndpoint";
inline constexpr const char* kVLANEndpointClassName = "VORNSG_VLANEndpoint";
inline constexpr const char* kIPEndpointClassName = "VORNSG_IPProtocolEndpoint";

/// Returns the key of an address: "eth0 192.0.2.1/24".
std::string NameOf(const TIPAddress& address);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_NETWORK_ACCESS_POINT_H_
