// SPDX-License-Identifier: Apache-2.0
/// The functions of devices on PCI buses.
#ifndef PLUGINS_LINUX_SOURCES_BUSES_PCI_H_
#define PLUGINS_LINUX_SOURCES_BUSES_PCI_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "sources/device_folder.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// The file name is the address: domain, bus, device and function, as in "0000:3b:00.0".
struct TPCIFunction : TDeviceFolder {
  TReading<std::uint16_t> fVendor;
  TReading<std::uint16_t> fDevice;
  TReading<std::uint16_t> fSubsystemVendor;
  TReading<std::uint16_t> fSubsystem;
  TReading<std::uint32_t> fClass;  ///< Three bytes; the last is the programming interface.
  TReading<std::uint8_t> fRevision;
  TText fSlot;  ///< The physical one.

  // Of the list pci.ids.
  TText fVendorName;
  TText fDeviceName;
  TText fSubsystemVendorName;
  TText fSubsystemName;
  TText fClassName;
};

/// The parts of an address, for example of "0000:3b:00.0".
struct TPCIAddress {
  std::uint32_t fDomain = 0;
  std::uint8_t fBus = 0;
  std::uint8_t fDevice = 0;
  std::uint8_t fFunction = 0;
};
TReading<TPCIAddress> ParsePCIAddress(std::string_view address);

/// The width of a link in lanes, of a file that has 255 if it is not known.
TReading<std::uint16_t> ReadLinkWidth(const TFiles& function, const char* file);

/// Lists the functions by address.
TInstances<TPCIFunction> ListPCIFunctions(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_BUSES_PCI_H_
