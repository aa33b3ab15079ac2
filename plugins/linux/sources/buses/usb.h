// SPDX-License-Identifier: Apache-2.0
/// The devices on USB.
#ifndef PLUGINS_LINUX_SOURCES_BUSES_USB_H_
#define PLUGINS_LINUX_SOURCES_BUSES_USB_H_

#include <cstdint>
#include <string>
#include <vector>

#include "sources/device_folder.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// The file name is the path of ports from the bus on, as in "1-1.4"; "usb1" for the root of bus 1.
struct TUSBDevice : TDeviceFolder {
  TReading<std::uint16_t> fVendor;
  TReading<std::uint16_t> fProduct;
  TReading<std::uint8_t> fClass;                ///< 0 if each interface has its own.
  std::vector<std::uint8_t> fInterfaceClasses;  ///< Each once, in the order of the interfaces.
  std::vector<std::string> fDrivers;            ///< Likewise, without interfaces that have none.
  TReason fInterfaceError;                      ///< Why the classes or drivers may not be all.
  bool fIsHub = false;

  // Of the list usb.ids.
  TText fVendorName;
  TText fProductName;
  TText fClassName;  ///< Of all interfaces, with ", " between them, if the device has no class.
};

/// Reads hexadecimal digits, which these files have without "0x".
template <typename T>
TReading<T> ReadUSBNumber(const TFiles& device, const char* file) {
  const TText digits =
      device.ReadLine(file).map([](const std::string& line) { return "0x" + line; });
  return ToNumber<T>(digits, device.PathOf(file));
}

/// Reads a release such as "2.10" as the digits that the device has for it: 0x0210.
TReading<std::uint16_t> ReadUSBRelease(const TFiles& device, const char* file);

/// Reads a text that the maker may have left as it was.
TText ReadUSBText(const TFiles& device, const char* file);

struct TUSBDevices {
  explicit TUSBDevices(const THost& host);

  TInstances<TUSBDevice> fAll;  ///< Sorted by file name.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_BUSES_USB_H_
