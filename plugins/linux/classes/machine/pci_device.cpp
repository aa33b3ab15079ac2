// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PCIDevice: functions on PCI buses.
#include <array>
#include <cstdio>

#include "classes/logical_device.h"
#include "sources/fields.h"

namespace NVORNQDX20 {
namespace {

/// Names the function by vendor and device, as in "8086:1572".
TReading<bool> AdaptFunction(TSysfsDevice& function) {
  function.fName = function.ReadNumber<std::uint16_t>("vendor").and_then([&](unsigned vendor) {
    return function.ReadNumber<std::uint16_t>("device").map([vendor](unsigned device) {
      std::array<char, 10> name{};
      std::snprintf(name.data(), name.size(), "%04x:%04x", vendor, device);
      return std::string(name.data());
    });
  });
  return true;
}

/// Reads one byte of the class code; byte 0 is the programming interface.
auto ClassCodeByte(unsigned index) {
  return [index](const TFiles& function) {
    return function.ReadNumber("class").map([index](std::uint64_t classCode) {
      return static_cast<std::uint8_t>(classCode >> (8U * index));
    });
  };
}

TText ReadDriver(const TFiles& function) {
  const TText file = function.Read("uevent");
  const TText driver = TFields(function.PathOf("uevent"), file, '=').Get("DRIVER");
  return driver || !file ? driver : TText(Missing("no driver is bound to it"));
}

}  // namespace

TClass PCIDeviceClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_PCIDevice",
      "A function of a device on a PCI bus, by its address.",
      DevicesIn("/sys/bus/pci/devices", AdaptFunction),
      {{"VendorID", "The maker of the chip.", FileNumber<std::uint16_t>("vendor")},
       {"PCIDeviceID", "The chip, as its maker numbers them.", FileNumber<std::uint16_t>("device")},
       {"SubsystemVendorID", "The maker of the card.",
        FileNumber<std::uint16_t>("subsystem_vendor")},
       {"SubsystemID", "The card, as its maker numbers them.",
        FileNumber<std::uint16_t>("subsystem_device")},
       {"RevisionID", "The revision of the chip.", FileNumber<std::uint8_t>("revision")},
       {"ClassCode", "What it is for: 1 storage, 2 network.", ClassCodeByte(2)},
       {"SubclassCode", "The same, more closely.", ClassCodeByte(1)},
       {"Driver", "The driver that serves it.", ReadDriver}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
