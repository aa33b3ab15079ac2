// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PCIDevice: functions on PCI buses.
#include <array>
#include <charconv>

#include "logical_device.h"
#include "machine/fields.h"
#include "machine/numbers.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;
using TID = TReadingOf<std::uint16_t>;

TID ReadID(const THostFiles& files, const std::string& path) {
  return NumberAs<std::uint16_t>(ReadNumber(files, path));
}

std::string FourDigits(std::uint16_t id) {
  std::array<char, 4> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), id, 16).ptr;
  const std::string text(digits.begin(), end);
  return std::string(digits.size() - text.size(), '0') + text;
}

/// Formats vendor and device as "8086:1572".
TReading NameOf(const TID& vendor, const TID& device) {
  if (!vendor || !device) return TReading::Missing(vendor ? device.fReason : vendor.fReason);
  return TReading::Of(FourDigits(*vendor.fValue) + ":" + FourDigits(*device.fValue));
}

/// Returns one byte of the class code; byte 0 is the programming interface.
TReadingOf<std::uint8_t> ByteOf(const TNumber& classCode, unsigned index) {
  if (!classCode) return TReadingOf<std::uint8_t>::Missing(classCode.fReason);
  return TReadingOf<std::uint8_t>::Of(static_cast<std::uint8_t>(*classCode.fValue >> (8U * index)));
}

TReading ReadDriver(const THostFiles& files, const std::string& path) {
  const TReading file = files.Read(path);
  TReading driver = TFields(path, file, '=').Get("DRIVER");
  return driver || !file ? driver : TReading::Missing("no driver is bound to it");
}

std::vector<TPropertySpec> PCIDeviceProperties() {
  return {{"VendorID", TType::kCIMTypeUint16, false, "The maker of the chip."},
          {"PCIDeviceID", TType::kCIMTypeUint16, false, "The chip, as its maker numbers them."},
          {"SubsystemVendorID", TType::kCIMTypeUint16, false, "The maker of the card."},
          {"SubsystemID", TType::kCIMTypeUint16, false, "The card, as its maker numbers them."},
          {"RevisionID", TType::kCIMTypeUint8, false, "The revision of the chip."},
          {"ClassCode", TType::kCIMTypeUint8, false, "What it is for: 1 storage, 2 network."},
          {"SubclassCode", TType::kCIMTypeUint8, false, "The same, more closely."},
          {"Driver", TType::kCIMTypeString, false, "The driver that serves it."}};
}

std::vector<TPropertyValue> ReadPCIDevice(const THostFiles& files, const std::string& folder) {
  const TID vendor = ReadID(files, folder + "vendor");
  const TID device = ReadID(files, folder + "device");
  const TNumber classCode = ReadNumber(files, folder + "class");
  return {{"Name", NameOf(vendor, device)},
          {"VendorID", vendor},
          {"PCIDeviceID", device},
          {"SubsystemVendorID", ReadID(files, folder + "subsystem_vendor")},
          {"SubsystemID", ReadID(files, folder + "subsystem_device")},
          {"RevisionID", NumberAs<std::uint8_t>(ReadNumber(files, folder + "revision"))},
          {"ClassCode", ByteOf(classCode, 2)},
          {"SubclassCode", ByteOf(classCode, 1)},
          {"Driver", ReadDriver(files, folder + "uevent")}};
}

void AddPCIDevices(TNamespaceBuilder& builder, const THost& host, ICIMClass& pciDevice) {
  const std::string devices = "/sys/bus/pci/devices";
  for (const std::string& address : ListDevices(builder, host.fFiles, pciDevice, devices)) {
    AddDevice(builder, host, pciDevice, address,
              ReadPCIDevice(host.fFiles, devices + "/" + address + "/"));
  }
}

}  // namespace

TClassDescription PCIDeviceClass() {
  return {DeviceClass("VORNSG_PCIDevice", "A function of a device on a PCI bus, by its address.",
                      PCIDeviceProperties()),
          AddPCIDevices};
}

}  // namespace NVORNQDX20
