// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_SCSIDevice: devices of the SCSI generic driver.
#include <array>

#include "catalogue.h"
#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

/// The peripheral device types of the SCSI Primary Commands, by number.
constexpr std::array kDeviceTypes = {
    "Direct Access Device",  "Sequential Access Device", "Printer Device",
    "Processor Device",      "Write Once Device",        "CD-ROM Device",
    "Scanner Device",        "Optical Memory Device",    "Medium Changer Device",
    "Communications Device",
};

TReading ReadDeviceType(const THostFiles& files, const std::string& folder) {
  TReading type = files.ReadLine(folder + "type");
  if (!type) return type;
  for (std::size_t number = 0; number < kDeviceTypes.size(); ++number) {
    if (*type.fValue == std::to_string(number)) return TReading::Of(kDeviceTypes[number]);
  }
  return TReading::Of("Device Type " + *type.fValue);
}

/// An inquiry field of blanks gives an empty value, since the device has no such text; only a
/// missing file gives null.
TReading ReadInquiryText(const THostFiles& files, const std::string& path) {
  TReading text = files.Read(path);
  if (text) *text.fValue = PrintableText(*text.fValue);
  return text;
}

void AddSCSIDevices(TNamespaceBuilder& builder, const THost& host, ICIMClass& scsiDevice) {
  const std::string devices = "/sys/class/scsi_generic";
  for (const std::string& name : host.fFiles.List(devices)) {
    const std::string id = "/dev/" + name;
    const std::string folder = devices + "/" + name + "/device/";
    builder.AddInstance(scsiDevice,
                        {{"DeviceID", id},
                         {"DeviceType", ReadDeviceType(host.fFiles, folder)},
                         {"VendorID", ReadInquiryText(host.fFiles, folder + "vendor")},
                         {"ProductID", ReadInquiryText(host.fFiles, folder + "model")}},
                        id);
  }
}

}  // namespace

TClassDescription SCSIDeviceClass() {
  return {{"VORNSG_SCSIDevice",
           "A SCSI device, or one that the system presents as such.",
           {{"DeviceID", TType::kCIMTypeString, true, "The path of the device, as in /dev/sg0."},
            {"DeviceType", TType::kCIMTypeString, false, "Its peripheral device type, in words."},
            {"VendorID", TType::kCIMTypeString, false, "The vendor, as the device names it."},
            {"ProductID", TType::kCIMTypeString, false, "The product, as the device names it."}}},
          AddSCSIDevices};
}

}  // namespace NVORNQDX20
