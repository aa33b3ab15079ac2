// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_USBDevice and VORNSG_USBHub: what is plugged in on USB, and built in.
#include <vector>

#include "classes/logical_device.h"
#include "sources/buses/id_names.h"
#include "sources/buses/usb.h"

namespace NVORNQDX20 {
namespace {

struct TUSB : TDevice, TUSBDevice {};

TText USBNameOf(const TUSBDevice& device) {
  return device.fVendor.and_then([&](std::uint16_t vendor) {
    return device.fProduct.map(
        [vendor](std::uint16_t product) { return HexID(vendor) + ":" + HexID(product); });
  });
}

auto DevicesWhich(bool areHubs) {
  return [areHubs](const THost& host) {
    const TInstances<TUSBDevice>& known = host.Shared<TUSBDevices>().fAll;
    TInstances<TUSB> devices;
    devices.fReason = known.fReason;
    devices.fAll.reserve(known.fAll.size());
    for (const TUSBDevice& each : known.fAll) {
      if (each.fIsHub == areHubs) devices.fAll.push_back({{each.fFileName, USBNameOf(each)}, each});
    }
    return devices;
  };
}

template <typename T>
auto Hexadecimal(const char* file) {
  return [file](const TFiles& device) { return ReadUSBNumber<T>(device, file); };
}
auto Text(const char* file) {
  return [file](const TFiles& device) { return ReadUSBText(device, file); };
}

TReading<std::uint16_t> ReadVersion(const TFiles& device) {
  return ReadUSBRelease(device, "version");
}

TNumber ReadSpeed(const TFiles& device) {
  constexpr double kMegabits = 1e6;
  return ReadRate(device, "speed", kMegabits);
}

/// The kernel writes "100mA".
TReading<std::uint16_t> ReadMaxPower(const TFiles& device) {
  const char* const file = "bMaxPower";
  const TText digits = device.ReadLine(file).map(
      [](const std::string& line) { return line.substr(0, line.find('m')); });
  return ToNumber<std::uint16_t>(digits, device.PathOf(file));
}

/// From USB 3 on, the number is the exponent of two of a size that a byte cannot hold.
TReading<std::uint8_t> ReadMaxPacketSize(const TFiles& device) {
  const char* const file = "bMaxPacketSize0";
  constexpr std::uint8_t kExponent = 9;
  auto size = device.ReadNumber<std::uint8_t>(file);
  if (size && *size == kExponent) return device.MissingFrom(file, "512 bytes are out of range");
  return size;
}

TReading<std::vector<std::uint8_t>> InterfaceClassesOf(const TUSBDevice& device) {
  if (!device.fInterfaceError.empty()) return Missing(device.fInterfaceError);
  return device.fInterfaceClasses;
}

TReading<std::vector<std::string>> DriversOf(const TUSBDevice& device) {
  if (!device.fInterfaceError.empty()) return Missing(device.fInterfaceError);
  if (device.fDrivers.empty()) return Missing("no driver is bound to its interfaces");
  return device.fDrivers;
}

THostTable<TUSB> USBDeviceTable() {
  return THostTable<TUSB>{
      "VORNSG_USBDevice",
      "A device on USB, by its bus and the ports that lead to it.",
      DevicesWhich(false),
      {{"VendorID", "The maker.", &TUSB::fVendor},
       {"VendorName", "The name of that maker.", &TUSB::fVendorName},
       {"ProductID", "The device, as its maker numbers them.", &TUSB::fProduct},
       {"ProductName", "The name of that device.", &TUSB::fProductName},
       {"DeviceReleaseNumber", "The release of the device: two decimal digits in each byte.",
        Hexadecimal<std::uint16_t>("bcdDevice")},
       {"Manufacturer", "The maker, as the device says.", Text("manufacturer")},
       {"Product", "What it is, as the device says.", Text("product")},
       {"SerialNumber", "The serial number of the device.", Text("serial"), ESecret::kSerial},
       {"ClassCode", "What it is for; 0 if that differs by interface.", &TUSB::fClass},
       {"SubclassCode", "The same, more closely.", Hexadecimal<std::uint8_t>("bDeviceSubClass")},
       {"ProtocolCode", "How drivers talk to it.", Hexadecimal<std::uint8_t>("bDeviceProtocol")},
       {"InterfaceClassCodes", "What its interfaces are for.", InterfaceClassesOf},
       {"ClassDescription", "What it or its interfaces are for, in words.", &TUSB::fClassName},
       {"Drivers", "The drivers that serve its interfaces.", DriversOf},
       {"USBVersion", "The version of USB that it follows: two decimal digits in each byte.",
        ReadVersion},
       {"Speed", "The speed of its link.", ReadSpeed, TUnit{"bit / second"}},
       {"MaxPower", "The most current that it takes from the bus.", ReadMaxPower,
        TUnit{"ampere * 10^-3"}},
       {"MaxPacketSize", "The largest packet of its control endpoint.", ReadMaxPacketSize,
        TUnit{"byte"}},
       {"NumberOfConfigs", "The configurations that it has.",
        FileNumber<std::uint8_t>("bNumConfigurations")},
       {"CurrentConfigValue", "The one in use.", FileNumber<std::uint8_t>("bConfigurationValue")},
       {"BusNumber", "Its bus.", FileNumber<std::uint16_t>("busnum")},
       {"DeviceNumber", "Its number on the bus, which it gets when it is plugged in.",
        FileNumber<std::uint8_t>("devnum")}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace

TClass USBDeviceClass() { return USBDeviceTable(); }

TClass USBHubClass() {
  return THostTable<TUSB>{
      "VORNSG_USBHub",
      "A hub on USB, also the root of a bus.",
      DevicesWhich(true),
      {{"NumberOfPorts", "The ports for other devices.", FileNumber<std::uint8_t>("maxchild")}}}
      .DerivedFrom(USBDeviceTable());
}

}  // namespace NVORNQDX20
