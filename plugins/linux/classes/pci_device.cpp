// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PCIDevice: functions on PCI buses.
#include <array>
#include <charconv>

#include "logical_device.h"
#include "machine/fields.h"

namespace NVORNQDX20 {
namespace {

using TID = TReading<std::uint16_t>;

auto ID(const char* file) {
  return [file](const TSysfsDevice& device) -> TID {
    return NumberAs<std::uint16_t>(device.ReadNumber(file));
  };
}

std::string FourDigits(std::uint16_t id) {
  std::array<char, 4> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), id, 16).ptr;
  const std::string text(digits.begin(), end);
  return std::string(digits.size() - text.size(), '0') + text;
}

/// Formats vendor and device as "8086:1572".
TText ReadName(const TSysfsDevice& function) {
  return ID("vendor")(function).and_then([&function](std::uint16_t vendor) {
    return ID("device")(function).map(
        [vendor](std::uint16_t device) { return FourDigits(vendor) + ":" + FourDigits(device); });
  });
}

TInstances<TSysfsDevice> ListFunctions(const THost& host) {
  TInstances<TSysfsDevice> functions = ListDevices(host, "/sys/bus/pci/devices");
  for (TSysfsDevice& each : functions.fAll) each.fName = ReadName(each);
  return functions;
}

/// Reads one byte of the class code; byte 0 is the programming interface.
auto ClassCodeByte(unsigned index) {
  return [index](const TSysfsDevice& device) {
    return device.ReadNumber("class").map([index](std::uint64_t classCode) {
      return static_cast<std::uint8_t>(classCode >> (8U * index));
    });
  };
}

TText ReadDriver(const TSysfsDevice& device) {
  const std::string path = device.fFolder + "uevent";
  const TText file = device.fFiles->Read(path);
  const TText driver = TFields(path, file, '=').Get("DRIVER");
  return driver || !file ? driver : TText(Missing("no driver is bound to it"));
}

}  // namespace

TClass PCIDeviceClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_PCIDevice",
      "A function of a device on a PCI bus, by its address.",
      ListFunctions,
      {{"VendorID", "The maker of the chip.", ID("vendor")},
       {"PCIDeviceID", "The chip, as its maker numbers them.", ID("device")},
       {"SubsystemVendorID", "The maker of the card.", ID("subsystem_vendor")},
       {"SubsystemID", "The card, as its maker numbers them.", ID("subsystem_device")},
       {"RevisionID", "The revision of the chip.",
        [](const TSysfsDevice& device) {
          return NumberAs<std::uint8_t>(device.ReadNumber("revision"));
        }},
       {"ClassCode", "What it is for: 1 storage, 2 network.", ClassCodeByte(2)},
       {"SubclassCode", "The same, more closely.", ClassCodeByte(1)},
       {"Driver", "The driver that serves it.", ReadDriver}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
