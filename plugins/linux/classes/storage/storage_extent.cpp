// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_StorageExtent: whole media, and block devices that the kernel makes.
#include "storage_extent.h"

#include <algorithm>
#include <string>

namespace NVORNQDX20 {
namespace {

const char* const kExtentClassName = "VORNSG_StorageExtent";

TInstances<TExtent> List(const THost& host, const std::function<bool(const TBlockDevice&)>& taken) {
  const auto& devices = host.Shared<TBlockDevices>();
  TInstances<TExtent> extents;
  if (!devices.GetReason().empty()) extents.Miss(devices.GetReason());
  for (const TBlockDevice& device : devices.All()) {
    if (!taken(device) || !IsExtent(device)) continue;
    extents.fAll.push_back({{device.GetPath(), device.fKernelName}, device});
  }
  return extents;
}

/// The word before the dash: "lvm" of "LVM-...", "crypt" of "CRYPT-...", "mpath".
TText MapperKind(const TBlockDevice& device) {
  if (device.fMapperUUID.GetReason().IsError()) return device.fMapperUUID;
  const std::string uuid = device.fMapperUUID.ValueOr("");
  std::string kind = uuid.substr(0, uuid.find('-'));
  std::transform(kind.begin(), kind.end(), kind.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return kind.empty() ? "dm" : kind.substr(0, 4) == "part" ? "part" : kind;
}

/// As lsblk(8) names it, and for what that has no name the name of the driver.
TText ReadKind(const TBlockDevice& device) {
  switch (device.fKind) {
    case EBlockKind::kPartition:
      return "part";
    case EBlockKind::kDeviceMapper:
      return MapperKind(device);
    case EBlockKind::kRAID:
      return device.fLevel.GetReason().IsError() ? device.fLevel
                                                 : TText(device.fLevel.ValueOr("md"));
    case EBlockKind::kLoop:
      return "loop";
    case EBlockKind::kDrive:
      return device.fKernelName.substr(0, 2) == "sr" ? "rom" : "disk";
    case EBlockKind::kOther:
      break;
  }
  return device.fKernelName.substr(0, device.fKernelName.find_first_of("0123456789/"));
}

TNumber CountBlocks(const TBlockDevice& device) {
  return device.fBlockSize.and_then(
      [&device](std::uint64_t size) { return Scaled(device.fSize, 1, size); });
}

constexpr std::uint16_t kReadable = 1;
constexpr std::uint16_t kReadAndWritten = 3;

TReading<std::uint16_t> ReadAccess(const TBlockDevice& device) {
  return device.fReadOnly.map([](bool readOnly) { return readOnly ? kReadable : kReadAndWritten; });
}

}  // namespace

std::function<TInstances<TExtent>(const THost&)> ExtentsOf(EBlockKind kind) {
  return [kind](const THost& host) {
    return List(host, [kind](const TBlockDevice& device) { return device.fKind == kind; });
  };
}

bool IsExtent(const TBlockDevice& device) { return !device.IsEmpty(); }

TInstanceName ExtentName(const TBlockDevice& device) {
  return {kExtentClassName, device.GetPath()};
}

THostTable<TExtent> StorageExtentTable() {
  return THostTable<TExtent>{
      kExtentClassName,
      "Blocks of data: the medium of a drive, a partition, or what the kernel makes, for example "
      "compressed memory or a disk on the network.",
      [](const THost& host) {
        return List(host, [](const TBlockDevice& device) {
          return device.fKind == EBlockKind::kDrive || device.fKind == EBlockKind::kOther;
        });
      },
      {{"Kind",
        "What it is: \"disk\", \"rom\", \"part\", \"lvm\", \"crypt\", \"mpath\", \"loop\", "
        "the level of a RAID such as \"raid1\", or the name of the driver.",
        ReadKind},
       {"DeviceNumber", "The kernel's number, as in \"8:1\".", &TBlockDevice::fNumber},
       {"Size", "The size, exactly.", &TBlockDevice::fSize, TUnit{"byte"}},
       {"BlockSize", "The smallest block that can be addressed.", &TBlockDevice::fBlockSize,
        TUnit{"byte"}},
       {"NumberOfBlocks", "The number of such blocks.", CountBlocks},
       {"Access", "Whether it can be written.", ReadAccess,
        TEnumeration{{0, "Unknown"},
                     {1, "Readable"},
                     {2, "Writeable"},
                     {3, "Read/Write Supported"},
                     {4, "Write Once"}}},
       {"Primordial", "Whether it is not made of other block devices.",
        [](const TBlockDevice& device) {
          return device.fKind == EBlockKind::kDrive || device.fKind == EBlockKind::kOther;
        }},
       {"ContentType", "What udev found in it, as in \"ext4\", \"LVM2_member\" or \"swap\".",
        FromUdev("ID_FS_TYPE")},
       {"ContentUUID", "The UUID of what udev found in it.", FromUdev("ID_FS_UUID"),
        ESecret::kSerial},
       {"ContentLabel", "The label of what udev found in it.", DecodedFromUdev("ID_FS_LABEL_ENC")}}}
      .DerivedFrom(LogicalDeviceTable());
}

TClass StorageExtentClass() { return StorageExtentTable(); }

}  // namespace NVORNQDX20
