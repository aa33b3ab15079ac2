// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_FCPort: ports of Fibre Channel adapters.
#include <algorithm>
#include <array>
#include <cmath>

#include "network_port.h"

namespace NVORNQDX20 {
namespace {

struct TFCPort : TNetworkPort, TFiles {
  TText fPortState;  ///< Such as "Online".
};

/// Removes the "0x" of a name of 64 bits or of a fabric address.
TText ReadName(const TFiles& port, const char* file) {
  return port.ReadLine(file).and_then([&](const std::string& text) -> TText {
    std::string digits = text.compare(0, 2, "0x") == 0 ? AddressDigits(text.substr(2)) : "";
    if (digits.find_first_not_of("0F") == std::string::npos) {
      return port.MissingFrom(file, "no name");
    }
    return digits;
  });
}

/// Reads "16 Gbit"; without a link it is "unknown".
TNumber SpeedOf(const TFiles& port, const char* file, const std::string& text) {
  const std::size_t blank = std::min(text.find(' '), text.size());
  const auto number = ParseNumber<double>(text.substr(0, blank));
  const std::string unit = text.substr(blank);
  if (!number || *number < 0 || (unit != " Gbit" && unit != " Mbit")) {
    return port.MissingFrom(file, "no speed: '" + text + "'");
  }
  return static_cast<std::uint64_t>(std::llround(*number * (unit == " Gbit" ? 1e9 : 1e6)));
}

TNumber ReadFCSpeed(const TFiles& port) {
  return port.ReadLine("speed").and_then(
      [&port](const std::string& text) { return SpeedOf(port, "speed", text); });
}

/// Returns the highest of "4 Gbit, 8 Gbit, 16 Gbit".
TNumber ReadMaxSpeed(const TFCPort& port) {
  const char* const file = "supported_speeds";
  return port.ReadLine(file).and_then([&](const std::string& list) {
    TNumber highest = port.MissingFrom(file, "no speed");
    for (std::size_t begin = 0; begin < list.size();) {
      const std::size_t end = std::min(list.find(", ", begin), list.size());
      const TNumber each = SpeedOf(port, file, list.substr(begin, end - begin));
      if (each && *each >= highest.ValueOr(0)) highest = each;
      begin = end + 2;
    }
    return highest;
  });
}

/// All bits are set in a counter that the driver does not have.
TNumber ReadCounter(const TFiles& port, const char* file) {
  return port.ReadNumber(file).and_then([&](std::uint64_t count) -> TNumber {
    if (count == ~std::uint64_t{0}) return port.MissingFrom(file, "not counted by the driver");
    return count;
  });
}

auto Counter(const char* file) {
  return [file](const TFCPort& port) { return ReadCounter(port, file); };
}

std::string FCLinkStateOf(const std::string& state) {
  if (state == "Online") return "up";
  return state == "Linkdown" || state == "Offline" ? "down" : "unknown";
}

constexpr TConstantEnumeration kPortTypes = {{0, "Unknown"}, {1, "Other"}, {10, "N"}, {11, "NL"}};

TReading<std::uint16_t> ReadPortType(const TFCPort& port) {
  return port.ReadLine("port_type").map([](const std::string& type) -> std::uint16_t {
    const auto startsWith = [&type](const char* start) { return type.rfind(start, 0) == 0; };
    if (startsWith("NPort") || startsWith("Point-To-Point")) return 10;
    if (startsWith("NLPort") || startsWith("LPort")) return 11;
    return startsWith("Unknown") ? 0 : 1;
  });
}

TInstances<TFCPort> ListFCPorts(const THost& host) {
  const auto hosts = DevicesIn("/sys/class/fc_host", [](TSysfsDevice&) { return true; })(host);
  TInstances<TFCPort> ports({}, hosts.fReason);
  ports.fAll.reserve(hosts.fAll.size());
  for (const TSysfsDevice& device : hosts.fAll) {
    TFCPort port{{device, {}}, device, device.ReadLine("port_state")};
    port.fInterface = device.fID;
    port.fTechnology = ELinkTechnology::kFibreChannel;
    port.fPermanentAddress = ReadName(device, "port_name");
    port.fAddress = ReadName(device, "port_id");
    port.fLinkState = port.fPortState.map(FCLinkStateOf);
    port.fIsEnabled =
        port.fPortState.map([](const std::string& each) { return each != "Offline"; });
    port.fSpeed = ReadFCSpeed(device);
    port.fFullDuplex = true;
    port.fMTU = Missing("not told for Fibre Channel");
    LackCounters(port, "not counted for Fibre Channel");
    const TFiles statistics = device.In("statistics");
    port.fBytesReceived = Scaled(ReadCounter(statistics, "rx_words"), 4);
    port.fBytesTransmitted = Scaled(ReadCounter(statistics, "tx_words"), 4);
    port.fPacketsReceived = ReadCounter(statistics, "rx_frames");
    port.fPacketsTransmitted = ReadCounter(statistics, "tx_frames");
    port.fReceiveErrors = ReadCounter(statistics, "error_frames");
    port.fReceiveDrops = ReadCounter(statistics, "dumped_frames");
    ReadDriver(host, device, port);
    ports.fAll.push_back(std::move(port));
  }
  return ports;
}

}  // namespace

TClass FCPortClass() {
  return THostTable<TFCPort>{
      "VORNSG_FCPort",
      "A port of a Fibre Channel adapter.",
      ListFCPorts,
      {{"PortType", "Its role on the link.", ReadPortType, kPortTypes},
       {"PortState", "What the driver makes of it, as in \"Online\".", &TFCPort::fPortState},
       {"MaxSpeed", "The highest speed that it can have.", ReadMaxSpeed, TUnit{"bit / second"}},
       {"NodeName", "The name of the adapter's node, as sixteen hexadecimal digits.",
        [](const TFCPort& port) { return ReadName(port, "node_name"); }, ESecret::kAddress},
       {"FabricName", "The name of the fabric that it is connected to, likewise.",
        [](const TFCPort& port) { return ReadName(port, "fabric_name"); }, ESecret::kAddress},
       {"SymbolicName", "What the adapter tells the fabric of itself and the machine.",
        FileLine("symbolic_name"), ESecret::kHostName},
       {"LinkFailures", "How often the link failed.", Counter("statistics/link_failure_count"),
        kCounter, kVolatile},
       {"LossOfSignalCounter", "How often the signal was lost.",
        Counter("statistics/loss_of_signal_count"), kCounter, kVolatile},
       {"LossOfSyncCounter", "How often the synchronisation was lost.",
        Counter("statistics/loss_of_sync_count"), kCounter, kVolatile},
       {"CRCErrors", "Frames that arrived with a wrong check sum.",
        Counter("statistics/invalid_crc_count"), kCounter, kVolatile},
       {"InvalidTransmissionWords", "Words that arrived bad.",
        Counter("statistics/invalid_tx_word_count"), kCounter, kVolatile}}}
      .DerivedFrom(NetworkPortTable());
}

}  // namespace NVORNQDX20
