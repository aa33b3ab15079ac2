// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_IBPort: ports of adapters for remote direct memory access, such as InfiniBand.
#include <algorithm>
#include <cmath>

#include "network_port.h"

namespace NVORNQDX20 {
namespace {

const char* const kFolder = "/sys/class/infiniband";

struct TIBPort : TNetworkPort, TFiles {
  std::string fAdapter;
  TFiles fAdapterFiles;
  std::uint16_t fPortNumber;
  TText fPortState;  ///< Such as "ACTIVE".
};

/// Removes the number from "4: ACTIVE".
TText ReadState(const TFiles& port, const char* file) {
  return port.ReadLine(file).map([](const std::string& text) {
    const std::size_t colon = text.find(": ");
    return colon == std::string::npos ? text : text.substr(colon + 2);
  });
}

std::string IBLinkStateOf(const std::string& state) {
  if (state == "ACTIVE") return "up";
  return state == "DOWN" ? "down" : "dormant";
}

/// Reads "2.5 Gb/sec (1X SDR)".
TNumber ReadIBSpeed(const TFiles& port) {
  return port.ReadLine("rate").and_then([&port](const std::string& text) -> TNumber {
    const std::size_t unit = text.find(" Gb/sec");
    const auto number = ParseNumber<double>(text.substr(0, unit));
    if (unit == std::string::npos || !number || *number < 0 || *number > 1e6) {
      return port.MissingFrom("rate", "no speed: '" + text + "'");
    }
    return static_cast<std::uint64_t>(std::llround(*number * 1e9));
  });
}

/// The lower half of the first global identifier is the port's own.
TText ReadPortGUID(const TFiles& port) {
  const char* const file = "gids/0";
  return port.ReadLine(file).and_then([&](const std::string& text) -> TText {
    const std::string digits = AddressDigits(text);
    if (digits.size() != 32) return port.MissingFrom(file, "no global identifier");
    return digits.substr(16);
  });
}

ELinkTechnology TechnologyOf(const TFiles& port) {
  const TText layer = port.ReadLine("link_layer");
  if (layer && *layer == "Ethernet") return ELinkTechnology::kEthernet;
  return layer && *layer == "InfiniBand" ? ELinkTechnology::kInfiniBand : ELinkTechnology::kUnknown;
}

auto AdapterLine(const char* file) {
  return [file](const TIBPort& port) { return port.fAdapterFiles.ReadLine(file); };
}

TText ReadNodeGUID(const TIBPort& port) {
  return port.fAdapterFiles.ReadLine("node_guid").map(AddressDigits);
}

TIBPort ReadPort(const THost& host, const TSysfsDevice& adapter, const std::string& number) {
  const TFiles files = adapter.In("ports").In(number);
  const std::string id = adapter.fID + "/" + number;
  TIBPort port{{{id, id}, {}},
               files,
               adapter.fID,
               adapter,
               ParseNumber<std::uint16_t>(number).value_or(0),
               ReadState(files, "state")};
  port.fInterface = id;
  port.fTechnology = TechnologyOf(files);
  port.fPermanentAddress = ReadPortGUID(files);
  port.fAddress = port.fPermanentAddress;
  port.fLinkState = port.fPortState.map(IBLinkStateOf);
  port.fIsEnabled = ReadState(files, "phys_state").map([](const std::string& state) {
    return state != "Disabled";
  });
  port.fSpeed = ReadIBSpeed(files);
  port.fFullDuplex = true;
  port.fMTU = Missing("not told for InfiniBand");
  LackCounters(port, "not counted for InfiniBand");
  // Data are counted in words of four bytes.
  const TFiles counters = files.In("counters");
  port.fBytesReceived = Scaled(counters.ReadNumber("port_rcv_data"), 4);
  port.fBytesTransmitted = Scaled(counters.ReadNumber("port_xmit_data"), 4);
  port.fPacketsReceived = counters.ReadNumber("port_rcv_packets");
  port.fPacketsTransmitted = counters.ReadNumber("port_xmit_packets");
  port.fReceiveErrors = counters.ReadNumber("port_rcv_errors");
  port.fTransmitDrops = counters.ReadNumber("port_xmit_discards");
  port.fCarrierChanges = counters.ReadNumber("link_downed");
  ReadDriver(host, adapter, port);
  return port;
}

TInstances<TIBPort> ListIBPorts(const THost& host) {
  const auto adapters = DevicesIn(kFolder, [](TSysfsDevice&) { return true; })(host);
  TInstances<TIBPort> ports({}, adapters.fReason);
  for (const TSysfsDevice& adapter : adapters.fAll) {
    const auto numbers = adapter.List("ports");
    if (!numbers) ports.Miss(numbers.GetReason());
    for (const std::string& number : numbers.ValueOr({})) {
      if (PrintableText(number) != number) continue;
      ports.fAll.push_back(ReadPort(host, adapter, number));
    }
  }
  return ports;
}

}  // namespace

TClass IBPortClass() {
  return THostTable<TIBPort>{
      "VORNSG_IBPort",
      "A port of an adapter for InfiniBand, or for the same over Ethernet.",
      ListIBPorts,
      {{"Adapter", "The adapter, as the kernel names it.", &TIBPort::fAdapter},
       {"PortNumber", "The number of the port in the adapter.", &TIBPort::fPortNumber},
       {"PortState", "The state of the link, as in \"ACTIVE\".", &TIBPort::fPortState},
       {"Rate", "Speed, width and generation of the link, as in \"56 Gb/sec (4X FDR)\".",
        FileLine("rate")},
       {"FirmwareVersion", "The version of the adapter's firmware.", AdapterLine("fw_ver")},
       {"AdapterType", "The chip, as its maker names it.", AdapterLine("hca_type")},
       {"BoardID", "The card, as its maker names it.", AdapterLine("board_id")},
       {"NodeGUID", "The identifier of the adapter, as sixteen hexadecimal digits.", ReadNodeGUID,
        ESecret::kAddress},
       {"SymbolErrors", "Errors of the link's coding.", FileNumber("counters/symbol_error"),
        kCounter, kVolatile},
       {"LinkRecoveries", "How often the link recovered from errors.",
        FileNumber("counters/link_error_recovery"), kCounter, kVolatile}}}
      .DerivedFrom(NetworkPortTable());
}

}  // namespace NVORNQDX20
