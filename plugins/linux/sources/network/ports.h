// SPDX-License-Identifier: Apache-2.0
/// The network interfaces of the machine, each file read once.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_PORTS_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_PORTS_H_

#include <qdxdescribe/table.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sources/host.h"

namespace NVORNQDX20 {

/// The technology of a link, with the numbers of CIM_NetworkPort.LinkTechnology.
enum class ELinkTechnology : std::uint16_t {
  kUnknown,
  kOther,
  kEthernet,
  kInfiniBand,
  kFibreChannel,
  kFDDI,
  kATM,
  kTokenRing,
  kFrameRelay,
  kInfrared,
  kBluetooth,
  kWirelessLAN
};

/// A port of whatever technology.
struct TPort {
  std::string fInterface;  ///< The kernel's name, such as "eth0".
  ELinkTechnology fTechnology = ELinkTechnology::kUnknown;
  std::string fOtherTechnology;  ///< Such as "Loopback"; empty unless the technology is kOther.
  TText fKind = std::string();   ///< Such as "bridge"; empty for hardware.
  TText fAlias = std::string();  ///< Given by the administrator; may be empty.
  std::string fPCIFunction;      ///< Its address; empty for a port of another bus or of none.
  std::string fPhysicalPort;     ///< Tells which ports share a plug; empty if not told.
  std::uint64_t fIndex = 0;
  TReading<bool> fIsEnabled;
  TText fLinkState;
  TText fAddress;  ///< Hexadecimal digits without separators, as the next.
  TText fPermanentAddress;
  TNumber fSpeed;  ///< In bits per second.
  TReading<bool> fFullDuplex;
  TNumber fMTU;
  TText fDriver;
  TText fDriverVersion;  ///< Empty for a driver that has none of its own.
  TNumber fBytesReceived;
  TNumber fBytesTransmitted;
  TNumber fPacketsReceived;
  TNumber fPacketsTransmitted;
  TNumber fReceiveErrors;
  TNumber fTransmitErrors;
  TNumber fReceiveDrops;
  TNumber fTransmitDrops;
  TNumber fMulticastReceived;
  TNumber fCollisions;
  TNumber fCarrierChanges;

  bool IsOfKind(const char* kind) const { return fKind.ValueOr("") == kind; }
};

/// A table of counters by a name. Missing for an interface that the table lacks.
using TCounters = std::vector<std::uint64_t>;
std::map<std::string, TCounters, std::less<>> ParseDeviceTable(std::string_view table);

/// Returns the address of the last PCI function in a path of sysfs; empty if there is none.
std::string PCIFunctionIn(std::string_view path);

/// Returns the digits of an address such as "52:54:00:12:34:56", in upper case; empty for another
/// text.
std::string AddressDigits(std::string_view text);

/// Sets the reason of all counters; a class sets those that it has.
void LackCounters(TPort& port, const std::string& reason);

/// Sets driver, its version and the PCI function of a port from its link "device".
void ReadDriver(const THost& host, const TFiles& files, TPort& port);

/// The interfaces of /sys/class/net, or, in a tree without it, of /proc/net/dev.
struct TPorts {
  explicit TPorts(const THost& host);

  /// Returns null for an unknown name.
  const TPort* Find(std::string_view interface) const;

  TInstances<TPort> fAll;  ///< Sorted by name.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_PORTS_H_
