// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_MediaAccessDevice: what all drives have in common.
#include "media_access_device.h"

#include <iterator>
#include <utility>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

const char* const kDriveClassName = "VORNSG_MediaAccessDevice";

EMedia MediaOf(const TBlockDevice& drive) {
  if (!boost::algorithm::starts_with(drive.fKernelName, "sr")) return EMedia::kDisk;
  return drive.fUdev.Get("ID_CDROM_DVD") ? EMedia::kDVD : EMedia::kCD;
}

/// Returns the first line that is there. A file that cannot be read is not replaced by the next.
/// The reason is that of the first file.
TText FirstLine(const TBlockDevice& drive, std::initializer_list<const char*> files,
                const std::vector<const char*>& udev) {
  TText first;
  for (const char* file : files) {
    TText line = drive.ReadLine(file);
    if (line || line.GetReason().IsError()) return line;
    const auto exists = drive.Exists(file);
    if (!exists) return Missing(exists.GetReason());
    if (*exists) return line;
    if (file == *files.begin()) first = std::move(line);
  }
  const TText found = drive.fUdev.FirstOf(udev);
  return found || found.GetReason().IsError() ? found.map(DecodeUdev) : first;
}

TText ReadWWN(const TDrive& drive) {
  const TText page = drive.Read("device/vpd_pg83");
  std::string name = ParseIdentificationPage(page.ValueOr(""));
  if (!name.empty()) return name;
  TText other = FirstLine(drive, {"wwid", "device/wwid"}, {"ID_WWN_WITH_EXTENSION", "ID_WWN"});
  return other || !page.GetReason().IsError() ? other : page;
}

const char* const kSerialNumberPage = "device/vpd_pg80";

TText ReadSerialNumberPage(const TFiles& drive) {
  return drive.Read(kSerialNumberPage).and_then([&](const std::string& page) -> TText {
    std::string text = ParseSerialNumberPage(page);
    if (text.empty()) return drive.MissingFrom(kSerialNumberPage, "empty");
    return text;
  });
}

/// A file that cannot be read is not replaced by what udev found out.
TText ReadSerialNumber(const TDrive& drive) {
  TText file = drive.FirstOf({"device/serial", "serial", kSerialNumberPage});
  if (!file) return file;
  if (*file != kSerialNumberPage) return drive.ReadLine(*file);
  TText serial = ReadSerialNumberPage(drive);
  const auto exists = drive.Exists(kSerialNumberPage);
  if (!exists) return Missing(exists.GetReason());
  if (serial || *exists) return serial;
  const TText found = drive.fUdev.FirstOf({"ID_SCSI_SERIAL", "ID_SERIAL_SHORT", "ID_SERIAL"});
  return found ? found : serial;
}

/// Returns the text of ATA, else what udev found if it is longer than that of SCSI. Missing if one
/// of the first two is there and cannot be read, since that of SCSI may be cut off.
TText LongestOf(const TDrive& drive, std::string TATAIdentity::*ofATA, const TText& ofUdev,
                const TText& ofSCSI) {
  if (drive.fATA && !((*drive.fATA).*ofATA).empty()) return (*drive.fATA).*ofATA;
  const bool isLonger = ofUdev && boost::algorithm::starts_with(*ofUdev, ofSCSI.ValueOr(""));
  if (isLonger) return ofUdev;
  for (const TReason& reason : {drive.fATA.GetReason(), ofUdev.GetReason()}) {
    if (reason.IsError()) return Missing(reason);
  }
  return ofSCSI;
}

/// SCSI has 16 characters for the model. udev asks ATA disks for all of it.
TText ReadFullModel(const TDrive& drive) {
  return LongestOf(drive, &TATAIdentity::fModel, drive.fUdev.GetDecoded("ID_MODEL_ENC"),
                   drive.fModel);
}

/// SCSI has four characters for the revision, ATA eight.
TText ReadFirmware(const TDrive& drive) {
  return LongestOf(drive, &TATAIdentity::fFirmware, drive.fUdev.Get("ID_REVISION"),
                   drive.fRevision);
}

TNumber ReadMaxMediaSize(const TDrive& drive) {
  if (drive.fRemovable.GetReason().IsError()) return Missing(drive.fRemovable.GetReason());
  if (drive.fRemovable.ValueOr(false)) return Missing("depends on the medium");
  return Scaled(drive.fSize, 1, 1000);
}

/// What another name of a drive is, and the name. All names are missing if one cannot be read.
using TOtherName = std::pair<std::string, std::string>;
TReading<std::vector<std::string>> OtherNames(const TDrive& drive, std::string TOtherName::*part) {
  const std::pair<const char*, TText> names[] = {
      {"WWN", drive.fWWN},
      {"serial number of udev", drive.fUdev.Get("ID_SERIAL_SHORT")},
      {"identifier of udev", drive.fUdev.Get("ID_SERIAL")},
      {"path of udev", drive.fUdev.Get("ID_PATH")}};
  std::vector<std::string> parts;
  for (const auto& [what, name] : names) {
    if (name.GetReason().IsError()) return Missing(name.GetReason());
    if (name) parts.push_back(TOtherName(what, *name).*part);
  }
  return parts;
}

/// What is in the path of a device below /sys/devices, and how it is attached then.
constexpr std::pair<const char*, const char*> kTransports[] = {
    {"/usb", "usb"},         {"/nvme", "nvme"}, {"/virtio", "virtio"}, {"/mmc_host/", "mmc"},
    {"/end_device-", "sas"}, {"/rport-", "fc"}, {"/session", "iscsi"}, {"/ata", "sata"},
    {"/vbd-", "xen"},        {"/fw", "sbp"}};

}  // namespace

TText ReadTransport(const TDrive& drive) {
  const TText bus = drive.fUdev.Get("ID_BUS");
  if (drive.fUdev.Get("ID_ATA_SATA")) return "sata";
  if (drive.fPath) {
    for (const auto& [part, transport] : kTransports) {
      if (drive.fPath->find(part) != std::string::npos) return transport;
    }
  }
  if (boost::algorithm::starts_with(drive.fKernelName, "nvme")) return "nvme";
  if (boost::algorithm::starts_with(drive.fKernelName, "mmc")) return "mmc";
  return bus || bus.GetReason().IsError()
             ? bus
             : TText(Missing("neither its place in sysfs nor udev tells"));
}

TInstanceName DriveName(const TBlockDevice& drive) { return {kDriveClassName, drive.GetPath()}; }

TDrive MakeDrive(const THost& host, const TBlockDevice& device) {
  TDrive drive{{device.GetPath(), device.fKernelName}, device, {}, {}, {}, {}, {}, {}, {}};
  const std::string path = device.PathOf("");
  drive.fName = path.substr(path.rfind('/') + 1);  // with "!" where the kernel has a slash
  drive.fPath = host.ReadLink(path);
  drive.fModel = FirstLine(drive, {"device/model", "device/name"}, {"ID_MODEL_ENC", "ID_MODEL"});
  drive.fRevision =
      FirstLine(drive, {"device/rev", "device/firmware_rev", "device/fwrev"}, {"ID_REVISION"});
  drive.fWWN = ReadWWN(drive);
  drive.fRemovable = drive.ReadFlag("removable");
  drive.fRotational = drive.ReadFlag("queue/rotational");
  drive.fATA = drive.Read("device/vpd_pg89").map(ParseATAPage);
  return drive;
}

std::function<TInstances<TDrive>(const THost&)> DrivesFor(EMedia media) {
  return [media](const THost& host) {
    const auto& devices = host.Shared<TBlockDevices>();
    TInstances<TDrive> drives;
    if (!devices.GetReason().empty()) drives.Miss(devices.GetReason());
    for (const TBlockDevice& device : devices.All()) {
      if (device.fKind != EBlockKind::kDrive || MediaOf(device) != media) continue;
      drives.fAll.push_back(MakeDrive(host, device));
    }
    return drives;
  };
}

THostTable<TDrive> MediaAccessDeviceTable() {
  return THostTable<TDrive>{
      kDriveClassName,
      "A drive: it reads and writes media, which are fixed or can be taken out.",
      {{"Model", "The model, as the disk names it.", &TDrive::fModel},
       {"ElementName", "The model in full, where the disk has room for 16 characters only.",
        ReadFullModel},
       {"Manufacturer",
        "The maker, as the disk names it; \"ATA\" if only a model is known, a number for a virtual "
        "disk.",
        [](const TDrive& drive) { return FirstLine(drive, {"device/vendor"}, {"ID_VENDOR_ENC"}); }},
       {"SerialNumber", "The serial number of the disk.", ReadSerialNumber, ESecret::kSerial},
       {"Revision", "The revision of the firmware, as far as SCSI has room for it.",
        &TDrive::fRevision},
       {"FirmwareRevision", "The revision of the firmware in full.", ReadFirmware},
       {"WWN", "The worldwide name, after \"naa.\" or \"eui.\".", &TDrive::fWWN, ESecret::kSerial},
       {"OtherIdentifyingInfo", "Other names of the drive.",
        [](const TDrive& drive) { return OtherNames(drive, &TOtherName::second); },
        ESecret::kSerial},
       {"IdentifyingDescriptions", "What the other names are, in the same order.",
        [](const TDrive& drive) { return OtherNames(drive, &TOtherName::first); }},
       {"State", "What the driver makes of it: \"running\" or \"live\" if all is well.",
        FileLine("device/state")},
       {"Transport", "How it is attached, as in \"sata\", \"sas\", \"nvme\", \"usb\", \"virtio\".",
        ReadTransport},
       {"MaxMediaSize", "The size of the disk.", ReadMaxMediaSize, TUnit{"byte * 10^3"}},
       {"DefaultBlockSize", "The smallest block that can be addressed.", &TBlockDevice::fBlockSize,
        TUnit{"byte"}},
       {"Removable", "Whether the medium can be taken out.", &TDrive::fRemovable},
       {"Rotational", "Whether the kernel takes it for a disk that turns.", &TDrive::fRotational},
       {"ReadOnly", "Whether it refuses to be written.", &TBlockDevice::fReadOnly},
       {"DeviceNumber", "The kernel's number, as in \"8:0\".", &TBlockDevice::fNumber}}}
      .DerivedFrom(LogicalDeviceTable());
}

TClass MediaAccessDeviceClass() { return MediaAccessDeviceTable(); }

}  // namespace NVORNQDX20
