// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_EthernetPort: network interfaces and their counters.
#include <algorithm>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>

#include "logical_device.h"

namespace NVORNQDX20 {
namespace {

/// ARPHRD_ETHER.
const char* const kEthernet = "1";

TInstances<TSysfsDevice> ListPorts(const THost& host) {
  TInstances<TSysfsDevice> ports = ListDevices(host, "/sys/class/net");
  const auto isOther = [&ports](const TSysfsDevice& port) {
    const TText type = port.ReadLine("type");
    // Bridges of old kernels and the like have none; any other failure hides a port.
    if (!type && !port.fFiles->IsAbsent(port.fFolder + "type")) ports.Miss(type.GetReason());
    return type.ValueOr("") != kEthernet;
  };
  auto& all = ports.fAll;
  all.erase(std::remove_if(all.begin(), all.end(), isOther), all.end());
  return ports;
}

/// Converts "52:54:00:12:34:56" to twelve hexadecimal digits.
TText ReadAddress(const TSysfsDevice& port) {
  return port.ReadLine("address").and_then([&port](std::string text) -> TText {
    text.erase(std::remove(text.begin(), text.end(), ':'), text.end());
    boost::algorithm::to_upper(text, std::locale::classic());
    const bool valid = text.size() == 12 && text.find_first_not_of("0123456789ABCDEF") == text.npos;
    if (!valid) return Missing(port.fFolder + "address: no Ethernet address");
    return text;
  });
}

/// Only the hardware's own address is permanent; a bridge generates one, a bond uses a member's.
TText ReadPermanentAddress(const TSysfsDevice& port) {
  return port.ReadNumber("addr_assign_type").and_then([&port](std::uint64_t origin) -> TText {
    if (origin == 0) return ReadAddress(port);
    return Missing(port.fFolder + "addr_assign_type: the address was assigned");
  });
}

/// The kernel reports megabits per second, and -1 for unknown.
TNumber ReadSpeed(const TSysfsDevice& port) {
  const std::string path = port.fFolder + "speed";
  const TText speed = port.ReadLine("speed");
  if (speed && *speed == "-1") return Missing(path + ": not known to the driver");
  return Scaled(ToNumber(speed, path), 1'000'000);
}

TReading<bool> ReadFullDuplex(const TSysfsDevice& port) {
  return port.ReadLine("duplex").and_then([&port](const std::string& duplex) -> TReading<bool> {
    if (duplex == "full") return true;
    if (duplex == "half") return false;
    return Missing(port.fFolder + "duplex: not known to the driver");
  });
}

}  // namespace

TClass EthernetPortClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_EthernetPort",
      "An Ethernet interface, of hardware or made by the kernel.",
      ListPorts,
      {{"PermanentAddress", "The address of the hardware, as twelve hexadecimal digits.",
        ReadPermanentAddress, ESecret::kAddress},
       {"CurrentAddress", "The address in use, likewise.", ReadAddress, ESecret::kAddress},
       {"LinkState", "The operational state of RFC 2863, as in \"up\" or \"lowerlayerdown\".",
        Line("operstate")},
       {"Speed", "The speed of the link.", ReadSpeed, TUnit{"bit / second"}},
       {"FullDuplex", "Whether it sends and receives at once.", ReadFullDuplex},
       {"ActiveMaximumTransmissionUnit", "The largest packet that can be sent.", Number("mtu"),
        TUnit{"byte"}},
       {"BytesReceived", "Bytes received.", Number("statistics/rx_bytes"), kCounter, kVolatile},
       {"BytesTransmitted", "Bytes sent.", Number("statistics/tx_bytes"), kCounter, kVolatile},
       {"PacketsReceived", "Packets received.", Number("statistics/rx_packets"), kCounter,
        kVolatile},
       {"PacketsTransmitted", "Packets sent.", Number("statistics/tx_packets"), kCounter,
        kVolatile},
       {"ReceiveErrors", "Packets that arrived bad.", Number("statistics/rx_errors"), kCounter,
        kVolatile},
       {"TransmitErrors", "Packets that could not be sent.", Number("statistics/tx_errors"),
        kCounter, kVolatile},
       {"ReceiveDrops", "Packets that arrived, but were not taken.",
        Number("statistics/rx_dropped"), kCounter, kVolatile},
       {"TransmitDrops", "Packets that were not even tried to be sent.",
        Number("statistics/tx_dropped"), kCounter, kVolatile},
       {"CarrierChanges", "How often the link went up or down.", Number("carrier_changes"),
        kCounter, kVolatile}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
