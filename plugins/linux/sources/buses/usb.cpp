// SPDX-License-Identifier: Apache-2.0
#include "usb.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include <boost/algorithm/string/predicate.hpp>

#include "id_names.h"
#include "sources/firmware/placeholders.h"

namespace NVORNQDX20 {
namespace {

constexpr std::uint8_t kHubClass = 9;

template <typename T>
void AddOnce(std::vector<T>& all, const T& one) {
  if (std::find(all.begin(), all.end(), one) == all.end()) all.push_back(one);
}

/// Returns the device of an interface such as "1-1.4:1.0"; empty for a device.
std::string DeviceOf(const std::string& interface) {
  const std::size_t colon = interface.find(':');
  if (colon == std::string::npos) return {};
  const std::string device = interface.substr(0, colon);
  constexpr const char* kRootEnd = "-0";
  const bool isRoot = boost::algorithm::ends_with(device, kRootEnd);
  return isRoot ? "usb" + device.substr(0, device.size() - 2) : device;
}

TUSBDevice MakeDevice(const TDeviceFolder& folder) {
  TUSBDevice device{folder, {}, {}, {}, {}, {}, {}, false, {}, {}, {}};
  device.fVendor = ReadUSBNumber<std::uint16_t>(folder, "idVendor");
  device.fProduct = ReadUSBNumber<std::uint16_t>(folder, "idProduct");
  device.fClass = ReadUSBNumber<std::uint8_t>(folder, "bDeviceClass");
  device.fIsHub = device.fClass ? *device.fClass == kHubClass
                                : boost::algorithm::starts_with(folder.fFileName, "usb");
  return device;
}

void AddInterface(const TFiles& interface, TUSBDevice& device) {
  const auto number = ReadUSBNumber<std::uint8_t>(interface, "bInterfaceClass");
  if (number) AddOnce(device.fInterfaceClasses, *number);
  const TText driver = ReadDriverOf(interface);
  if (driver) AddOnce(device.fDrivers, *driver);
  for (const TReason& reason : {number.GetReason(), driver.GetReason()}) {
    if (reason.IsError()) device.fInterfaceError = reason;
  }
}

using TClasses = TReading<std::vector<std::string>>;

/// Where the list has the names of a device.
struct TUSBPaths {
  TText fVendor;
  TText fProduct;
  TClasses fClasses;
};

TUSBPaths PathsOf(const TUSBDevice& device) {
  TUSBPaths paths;
  paths.fVendor = device.fVendor.map(HexID<std::uint16_t>);
  paths.fProduct = paths.fVendor.and_then([&](const std::string& vendor) {
    return device.fProduct.map([&](std::uint16_t id) { return vendor + '\t' + HexID(id); });
  });
  paths.fClasses = device.fClass.and_then([&](std::uint8_t own) -> TClasses {
    if (own == 0 && !device.fInterfaceError.empty()) return Missing(device.fInterfaceError);
    std::vector<std::string> classes;
    const bool isOfInterfaces = own == 0 && !device.fInterfaceClasses.empty();
    for (const std::uint8_t each :
         isOfInterfaces ? device.fInterfaceClasses : std::vector<std::uint8_t>{own}) {
      classes.push_back("C " + HexID(each));
    }
    return classes;
  });
  return paths;
}

void SetNames(TUSBDevice& device, const TUSBPaths& paths, const TIDNames& names) {
  const auto nameOf = [&names](const std::string& path) { return names.Get(path); };
  device.fVendorName = paths.fVendor.and_then(nameOf);
  device.fProductName = paths.fProduct.and_then(nameOf);
  device.fClassName = paths.fClasses.and_then([&](const std::vector<std::string>& classes) {
    TText all("");
    for (const std::string& path : classes) {
      all = all.and_then([&](const std::string& before) {
        return nameOf(path).map(
            [&](const std::string& name) { return before + (before.empty() ? "" : ", ") + name; });
      });
    }
    return all;
  });
}

}  // namespace

TReading<std::uint16_t> ReadUSBRelease(const TFiles& device, const char* file) {
  return device.ReadLine(file).and_then([&](std::string digits) -> TReading<std::uint16_t> {
    digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
    return ToNumber<std::uint16_t>("0x" + digits, device.PathOf(file));
  });
}

TText ReadUSBText(const TFiles& device, const char* file) {
  return WithoutPlaceholder(device.ReadLine(file), device.PathOf(file));
}

TUSBDevices::TUSBDevices(const THost& host) {
  TInstances<TDeviceFolder> folders = ListDevices(host, "/sys/bus/usb/devices");
  fAll.fReason = std::move(folders.fReason);
  std::map<std::string, std::size_t> places;
  for (const TDeviceFolder& folder : folders.fAll) {
    if (!DeviceOf(folder.fFileName).empty()) continue;
    TUSBDevice device = MakeDevice(folder);
    if (device.fClass.GetReason().IsError()) {  // it could be a hub
      fAll.Miss(device.fClass.GetReason());
      continue;
    }
    places.emplace(folder.fFileName, fAll.fAll.size());
    fAll.fAll.push_back(std::move(device));
  }
  for (const TDeviceFolder& folder : folders.fAll) {
    const auto owner = places.find(DeviceOf(folder.fFileName));
    if (owner != places.end()) AddInterface(folder, fAll.fAll[owner->second]);
  }
  std::vector<TUSBPaths> paths;
  paths.reserve(fAll.fAll.size());
  std::set<std::string> wanted;
  for (const TUSBDevice& device : fAll.fAll) {
    const TUSBPaths& own = paths.emplace_back(PathsOf(device));
    for (const TText* path : {&own.fVendor, &own.fProduct}) {
      if (*path) wanted.insert(**path);
    }
    if (own.fClasses) wanted.insert(own.fClasses->begin(), own.fClasses->end());
  }
  const TIDNames names(
      host, {"/usr/share/misc/usb.ids", "/var/lib/usbutils/usb.ids", "/usr/share/hwdata/usb.ids"},
      wanted);
  for (std::size_t i = 0; i < paths.size(); ++i) SetNames(fAll.fAll[i], paths[i], names);
}

}  // namespace NVORNQDX20
