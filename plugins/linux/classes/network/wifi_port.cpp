// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_WiFiPort: interfaces of wireless networks.
#include "network_port.h"

namespace NVORNQDX20 {

TClass WiFiPortClass() {
  const char* const name = "VORNSG_WiFiPort";
  return THostTable<TNetworkPort>{
      name, "An interface of a wireless network.", InterfacesOf(name), {}}
      .DerivedFrom(NetworkPortTable());
}

}  // namespace NVORNQDX20
