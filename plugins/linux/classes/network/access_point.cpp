// SPDX-License-Identifier: Apache-2.0
#include "access_point.h"

#include <qdxcore/schema_helper.h>

namespace NVORNQDX20 {

THostTable<TAccessPoint> AccessPointTable() {
  return {
      "VORNSG_ServiceAccessPoint",
      "A point where a service or a protocol is reached.",
      {{"SystemCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"SystemName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"CreationClassName", "The class of the point.", kClassName, kKey},
       {"Name", "Tells the point from others of its class.", &TAccessPoint::fName, kKey,
        ESecret::kAddress}}};
}

THostTable<TAccessPoint> ProtocolEndpointTable() {
  return THostTable<TAccessPoint>{
      "VORNSG_ProtocolEndpoint", "A point of this machine at which it speaks a protocol.", {}}
      .DerivedFrom(AccessPointTable());
}

TClass ServiceAccessPointClass() { return AccessPointTable(); }

TClass ProtocolEndpointClass() { return ProtocolEndpointTable(); }

std::string NameOf(const TIPAddress& address) {
  return (address.fPort.empty() ? "" : address.fPort + " ") + address.fAddress + "/" +
         std::to_string(address.fPrefixLength);
}

}  // namespace NVORNQDX20
