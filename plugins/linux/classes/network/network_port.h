// SPDX-License-Identifier: Apache-2.0
/// Common parts of all classes of network ports.
#ifndef PLUGINS_LINUX_CLASSES_NETWORK_NETWORK_PORT_H_
#define PLUGINS_LINUX_CLASSES_NETWORK_NETWORK_PORT_H_

#include <functional>

#include "classes/logical_device.h"
#include "sources/network/ports.h"

namespace NVORNQDX20 {

struct TNetworkPort : TDevice, TPort {};

inline constexpr const char* kNetworkPortClassName = "VORNSG_NetworkPort";

/// The superclass, which has what all ports have.
THostTable<TNetworkPort> NetworkPortTable();

/// Returns the interface's class by its technology, such as "VORNSG_EthernetPort".
const char* ClassOfInterface(const TPort& port);

/// Returns the function that lists the interfaces of a class.
std::function<TInstances<TNetworkPort>(const THost&)> InterfacesOf(const char* className);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_NETWORK_NETWORK_PORT_H_
