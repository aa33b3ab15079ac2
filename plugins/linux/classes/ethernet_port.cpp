// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_EthernetPort: network interfaces and their counters.
#include <algorithm>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>

#include "logical_device.h"
#include "machine/numbers.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

/// ARPHRD_ETHER.
const char* const kEthernet = "1";

struct TCounter {
  const char* fProperty;
  const char* fFile;
  const char* fDescription;
};

constexpr TCounter kCounters[] = {
    {"BytesReceived", "statistics/rx_bytes", "Bytes received."},
    {"BytesTransmitted", "statistics/tx_bytes", "Bytes sent."},
    {"PacketsReceived", "statistics/rx_packets", "Packets received."},
    {"PacketsTransmitted", "statistics/tx_packets", "Packets sent."},
    {"ReceiveErrors", "statistics/rx_errors", "Packets that arrived bad."},
    {"TransmitErrors", "statistics/tx_errors", "Packets that could not be sent."},
    {"ReceiveDrops", "statistics/rx_dropped", "Packets that arrived, but were not taken."},
    {"TransmitDrops", "statistics/tx_dropped", "Packets that were not even tried to be sent."},
    {"CarrierChanges", "carrier_changes", "How often the link went up or down."},
};

/// Converts "52:54:00:12:34:56" to twelve hexadecimal digits.
TReading ReadAddress(const THostFiles& files, const std::string& folder) {
  const std::string path = folder + "address";
  TReading address = files.ReadLine(path);
  if (!address) return address;
  std::string& text = *address.fValue;
  text.erase(std::remove(text.begin(), text.end(), ':'), text.end());
  boost::algorithm::to_upper(text, std::locale::classic());
  const bool valid = text.size() == 12 && text.find_first_not_of("0123456789ABCDEF") == text.npos;
  return valid ? address : TReading::Missing(path + ": no Ethernet address");
}

/// Only the hardware's own address is permanent; a bridge generates one, a bond uses a member's.
TReading ReadPermanentAddress(const THostFiles& files, const std::string& folder,
                              const TReading& address) {
  const std::string path = folder + "addr_assign_type";
  const TNumber origin = ReadNumber(files, path);
  if (!origin) return TReading::Missing(origin.fReason);
  return *origin.fValue == 0 ? address : TReading::Missing(path + ": the address was assigned");
}

/// The kernel reports megabits per second, and -1 for unknown.
TNumber ReadSpeed(const THostFiles& files, const std::string& folder) {
  const std::string path = folder + "speed";
  const TReading speed = files.ReadLine(path);
  if (speed && *speed.fValue == "-1") return TNumber::Missing(path + ": not known to the driver");
  return Scaled(ToNumber(speed, path), 1'000'000);
}

TReadingOf<bool> ReadFullDuplex(const THostFiles& files, const std::string& folder) {
  const std::string path = folder + "duplex";
  const TReading duplex = files.ReadLine(path);
  if (!duplex) return TReadingOf<bool>::Missing(duplex.fReason);
  if (*duplex.fValue == "full") return TReadingOf<bool>::Of(true);
  if (*duplex.fValue == "half") return TReadingOf<bool>::Of(false);
  return TReadingOf<bool>::Missing(path + ": not known to the driver");
}

std::vector<TPropertySpec> EthernetPortProperties() {
  std::vector<TPropertySpec> properties = {
      {"PermanentAddress", TType::kCIMTypeString, false,
       "The address of the hardware, as twelve hexadecimal digits."},
      {"CurrentAddress", TType::kCIMTypeString, false, "The address in use, likewise."},
      {"LinkState", TType::kCIMTypeString, false,
       "The operational state of RFC 2863, as in \"up\" or \"lowerlayerdown\"."},
      {"Speed", TType::kCIMTypeUint64, false, "The speed of the link.", "bit / second"},
      {"FullDuplex", TType::kCIMTypeBoolean, false, "Whether it sends and receives at once."},
      {"ActiveMaximumTransmissionUnit", TType::kCIMTypeUint64, false,
       "The largest packet that can be sent.", "byte"}};
  for (const TCounter& counter : kCounters) {
    properties.push_back({counter.fProperty, TType::kCIMTypeUint64, false, counter.fDescription});
  }
  return properties;
}

std::vector<TPropertyValue> ReadPort(const THostFiles& files, const std::string& folder) {
  const TReading address = ReadAddress(files, folder);
  std::vector<TPropertyValue> values = {
      {"PermanentAddress", ReadPermanentAddress(files, folder, address)},
      {"CurrentAddress", address},
      {"LinkState", files.ReadLine(folder + "operstate")},
      {"Speed", ReadSpeed(files, folder)},
      {"FullDuplex", ReadFullDuplex(files, folder)},
      {"ActiveMaximumTransmissionUnit", ReadNumber(files, folder + "mtu")}};
  for (const TCounter& counter : kCounters) {
    values.emplace_back(counter.fProperty, ReadNumber(files, folder + counter.fFile));
  }
  return values;
}

void AddEthernetPorts(TNamespaceBuilder& builder, const THost& host, ICIMClass& port) {
  const std::string interfaces = "/sys/class/net";
  for (const std::string& name : ListDevices(builder, host.fFiles, port, interfaces)) {
    const std::string folder = interfaces + "/" + name + "/";
    const TReading type = host.fFiles.ReadLine(folder + "type");
    if (!type || *type.fValue != kEthernet) continue;
    std::vector<TPropertyValue> values = ReadPort(host.fFiles, folder);
    values.emplace_back("Name", name);
    AddDevice(builder, host, port, name, values);
  }
}

}  // namespace

TClassDescription EthernetPortClass() {
  return {DeviceClass("VORNSG_EthernetPort",
                      "An Ethernet interface, of hardware or made by the kernel.",
                      EthernetPortProperties()),
          AddEthernetPorts};
}

}  // namespace NVORNQDX20
