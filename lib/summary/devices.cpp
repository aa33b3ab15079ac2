// SPDX-License-Identifier: Apache-2.0
// Network ports, cards and sensors.
#include <qdxmodel/natural_order.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

std::string TechnologyOf(const TFacts& port) {
  // LinkTechnology of CIM_NetworkPort.
  static const std::map<std::uint64_t, const char*> names = {
      {2, "Ethernet"}, {3, "InfiniBand"}, {4, "Fibre Channel"}, {11, "wireless"}};
  const auto name = names.find(port.Number("LinkTechnology").value_or(0));
  return name == names.end() ? port.Text("OtherLinkTechnology") : name->second;
}

/// The addresses of each port, those of IPv4 first.
std::map<std::string, std::vector<std::string>> ReadAddresses(const ICIMNamespace& ns) {
  std::map<std::string, std::vector<std::string>> all, ofIPv6;
  ForEach(ns, "VORNSG_IPProtocolEndpoint", [&](const TFacts& facts) {
    std::string address = facts.Text("IPv4Address");
    auto& ofVersion = address.empty() ? ofIPv6 : all;
    if (address.empty()) address = facts.Text("IPv6Address");
    if (address.empty()) return;
    const TNumber prefix = facts.Number("PrefixLength");
    if (prefix) address += "/" + std::to_string(*prefix);
    ofVersion[facts.Text("PortName")].push_back(std::move(address));
  });
  for (auto& [port, addresses] : ofIPv6) {
    auto& ofPort = all[port];
    ofPort.insert(ofPort.end(), addresses.begin(), addresses.end());
  }
  return all;
}

bool PortComesBefore(const TPort& left, const TPort& right) {
  const auto key = [](const TPort& port) {
    return std::tuple(port.fAddresses.empty(), !port.fKind.empty(), port.fLinkState != "up");
  };
  const auto one = key(left);
  const auto other = key(right);
  return one == other ? NModel::ComesBefore(left.fName, right.fName) : one < other;
}

void ReadPorts(const ICIMNamespace& ns, std::vector<TPort>& ports) {
  auto addresses = ReadAddresses(ns);
  ForEach(ns, "VORNSG_NetworkPort", [&](const TFacts& facts) {
    TPort port;
    port.fTechnology = TechnologyOf(facts);
    if (port.fTechnology == "Loopback") return;
    port.fName = facts.Text("Name");
    if (port.fName.empty()) port.fName = facts.Text("DeviceID");
    port.fKind = facts.Text("Kind");
    port.fLinkState = facts.Text("LinkState");
    if (port.fLinkState.empty()) port.fLinkState = facts.Text("PortState");
    port.fBitsPerSecond = facts.Number("Speed");
    port.fHardwareAddress = facts.Text("CurrentAddress");
    port.fAddresses = addresses[port.fName];
    ports.push_back(std::move(port));
  });
  std::stable_sort(ports.begin(), ports.end(), PortComesBefore);
}

/// Returns whether such a function does the work of a card. Others are parts of each board, such as
/// bridges, or of a disk that is listed by itself.
bool IsCard(std::uint64_t classCode, std::uint64_t subclass, bool isInSlot) {
  switch (classCode) {
    case 0x01:  // storage: not IDE, SATA of the chipset and NVMe disks
      return subclass != 0x08 && (isInSlot || (subclass != 0x01 && subclass != 0x06));
    case 0x02:  // network
    case 0x03:  // display
    case 0x0B:  // processors
    case 0x0D:  // wireless
    case 0x10:  // encryption
    case 0x12:  // accelerators
      return true;
    case 0x0C:  // Fibre Channel and InfiniBand; neither USB nor SMBus
      return subclass == 0x04 || subclass == 0x06;
    case 0x05:  // memory
    case 0x06:  // bridges
    case 0x08:  // what belongs to a board
      return false;
    default:
      return isInSlot;
  }
}

void ReadCards(const ICIMNamespace& ns, std::vector<TCards>& cards) {
  std::map<std::tuple<TNumber, TNumber, TNumber>, std::size_t> groups;
  std::vector<std::set<std::string>> slots;
  ForEach(ns, "VORNSG_PCIDevice", [&](const TFacts& facts) {
    const TNumber code = facts.Number("ClassCode");
    const std::string slot = facts.Text("PhysicalSlot");
    if (!IsCard(code.value_or(0), facts.Number("SubclassCode").value_or(0), !slot.empty())) return;
    const std::tuple key(facts.Number("VendorID"), facts.Number("PCIDeviceID"), code);
    const auto [group, isNew] = groups.emplace(key, cards.size());
    if (isNew) {
      TCards card;
      card.fVendor = facts.Text("VendorName");
      card.fDevice = facts.Text("DeviceName");
      card.fVendorID = static_cast<std::uint16_t>(std::get<0>(key).value_or(0));
      card.fDeviceID = static_cast<std::uint16_t>(std::get<1>(key).value_or(0));
      card.fClassCode = static_cast<std::uint8_t>(code.value_or(0));
      card.fClass = facts.Text("ClassDescription");
      card.fDriver = facts.Text("Driver");
      cards.push_back(std::move(card));
      slots.emplace_back();
    }
    cards[group->second].fAddresses.push_back(facts.Text("DeviceID"));
    if (!slot.empty()) slots[group->second].insert(slot);
  });
  for (std::size_t i = 0; i < cards.size(); ++i) {
    std::vector<std::string>& ofCard = cards[i].fSlots;
    ofCard.assign(slots[i].begin(), slots[i].end());
    std::stable_sort(ofCard.begin(), ofCard.end(), NModel::ComesBefore);
  }
}

/// Sets the limit that the reading exceeds, and returns the name of the state.
const char* FindExceededLimit(const TFacts& facts, TSensor& sensor) {
  struct TLimit {
    const char* fProperty;
    bool fIsUpper;
    const char* fState;
  };
  // The worst one first.
  constexpr TLimit kLimits[] = {{"UpperThresholdFatal", true, "Upper Fatal"},
                                {"LowerThresholdFatal", false, "Lower Fatal"},
                                {"UpperThresholdCritical", true, "Upper Critical"},
                                {"LowerThresholdCritical", false, "Lower Critical"},
                                {"UpperThresholdNonCritical", true, "Upper Non-Critical"},
                                {"LowerThresholdNonCritical", false, "Lower Non-Critical"}};
  for (const auto& [property, isUpper, state] : kLimits) {
    const auto limit = facts.Integer(property);
    // A chip whose limit nobody has set reports 0.
    if (!limit || !sensor.fReading || *limit == 0) continue;
    if (isUpper ? *sensor.fReading <= *limit : *sensor.fReading >= *limit) continue;
    sensor.fLimit = limit;
    return state;
  }
  return "";
}

TSensor SensorOf(const TFacts& facts) {
  TSensor sensor;
  sensor.fName = facts.Text("ElementName");
  if (sensor.fName.empty()) sensor.fName = facts.Text("Name");
  if (sensor.fName.empty()) sensor.fName = facts.Text("DeviceID");
  sensor.fChip = facts.Text("Chip");
  sensor.fBaseUnits = facts.Number("BaseUnits");
  sensor.fModifier = facts.Integer("UnitModifier").value_or(0);
  sensor.fReading = facts.Integer("CurrentReading");
  // The driver's alarms know more than the limits, which may be those of a chip at rest.
  const std::string state = facts.Text("CurrentState");
  const std::string exceeded = FindExceededLimit(facts, sensor);
  sensor.fState = state.empty() ? exceeded : state;
  return sensor;
}

double TemperatureOf(const TSensor& sensor) {
  return static_cast<double>(sensor.fReading.value_or(0)) *
         std::pow(10.0, static_cast<double>(sensor.fModifier));
}

void ReadSensors(const ICIMNamespace& ns, TSensors& sensors) {
  ForEach(ns, "VORNSG_Sensor", [&sensors](const TFacts& facts) {
    TSensor sensor = SensorOf(facts);
    const bool hasReading = sensor.fReading || !sensor.fState.empty();
    if (!hasReading) return;  // firmware lists probes that it does not read
    ++sensors.fCount;
    constexpr std::uint64_t kDegreesC = 2;
    const bool isTemperature = sensor.fBaseUnits == kDegreesC && sensor.fReading;
    if (isTemperature &&
        (!sensors.fWarmest || TemperatureOf(*sensors.fWarmest) < TemperatureOf(sensor))) {
      sensors.fWarmest = sensor;
    }
    const bool isInRange = sensor.fState.empty() || sensor.fState == "Normal";
    if (!isInRange) sensors.fOutOfRange.push_back(std::move(sensor));
  });
}

}  // namespace

void ReadDevices(const ICIMNamespace& ns, TSummary& summary) {
  ReadPorts(ns, summary.fPorts);
  ReadCards(ns, summary.fCards);
  ReadSensors(ns, summary.fSensors);
}

}  // namespace NVORNQDX20::NSummary
