// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_FirmwareCoolingDevice: fans and what else cools, as firmware describes them.
#include "cooling_device.h"
#include "firmware_probe.h"

namespace NVORNQDX20 {
namespace {

struct TFirmwareCoolingDevice : TCoolingDevice {
  TReading<TSMBIOSStructure> fStructure;
};

TReading<std::uint8_t> ReadType(const TSMBIOSStructure& structure) {
  constexpr std::uint8_t kLast = 17;
  return ReadBits(structure, 0x06, 0, kLast);
}

TReading<bool> IsActive(std::uint8_t type) {
  constexpr std::uint8_t kUnknown = 2, kHeatPipe = 8, kPassive = 17;
  if (type <= kUnknown) return Missing("the type does not tell");
  return type != kHeatPipe && type != kPassive;
}

TInstances<TFirmwareCoolingDevice> ListFirmwareDevices(const THost& host) {
  const auto elements = ListFirmware(host, kFirmwareCoolingType, kFirmwareCoolingName, {});
  TInstances<TFirmwareCoolingDevice> devices({}, elements.fReason);
  devices.fAll.reserve(elements.fAll.size());
  for (const TPhysicalElement& element : elements.fAll) {
    devices.fAll.push_back({{{element.fTag, element.fName},
                             element.fStructure->ReadString(0x0E),
                             ReadType(*element.fStructure).and_then(IsActive)},
                            element.fStructure});
  }
  return devices;
}

TReading<std::uint8_t> ReadDeviceType(const TFirmwareCoolingDevice& device) {
  return ReadType(*device.fStructure);
}

TReading<std::uint8_t> ReadDeviceStatus(const TFirmwareCoolingDevice& device) {
  return ReadBits(*device.fStructure, 0x06, 5, 6);
}

TReading<std::uint8_t> ReadUnitGroup(const TFirmwareCoolingDevice& device) {
  return device.fStructure->ReadNumber<std::uint8_t>(0x07).and_then(
      [&device](std::uint8_t group) -> TReading<std::uint8_t> {
        if (group == 0) return device.fStructure->MissingFrom("is in no group");
        return group;
      });
}

/// What does not turn has no speed, either.
TNumber ReadNominalSpeed(const TFirmwareCoolingDevice& device) {
  return ReadKnown(*device.fStructure, 0x0C).map([](std::uint16_t speed) {
    return std::uint64_t{speed};
  });
}

}  // namespace

std::vector<TTie> ListFirmwareSensorTies(const THost& host) {
  const std::map<std::uint16_t, std::string> probes = ListProbeIDs(host);
  constexpr std::uint16_t kNoHandle = 0xFFFF;
  std::vector<TTie> ties;
  const auto add = [&](std::uint8_t type, const char* name, const char* className,
                       std::size_t offset) {
    for (const TPhysicalElement& device : ListFirmware(host, type, name, {}).fAll) {
      const auto handle = device.fStructure->ReadNumber<std::uint16_t>(offset);
      const auto probe = probes.find(handle.ValueOr(kNoHandle));
      if (probe == probes.end()) continue;
      ties.push_back({{kFirmwareSensorClassName, probe->second}, {className, device.fTag}});
    }
  };
  add(kFirmwareCoolingType, kFirmwareCoolingName, kFirmwareCoolingClassName, 0x04);
  constexpr std::uint8_t kSupply = 39;
  constexpr std::size_t kVoltageProbe = 0x10, kCurrentProbe = 0x14;
  for (const std::size_t offset : {kVoltageProbe, kCurrentProbe}) {
    add(kSupply, kFirmwareSupplyName, "VORNSG_PowerSupply", offset);
  }
  return ties;
}

TClass FirmwareCoolingDeviceClass() {
  return THostTable<TFirmwareCoolingDevice>{
      kFirmwareCoolingClassName,
      "A fan, or what else cools, as the firmware's table describes it, without its speed now. The "
      "kernel may know the same fan by a chip.",
      ListFirmwareDevices,
      {{"DeviceType", "What it is.", ReadDeviceType,
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "Fan"},
                     {4, "Centrifugal Blower"},
                     {5, "Chip Fan"},
                     {6, "Cabinet Fan"},
                     {7, "Power Supply Fan"},
                     {8, "Heat Pipe"},
                     {9, "Integrated Refrigeration"},
                     {16, "Active Cooling"},
                     {17, "Passive Cooling"}}},
       {"Status", "How it was when the machine started.", ReadDeviceStatus, kProbeStatuses},
       {"CoolingUnitGroup", "The group of those that replace each other.", ReadUnitGroup},
       {"NominalSpeed", "The speed that it is made for.", ReadNominalSpeed,
        TUnit{"revolution / minute"}}}}
      .DerivedFrom(CoolingDeviceTable());
}

}  // namespace NVORNQDX20
