// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_EthernetPort: network interfaces and their counters.
#include <algorithm>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>

#include "classes/logical_device.h"

namespace NVORNQDX20 {
namespace {

/// Takes ports of type ARPHRD_ETHER. Bridges of old kernels and the like have no type; any other
/// failure hides a port.
TReading<bool> IsEthernet(const TFiles& port) {
  const TText type = port.ReadLine("type");
  if (!type && port.IsAbsent("type")) return false;
  return type.map([](const std::string& number) { return number == "1"; });
}

/// Converts "52:54:00:12:34:56" to twelve hexadecimal digits.
TText ReadAddress(const TFiles& port) {
  return port.ReadLine("address").and_then([&port](std::string text) -> TText {
    text.erase(std::remove(text.begin(), text.end(), ':'), text.end());
    boost::algorithm::to_upper(text, std::locale::classic());
    const bool valid = text.size() == 12 && text.find_first_not_of("0123456789ABCDEF") == text.npos;
    if (!valid) return port.MissingFrom("address", "no Ethernet address");
    return text;
  });
}

/// Only the hardware's own address is permanent; a bridge generates one, a bond uses a member's.
TText ReadPermanentAddress(const TFiles& port) {
  const char* const file = "addr_assign_type";
  return port.ReadNumber(file).and_then([&](std::uint64_t origin) -> TText {
    if (origin == 0) return ReadAddress(port);
    return port.MissingFrom(file, "the address was assigned");
  });
}

/// The kernel reports megabits per second, and -1 for unknown.
TNumber ReadSpeed(const TFiles& port) {
  const TText speed = port.ReadLine("speed");
  if (speed && *speed == "-1") return port.MissingFrom("speed", "not known to the driver");
  return Scaled(ToNumber(speed, port.PathOf("speed")), 1'000'000);
}

TReading<bool> ReadFullDuplex(const TFiles& port) {
  return port.ReadLine("duplex").and_then([&port](const std::string& duplex) -> TReading<bool> {
    if (duplex == "full") return true;
    if (duplex == "half") return false;
    return port.MissingFrom("duplex", "not known to the driver");
  });
}

}  // namespace

TClass EthernetPortClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_EthernetPort",
      "An Ethernet interface, of hardware or made by the kernel.",
      DevicesIn("/sys/class/net", IsEthernet),
      {{"PermanentAddress", "The address of the hardware, as twelve hexadecimal digits.",
        ReadPermanentAddress, ESecret::kAddress},
       {"CurrentAddress", "The address in use, likewise.", ReadAddress, ESecret::kAddress},
       {"LinkState", "The operational state of RFC 2863, as in \"up\" or \"lowerlayerdown\".",
        FileLine("operstate")},
       {"Speed", "The speed of the link.", ReadSpeed, TUnit{"bit / second"}},
       {"FullDuplex", "Whether it sends and receives at once.", ReadFullDuplex},
       {"ActiveMaximumTransmissionUnit", "The largest packet that can be sent.", FileNumber("mtu"),
        TUnit{"byte"}},
       {"BytesReceived", "Bytes received.", FileNumber("statistics/rx_bytes"), kCounter, kVolatile},
       {"BytesTransmitted", "Bytes sent.", FileNumber("statistics/tx_bytes"), kCounter, kVolatile},
       {"PacketsReceived", "Packets received.", FileNumber("statistics/rx_packets"), kCounter,
        kVolatile},
       {"PacketsTransmitted", "Packets sent.", FileNumber("statistics/tx_packets"), kCounter,
        kVolatile},
       {"ReceiveErrors", "Packets that arrived bad.", FileNumber("statistics/rx_errors"), kCounter,
        kVolatile},
       {"TransmitErrors", "Packets that could not be sent.", FileNumber("statistics/tx_errors"),
        kCounter, kVolatile},
       {"ReceiveDrops", "Packets that arrived, but were not taken.",
        FileNumber("statistics/rx_dropped"), kCounter, kVolatile},
       {"TransmitDrops", "Packets that were not even tried to be sent.",
        FileNumber("statistics/tx_dropped"), kCounter, kVolatile},
       {"CarrierChanges", "How often the link went up or down.", FileNumber("carrier_changes"),
        kCounter, kVolatile}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
