// SPDX-License-Identifier: Apache-2.0
#include "ports.h"

#include <qdxsystem/error_text.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <iterator>
#include <utility>

#include <net/if.h>
#include <net/if_arp.h>

#include <boost/algorithm/string/predicate.hpp>

#include "links.h"
#include "sources/device_folder.h"
#include "sources/fields.h"
#include "tables.h"

namespace NVORNQDX20 {
namespace {

using ETech = ELinkTechnology;

const char* const kFolder = "/sys/class/net";
constexpr const char* kLoopback = "Loopback";

struct THardwareType {
  std::uint16_t fNumber;
  ETech fTechnology;
  const char* fOther;
};

/// The types of if_arp.h that servers have.
constexpr THardwareType kHardwareTypes[] = {
    {ARPHRD_ETHER, ETech::kEthernet, ""},
    {ARPHRD_IEEE802, ETech::kTokenRing, ""},
    {ARPHRD_ATM, ETech::kATM, ""},
    {ARPHRD_DLCI, ETech::kFrameRelay, ""},
    {ARPHRD_INFINIBAND, ETech::kInfiniBand, ""},
    {280, ETech::kOther, "CAN"},
    {ARPHRD_PPP, ETech::kOther, "PPP"},
    {519, ETech::kOther, "Raw IP"},
    {ARPHRD_TUNNEL, ETech::kOther, "Tunnel"},
    {ARPHRD_TUNNEL6, ETech::kOther, "Tunnel"},
    {ARPHRD_FRAD, ETech::kFrameRelay, ""},
    {ARPHRD_LOOPBACK, ETech::kOther, kLoopback},
    {ARPHRD_FDDI, ETech::kFDDI, ""},
    {ARPHRD_SIT, ETech::kOther, "Tunnel"},
    {ARPHRD_IPGRE, ETech::kOther, "Tunnel"},
    {ARPHRD_IRDA, ETech::kInfrared, ""},
    {ARPHRD_FCPP, ETech::kFibreChannel, ""},
    {ARPHRD_FCAL, ETech::kFibreChannel, ""},
    {ARPHRD_FCPL, ETech::kFibreChannel, ""},
    {ARPHRD_FCFABRIC, ETech::kFibreChannel, ""},
    {ARPHRD_IEEE802_TR, ETech::kTokenRing, ""},
    {ARPHRD_IEEE80211, ETech::kWirelessLAN, ""},
    {ARPHRD_IEEE80211_PRISM, ETech::kWirelessLAN, ""},
    {ARPHRD_IEEE80211_RADIOTAP, ETech::kWirelessLAN, ""},
    {823, ETech::kOther, "Tunnel"},           // GRE over IPv6
    {824, ETech::kOther, "Netlink monitor"},  // ARPHRD_NETLINK
    {ARPHRD_NONE, ETech::kOther, "Tunnel"}};

void SetTechnology(std::uint16_t type, TPort& port) {
  const auto* const known =
      std::find_if(std::begin(kHardwareTypes), std::end(kHardwareTypes),
                   [type](const THardwareType& each) { return each.fNumber == type; });
  const bool isKnown = known != std::end(kHardwareTypes);
  port.fTechnology = isKnown ? known->fTechnology : ETech::kOther;
  port.fOtherTechnology = isKnown ? known->fOther : "Type " + std::to_string(type);
}

/// Returns the kind of an interface that the kernel makes: as netlink has it, else by the files
/// that only such an interface has. Without netlink, what has none of them may be of any kind.
TText KindOf(const TFiles& files, const TPort& port, const TLink* link) {
  if (link != nullptr && !link->fKind.empty()) return link->fKind;
  TText kind = TFields(files.PathOf("uevent"), files.Read("uevent"), '=').Get("DEVTYPE");
  if (kind) return kind;
  if (link != nullptr || port.fOtherTechnology == kLoopback) return "";
  constexpr std::pair<const char*, const char*> kFiles[] = {
      {"bridge", "bridge"}, {"bonding", "bond"}, {"phy80211", "wlan"}, {"tun_flags", "tun"}};
  for (const auto& [file, name] : kFiles) {
    const TReading<bool> exists = files.Exists(file);
    if (!exists) return Missing(exists.GetReason());
    if (*exists) return name;
  }
  return files.Exists("device").and_then(
      [&kind](bool isHardware) { return isHardware ? TText("") : kind; });
}

TText ReadAddress(const TFiles& files, bool isEthernet) {
  return files.ReadLine("address").and_then([&](const std::string& text) -> TText {
    std::string digits = AddressDigits(text);
    if (isEthernet && digits.size() != 12) {
      return files.MissingFrom("address", "no Ethernet address");
    }
    if (digits.empty()) return files.MissingFrom("address", "no address");
    return digits;
  });
}

TText NotOnlyZeros(const TFiles& files, const TText& address) {
  const bool isZero = address && address->find_first_not_of('0') == std::string::npos;
  return isZero ? TText(files.MissingFrom("address", "only zeros")) : address;
}

/// Only the hardware's own address is permanent; a bridge generates one, a bond uses a member's.
TText ReadPermanentAddress(const TFiles& files, const TPort& port, const TLink* link) {
  if (link != nullptr && !link->fPermanentAddress.empty()) {
    return DigitsOf(link->fPermanentAddress);
  }
  const char* const file = "addr_assign_type";
  return files.ReadNumber(file).and_then([&](std::uint64_t origin) -> TText {
    if (origin == 0) return NotOnlyZeros(files, port.fAddress);
    return files.MissingFrom(file, "the address was assigned");
  });
}

/// The kernel refuses to tell of the link of a port that is switched off.
TText ReadOfLink(const TFiles& files, const char* file) {
  TText text = files.ReadLine(file);
  const bool isRefused = boost::algorithm::ends_with(text.GetReason(), ": " + ErrorText(EINVAL));
  return isRefused ? TText(files.MissingFrom(file, "the port is switched off")) : text;
}

/// The kernel reports megabits per second, and -1 for unknown.
TNumber ReadSpeed(const TFiles& files) {
  const TText speed = ReadOfLink(files, "speed");
  if (speed && *speed == "-1") return files.MissingFrom("speed", "not known to the driver");
  return Scaled(ToNumber(speed, files.PathOf("speed")), 1'000'000);
}

TReading<bool> ReadFullDuplex(const TFiles& files) {
  return ReadOfLink(files, "duplex")
      .and_then([&files](const std::string& duplex) -> TReading<bool> {
        if (duplex == "full") return true;
        if (duplex == "half") return false;
        return files.MissingFrom("duplex", "not known to the driver");
      });
}

void TakeStatistics(const rtnl_link_stats64& from, TPort& port) {
  port.fBytesReceived = std::uint64_t{from.rx_bytes};
  port.fBytesTransmitted = std::uint64_t{from.tx_bytes};
  port.fPacketsReceived = std::uint64_t{from.rx_packets};
  port.fPacketsTransmitted = std::uint64_t{from.tx_packets};
  port.fReceiveErrors = std::uint64_t{from.rx_errors};
  port.fTransmitErrors = std::uint64_t{from.tx_errors};
  port.fReceiveDrops = std::uint64_t{from.rx_dropped};
  port.fTransmitDrops = std::uint64_t{from.tx_dropped};
  port.fMulticastReceived = std::uint64_t{from.multicast};
  port.fCollisions = std::uint64_t{from.collisions};
}

/// The readings in the order of /proc/net/dev; null for columns that no property has.
constexpr TNumber TPort::*kTableColumns[] = {&TPort::fBytesReceived,
                                             &TPort::fPacketsReceived,
                                             &TPort::fReceiveErrors,
                                             &TPort::fReceiveDrops,
                                             nullptr,
                                             nullptr,
                                             nullptr,
                                             &TPort::fMulticastReceived,
                                             &TPort::fBytesTransmitted,
                                             &TPort::fPacketsTransmitted,
                                             &TPort::fTransmitErrors,
                                             &TPort::fTransmitDrops,
                                             nullptr,
                                             &TPort::fCollisions};

void TakeStatistics(const TCounters& from, TPort& port) {
  for (std::size_t i = 0; i < std::min(from.size(), std::size(kTableColumns)); ++i) {
    if (kTableColumns[i] != nullptr) port.*kTableColumns[i] = from[i];
  }
}

/// The counters of all interfaces, for a tree without those of sysfs.
struct TDeviceTable {
  explicit TDeviceTable(const THost& host) {
    const TText table = ReadNetTable(host, "dev");
    fDevices = ParseDeviceTable(table.ValueOr(""));
    if (table.GetReason().IsError()) fFailure = table.GetReason();
  }

  std::map<std::string, TCounters, std::less<>> fDevices;
  TReason fFailure;  ///< Why the table cannot be read; empty if it is not there.
};

void ReadStatistics(const THost& host, const TFiles& files, TPort& port) {
  if (files.IsAbsent("")) {
    const auto& devices = host.Shared<TDeviceTable>().fDevices;
    const auto found = devices.find(port.fInterface);
    if (found != devices.end()) return TakeStatistics(found->second, port);
  }
  port.fBytesReceived = files.ReadNumber("rx_bytes");
  port.fBytesTransmitted = files.ReadNumber("tx_bytes");
  port.fPacketsReceived = files.ReadNumber("rx_packets");
  port.fPacketsTransmitted = files.ReadNumber("tx_packets");
  port.fReceiveErrors = files.ReadNumber("rx_errors");
  port.fTransmitErrors = files.ReadNumber("tx_errors");
  port.fReceiveDrops = files.ReadNumber("rx_dropped");
  port.fTransmitDrops = files.ReadNumber("tx_dropped");
  port.fMulticastReceived = files.ReadNumber("multicast");
  port.fCollisions = files.ReadNumber("collisions");
}

/// For files that can be empty; drivers without the call fail to read them.
std::string OptionalText(const TFiles& files, const char* file) {
  return PrintableText(files.Read(file).ValueOr(""));
}

/// Reads the port whose folder this is. Missing if its type cannot be read.
TReading<TPort> ReadPort(const THost& host, const TFiles& files, const std::string& name) {
  TPort port;
  port.fInterface = name;
  const TText type = files.ReadLine("type");
  if (!type && !files.IsAbsent("type")) return Missing(type.GetReason());
  const auto number = ToNumber<std::uint16_t>(type, files.PathOf("type"));
  if (number) SetTechnology(*number, port);
  const TLinks& links = host.Shared<TLinks>();
  if (!links.fByIndex.empty()) port.fIndex = files.ReadNumber("ifindex").ValueOr(0);
  const TLink* const link = links.Find(name, port.fIndex);
  port.fKind = KindOf(files, port, link);
  if (port.fKind.GetReason().IsError()) return Missing(port.fKind.GetReason());
  const bool isEthernet = port.fTechnology == ETech::kEthernet;
  if (isEthernet && port.IsOfKind("wlan")) port.fTechnology = ETech::kWirelessLAN;
  if (port.IsOfKind("wlan")) port.fKind = "";  // the kernel names hardware by this one alone
  port.fAlias = files.Read("ifalias").map(PrintableText);
  port.fPhysicalPort = OptionalText(files, "phys_port_id");
  port.fIsEnabled =
      files.ReadNumber("flags").map([](std::uint64_t flags) { return (flags & IFF_UP) != 0; });
  port.fLinkState = files.ReadLine("operstate");
  port.fAddress = ReadAddress(files, isEthernet);
  port.fPermanentAddress = ReadPermanentAddress(files, port, link);
  port.fSpeed = ReadSpeed(files);
  port.fFullDuplex = ReadFullDuplex(files);
  port.fMTU = files.ReadNumber("mtu");
  port.fCarrierChanges = files.ReadNumber("carrier_changes");
  if (link != nullptr && link->fStatistics) {
    TakeStatistics(*link->fStatistics, port);
  } else {
    ReadStatistics(host, files.In("statistics"), port);
  }
  ReadDriver(host, files, port);
  return port;
}

TInstances<TPort> ListFolder(const THost& host, const std::vector<std::string>& names) {
  TInstances<TPort> ports;
  for (const std::string& name : names) {
    const TFiles files = host.In(kFolder).In(name);
    const TReason obstacle = ObstacleToDevice(files, name);
    if (!obstacle.empty()) {
      ports.Miss(obstacle);
      continue;
    }
    // A list of bonds is a file beside the folders.
    if (files.IsAbsent(".")) continue;
    TReading<TPort> port = ReadPort(host, files, name);
    if (port) {
      ports.fAll.push_back(*std::move(port));
    } else {
      ports.Miss(port.GetReason());
    }
  }
  return ports;
}

/// The versions of the drivers, which many ports share.
class TDriverVersions {
 public:
  explicit TDriverVersions(const THost& host) : fHost(host) {}

  const TText& Of(const std::string& driver) const {
    const auto [place, isNew] = fVersions.try_emplace(driver);
    if (isNew) place->second = Read(driver);
    return place->second;
  }

 private:
  TText Read(std::string driver) const {
    std::replace(driver.begin(), driver.end(), '-', '_');
    const std::string file = "/sys/module/" + driver + "/version";
    return fHost.IsAbsent(file) ? TText(std::string()) : fHost.ReadLine(file);
  }

  const TFiles fHost;
  mutable std::map<std::string, TText> fVersions;
};

}  // namespace

std::map<std::string, TCounters, std::less<>> ParseDeviceTable(std::string_view table) {
  std::map<std::string, TCounters, std::less<>> devices;
  while (!table.empty()) {
    const std::string_view line = TakeLine(table);
    // The name of an alias can have a colon itself.
    const std::size_t colon = line.rfind(':');
    if (colon == std::string_view::npos) continue;
    TCounters counters;
    counters.reserve(std::size(kTableColumns) + 2);
    for (const std::string_view word : WordsOf(line.substr(colon + 1))) {
      counters.push_back(ParseNumber(word).value_or(0));
    }
    devices.emplace(PrintableText(line.substr(0, colon)), std::move(counters));
  }
  return devices;
}

std::string PCIFunctionIn(std::string_view path) {
  // A domain has four digits, or more of a virtual one; then "3b:00.0" follows.
  constexpr std::string_view kShape = ":XX:XX.X";
  const auto isFunction = [&](std::string_view name) {
    if (name.size() < kShape.size() + 4) return false;
    const std::size_t domain = name.size() - kShape.size();
    for (std::size_t i = 0; i < name.size(); ++i) {
      const char wanted = i < domain ? 'X' : kShape[i - domain];
      const bool isDigit = std::isxdigit(static_cast<unsigned char>(name[i])) != 0;
      if (wanted == 'X' ? !isDigit : name[i] != wanted) return false;
    }
    return true;
  };
  std::string_view found;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    if (isFunction(path.substr(0, end))) found = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return std::string(found);
}

std::string AddressDigits(std::string_view text) {
  std::string digits;
  digits.reserve(text.size());
  for (const char character : text) {
    if (character == ':') continue;
    if (std::isxdigit(static_cast<unsigned char>(character)) == 0) return {};
    digits += static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  }
  return digits;
}

void LackCounters(TPort& port, const std::string& reason) {
  for (const auto counter : kTableColumns) {
    if (counter != nullptr) port.*counter = Missing(reason);
  }
  port.fCarrierChanges = Missing(reason);
}

void ReadDriver(const THost& host, const TFiles& files, TPort& port) {
  port.fPCIFunction = PCIFunctionIn(host.ReadLink(files.PathOf("")).ValueOr(""));
  if (port.fPCIFunction.empty()) {
    port.fPCIFunction = PCIFunctionIn(files.ReadLink("device").ValueOr(""));
  }
  if (files.IsAbsent("device")) {
    port.fDriver = port.fKind.and_then([](const std::string& kind) {
      return kind.empty() ? TText(Missing("no driver is bound to it")) : TText(kind);
    });
    port.fDriverVersion = port.fDriver.map([](const std::string&) { return std::string(); });
    return;
  }
  port.fDriver = ReadDriverOf(files.In("device"));
  // The device of an adapter's port can be a part of the PCI function.
  if (!port.fDriver && !port.fPCIFunction.empty()) {
    const TText driver = ReadDriverOf(host.In("/sys/bus/pci/devices").In(port.fPCIFunction));
    if (driver) port.fDriver = driver;
  }
  port.fDriverVersion = port.fDriver.and_then(
      [&host](const std::string& driver) { return host.Shared<TDriverVersions>().Of(driver); });
}

TPorts::TPorts(const THost& host) {
  const TReading<std::vector<std::string>> names = host.List(kFolder);
  if (names || !host.IsAbsent(kFolder)) {
    if (names) {
      fAll = ListFolder(host, *names);
    } else {
      fAll = Missing(names.GetReason());
    }
    return;
  }
  for (const auto& [name, counters] : host.Shared<TDeviceTable>().fDevices) {
    const TReading<TPort> port = ReadPort(host, host.In(kFolder).In(name), name);
    if (port) fAll.fAll.push_back(*port);
  }
  if (!fAll.fAll.empty()) return;
  fAll.Miss(names.GetReason());
  const TReason& failure = host.Shared<TDeviceTable>().fFailure;
  if (!failure.empty()) fAll.Miss(failure);
}

const TPort* TPorts::Find(std::string_view interface) const {
  const auto found = std::lower_bound(
      fAll.fAll.begin(), fAll.fAll.end(), interface,
      [](const TPort& port, std::string_view name) { return port.fInterface < name; });
  return found == fAll.fAll.end() || found->fInterface != interface ? nullptr : &*found;
}

}  // namespace NVORNQDX20
