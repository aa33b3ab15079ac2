// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_EthernetPort: network interfaces of type Ethernet.
#include "network_port.h"

namespace NVORNQDX20 {

TClass EthernetPortClass() {
  const char* const name = "VORNSG_EthernetPort";
  return THostTable<TNetworkPort>{
      name,
      "An Ethernet interface, of hardware or made by the kernel.",
      InterfacesOf(name),
      {{"PhysicalPortID", "The same for all ports that share a plug; empty if the driver has none.",
        &TNetworkPort::fPhysicalPort, ESecret::kAddress},
       {"MulticastPacketsReceived", "Packets received that were sent to a group of machines.",
        &TNetworkPort::fMulticastReceived, kCounter, kVolatile},
       {"Collisions", "Packets that another sender disturbed.", &TNetworkPort::fCollisions,
        kCounter, kVolatile}}}
      .DerivedFrom(NetworkPortTable());
}

}  // namespace NVORNQDX20
