// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_SocketService: sockets, at which a service is started when somebody asks for it.
#include "service.h"

namespace NVORNQDX20 {
namespace {

TInstances<TServiceUnit> ListSockets(const THost& host) { return UnitsWithSuffix(host, ".socket"); }

TReading<std::vector<std::string>> Listens(const TServiceUnit& unit) {
  return unit.fSettings.map(
      [](const TUnitSettings& settings) { return settings.GetList("Socket", "Listen"); });
}

}  // namespace

TClass SocketServiceClass() {
  return THostTable<TServiceUnit>{
      "VORNSG_SocketService",
      "A socket, which starts a unit when somebody connects to it.",
      ListSockets,
      {{"Listen",
        "Where: settings such as \"ListenStream=22\" and \"ListenDatagram=/run/systemd/notify\".",
        Listens, ESecret::kAddress},
       {"Unit", "What it starts.", StartedUnit("Socket", "Service")}}}
      .DerivedFrom(ServiceTable());
}

}  // namespace NVORNQDX20
