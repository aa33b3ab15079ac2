// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_SCSIDevice: devices of the SCSI generic driver.
#include <array>

#include "logical_device.h"
#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

/// The peripheral device types of the SCSI Primary Commands, by number.
constexpr std::array kDeviceTypes = {
    "Direct Access Device",  "Sequential Access Device", "Printer Device",
    "Processor Device",      "Write Once Device",        "CD-ROM Device",
    "Scanner Device",        "Optical Memory Device",    "Medium Changer Device",
    "Communications Device",
};

TInstances<TSysfsDevice> ListSCSIDevices(const THost& host) {
  TInstances<TSysfsDevice> devices = ListDevices(host, "/sys/class/scsi_generic");
  for (TSysfsDevice& device : devices.fAll) {
    device.fID = "/dev/" + device.fID;
    device.fFolder += "device/";
  }
  return devices;
}

TText ReadDeviceType(const TSysfsDevice& device) {
  return device.ReadLine("type").map([](const std::string& type) -> std::string {
    for (std::size_t number = 0; number < kDeviceTypes.size(); ++number) {
      if (type == std::to_string(number)) return kDeviceTypes[number];
    }
    return "Device Type " + type;
  });
}

/// An inquiry field of blanks gives an empty value, since the device has no such text; only a
/// missing file gives null.
auto InquiryText(const char* file) {
  return [file](const TSysfsDevice& device) {
    return device.fFiles->Read(device.fFolder + file).map(PrintableText);
  };
}

}  // namespace

TClass SCSIDeviceClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_SCSIDevice",
      "A SCSI device, or one that the system presents as such.",
      ListSCSIDevices,
      {{"DeviceID", "The path of the device, as in /dev/sg0.", &TSysfsDevice::fID, kKey},
       {"DeviceType", "Its peripheral device type, in words.", ReadDeviceType},
       {"VendorID", "The vendor, as the device names it.", InquiryText("vendor")},
       {"ProductID", "The product, as the device names it.", InquiryText("model")}}};
}

}  // namespace NVORNQDX20
