// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_NetworkPort: what all network ports have, and the interfaces without a class of
// their own.
#include "network_port.h"

#include <string_view>

namespace NVORNQDX20 {
namespace {

const char* const kEthernetPortClassName = "VORNSG_EthernetPort";
const char* const kWiFiPortClassName = "VORNSG_WiFiPort";

constexpr TConstantEnumeration kLinkTechnologies = {
    {0, "Unknown"},     {1, "Other"},    {2, "Ethernet"},   {3, "IB"},
    {4, "FC"},          {5, "FDDI"},     {6, "ATM"},        {7, "Token Ring"},
    {8, "Frame Relay"}, {9, "Infrared"}, {10, "BlueTooth"}, {11, "Wireless LAN"}};

constexpr TConstantEnumeration kEnabledStates = {{2, "Enabled"}, {3, "Disabled"}};

std::uint16_t Technology(const TNetworkPort& port) {
  return static_cast<std::uint16_t>(port.fTechnology);
}

TReading<std::uint16_t> EnabledState(const TNetworkPort& port) {
  return port.fIsEnabled.map([](bool isEnabled) -> std::uint16_t { return isEnabled ? 2 : 3; });
}

TReading<std::vector<std::string>> Addresses(const TNetworkPort& port) {
  return port.fAddress.map([](const std::string& address) { return std::vector{address}; });
}

}  // namespace

const char* ClassOfInterface(const TPort& port) {
  if (port.fTechnology == ELinkTechnology::kEthernet) return kEthernetPortClassName;
  if (port.fTechnology == ELinkTechnology::kWirelessLAN) return kWiFiPortClassName;
  return kNetworkPortClassName;
}

std::function<TInstances<TNetworkPort>(const THost&)> InterfacesOf(const char* className) {
  return [className](const THost& host) {
    const TInstances<TPort>& all = host.Shared<TPorts>().fAll;
    TInstances<TNetworkPort> ports({}, all.fReason);
    for (const TPort& port : all.fAll) {
      if (std::string_view(ClassOfInterface(port)) != className) continue;
      ports.fAll.push_back({{port.fInterface, port.fInterface}, port});
    }
    return ports;
  };
}

THostTable<TNetworkPort> NetworkPortTable() {
  return THostTable<TNetworkPort>{
      kNetworkPortClassName,
      "A network port or interface, of hardware or made by the kernel.",
      InterfacesOf(kNetworkPortClassName),
      {{"ElementName", "The text that the administrator gave it; empty without one.",
        &TNetworkPort::fAlias, ESecret::kHostName},
       {"EnabledState", "Whether the administrator has switched it on.", EnabledState,
        kEnabledStates},
       {"LinkTechnology", "The technology of its link.", Technology, kLinkTechnologies},
       {"OtherLinkTechnology",
        "The technology if it is another one, as in \"Loopback\"; else empty.",
        &TNetworkPort::fOtherTechnology},
       {"Kind", "What the kernel calls an interface that it makes, as in \"bridge\"; else empty.",
        &TNetworkPort::fKind},
       {"PermanentAddress",
        "The address of the hardware, as hexadecimal digits: twelve of Ethernet.",
        &TNetworkPort::fPermanentAddress, ESecret::kAddress},
       {"CurrentAddress", "The address in use, likewise.", &TNetworkPort::fAddress,
        ESecret::kAddress},
       {"NetworkAddresses", "All addresses in use, likewise.", Addresses, ESecret::kAddress},
       {"LinkState", "The operational state of RFC 2863, as in \"up\" or \"lowerlayerdown\".",
        &TNetworkPort::fLinkState},
       {"Speed", "The speed of the link.", &TNetworkPort::fSpeed, TUnit{"bit / second"}},
       {"FullDuplex", "Whether it sends and receives at once.", &TNetworkPort::fFullDuplex},
       {"ActiveMaximumTransmissionUnit", "The largest packet that can be sent.",
        &TNetworkPort::fMTU, TUnit{"byte"}},
       {"Driver", "The driver of the hardware, or the kind of an interface that the kernel makes.",
        &TNetworkPort::fDriver},
       {"DriverVersion", "The version of the driver; empty if it has only that of the kernel.",
        &TNetworkPort::fDriverVersion},
       {"BytesReceived", "Bytes received.", &TNetworkPort::fBytesReceived, TUnit{"byte"}, kCounter,
        kVolatile},
       {"BytesTransmitted", "Bytes sent.", &TNetworkPort::fBytesTransmitted, TUnit{"byte"},
        kCounter, kVolatile},
       {"PacketsReceived", "Packets received.", &TNetworkPort::fPacketsReceived, kCounter,
        kVolatile},
       {"PacketsTransmitted", "Packets sent.", &TNetworkPort::fPacketsTransmitted, kCounter,
        kVolatile},
       {"ReceiveErrors", "Packets that arrived bad.", &TNetworkPort::fReceiveErrors, kCounter,
        kVolatile},
       {"TransmitErrors", "Packets that could not be sent.", &TNetworkPort::fTransmitErrors,
        kCounter, kVolatile},
       {"ReceiveDrops", "Packets that arrived, but were not taken.", &TNetworkPort::fReceiveDrops,
        kCounter, kVolatile},
       {"TransmitDrops", "Packets that were not even tried to be sent.",
        &TNetworkPort::fTransmitDrops, kCounter, kVolatile},
       {"CarrierChanges", "How often the link went up or down.", &TNetworkPort::fCarrierChanges,
        kCounter, kVolatile}}}
      .DerivedFrom(LogicalDeviceTable());
}

TClass NetworkPortClass() { return NetworkPortTable(); }

}  // namespace NVORNQDX20
