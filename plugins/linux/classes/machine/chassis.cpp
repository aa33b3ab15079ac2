// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Chassis: the cases of the machine.
#include <iterator>

#include "packages.h"

namespace NVORNQDX20 {
namespace {

const char* const kChassisTypes[] = {"Unknown",
                                     "Other",
                                     "Unknown",
                                     "Desktop",
                                     "Low Profile Desktop",
                                     "Pizza Box",
                                     "Mini Tower",
                                     "Tower",
                                     "Portable",
                                     "LapTop",
                                     "Notebook",
                                     "Hand Held",
                                     "Docking Station",
                                     "All in One",
                                     "Sub Notebook",
                                     "Space-Saving",
                                     "Lunch Box",
                                     "Main System Chassis",
                                     "Expansion Chassis",
                                     "SubChassis",
                                     "Bus Expansion Chassis",
                                     "Peripheral Chassis",
                                     "Storage Chassis",
                                     "Rack Mount Chassis",
                                     "Sealed-Case PC",
                                     "Multi-System Chassis",
                                     "CompactPCI",
                                     "AdvancedTCA",
                                     "Blade",
                                     "Blade Enclosure",
                                     "Tablet",
                                     "Convertible",
                                     "Detachable",
                                     "IoT Gateway",
                                     "Embedded PC",
                                     "Mini PC",
                                     "Stick PC"};
constexpr std::uint8_t kRackMount = 23;

TEnumeration Types() {
  TEnumeration types;
  types.reserve(std::size(kChassisTypes));
  for (const char* const type : kChassisTypes) types.emplace_back(types.size(), type);
  types[2].second = types[23].second = types[25].second = "SMBIOS Reserved";
  types[28].second = "Blade Enclosure";
  types[29].second = "SMBIOS Reserved";
  return types;
}

/// The highest bit says that the chassis has a lock.
TReading<std::uint8_t> ReadType(const TPhysicalElement& chassis, const THost& host) {
  const auto type = chassis.fStructure
                        ? chassis.fStructure->ReadNumber<std::uint8_t>(0x05)
                        : host.In("/sys/class/dmi/id").ReadNumber<std::uint8_t>("chassis_type");
  return type.map([](std::uint8_t number) { return static_cast<std::uint8_t>(number & 0x7FU); });
}

TReading<std::uint16_t> ReadPackageType(const TPhysicalElement& chassis, const THost& host) {
  return ReadType(chassis, host).map([](std::uint8_t type) {
    return type == 2 ? std::uint16_t{0} : std::uint16_t{type};
  });
}

TText ReadTypeDescription(const TPhysicalElement& chassis, const THost& host) {
  return ReadType(chassis, host).and_then([](std::uint8_t type) -> TText {
    if (type < std::size(kChassisTypes)) return std::string(kChassisTypes[type]);
    return Missing("SMBIOS has no text for type " + std::to_string(type));
  });
}

/// "Unknown", "True" or "False". Other types may be mounted in a rack, too.
TReading<std::uint16_t> ReadRackMountable(const TPhysicalElement& chassis, const THost& host) {
  return ReadType(chassis, host).map([](std::uint8_t type) {
    return type == kRackMount ? std::uint16_t{1} : std::uint16_t{0};
  });
}

/// In units of 1.75 inches.
TReading<float> ReadHeight(const TPhysicalElement& chassis) {
  return FirmwareNumber<std::uint8_t>(0x11)(chassis).and_then(
      [&chassis](std::uint8_t units) -> TReading<float> {
        if (units == 0) return chassis.fStructure->MissingFrom("height is not specified");
        return static_cast<float>(units) * 1.75F;
      });
}

TReading<std::uint16_t> ReadPowerCords(const TPhysicalElement& chassis) {
  return FirmwareNumber<std::uint8_t>(0x12)(chassis).and_then(
      [&chassis](std::uint8_t cords) -> TReading<std::uint16_t> {
        if (cords == 0) return chassis.fStructure->MissingFrom("power cords are not specified");
        return std::uint16_t{cords};
      });
}

/// The string follows a list of contained elements, whose number and size come before it.
TText ReadSKU(const TPhysicalElement& chassis) {
  return FirmwareNumber<std::uint8_t>(0x13)(chassis).and_then([&chassis](unsigned int count) {
    return FirmwareNumber<std::uint8_t>(0x14)(chassis).and_then(
        [&chassis, count](unsigned int size) {
          return chassis.fStructure->ReadString(0x15 + std::size_t{count} * size);
        });
  });
}

}  // namespace

TInstances<TPhysicalElement> ListChassis(const THost& host) {
  return ListFirmware(host, 3, "Chassis",
                      {"chassis_vendor", "chassis_type", "chassis_serial", "chassis_version"});
}

TClass ChassisClass() {
  return THostTable<TPhysicalElement>{
      kChassisClassName,
      "A case of the machine.",
      ListChassis,
      {{"Manufacturer", "The maker.", FirmwareText(0x04, "chassis_vendor")},
       {"Version", "The version, as its maker counts.", FirmwareText(0x06, "chassis_version")},
       {"SerialNumber", "The serial number.", FirmwareText(0x07, "chassis_serial"),
        ESecret::kSerial},
       {"SKU", "The number under which it is sold.", ReadSKU},
       {"UserTracking", "The tag with which its owner keeps track of it.",
        FirmwareText(0x08, "chassis_asset_tag"), ESecret::kSerial},
       {"ChassisPackageType", "The shape.", ReadPackageType, Types()},
       {"ChassisTypeDescription", "The shape, as a text.", ReadTypeDescription},
       {"RackMountable", "Whether it is made for a rack.", ReadRackMountable,
        TEnumeration{{0, "Unknown"}, {1, "True"}, {2, "False"}}},
       {"LockPresent", "Whether it has a lock.", FirmwareFlag(0x05, 7)},
       {"NumberOfPowerCords", "The cords that it needs.", ReadPowerCords},
       {"Height", "How high it is.", ReadHeight, TUnit{"inch"}}}}
      .DerivedFrom(PhysicalPackageTable());
}

}  // namespace NVORNQDX20
