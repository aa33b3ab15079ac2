// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_SCSIDevice: devices of the SCSI generic driver.
#include <array>

#include "classes/logical_device.h"

namespace NVORNQDX20 {
namespace {

/// The peripheral device types of the SCSI Primary Commands, by number.
constexpr std::array kDeviceTypes = {
    "Direct Access Device",  "Sequential Access Device", "Printer Device",
    "Processor Device",      "Write Once Device",        "CD-ROM Device",
    "Scanner Device",        "Optical Memory Device",    "Medium Changer Device",
    "Communications Device",
};

TReading<bool> AdaptDevice(TSysfsDevice& device) {
  device.fID = "/dev/" + device.fID;
  return true;
}

TText ReadDeviceType(const TFiles& device) {
  return device.ReadLine("device/type").map([](const std::string& type) -> std::string {
    for (std::size_t number = 0; number < kDeviceTypes.size(); ++number) {
      if (type == std::to_string(number)) return kDeviceTypes[number];
    }
    return "Device Type " + type;
  });
}

/// An inquiry field of blanks gives an empty value, since the device has no such text; only a
/// missing file gives null.
auto InquiryText(const char* file) {
  return [file](const TFiles& device) { return device.Read(file).map(PrintableText); };
}

}  // namespace

TClass SCSIDeviceClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_SCSIDevice",
      "A SCSI device, or one that the system presents as such.",
      DevicesIn("/sys/class/scsi_generic", AdaptDevice),
      {{"DeviceID", "The path of the device, as in /dev/sg0.", &TSysfsDevice::fID, kKey},
       {"DeviceType", "Its peripheral device type, in words.", ReadDeviceType},
       {"VendorID", "The vendor, as the device names it.", InquiryText("device/vendor")},
       {"ProductID", "The product, as the device names it.", InquiryText("device/model")}}};
}

}  // namespace NVORNQDX20
