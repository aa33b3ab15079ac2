// SPDX-License-Identifier: Apache-2.0
#include "volume_groups.h"

#include <algorithm>

namespace NVORNQDX20 {
namespace {

const char* const kBackupFolder = "/etc/lvm/backup";
/// Of all files; a group of a hundred volumes has some 100 KiB.
constexpr std::size_t kMaxSize = 16U << 20U;

void AddOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

void AddSaved(const THost& host, TVolumeGroups& groups) {
  const TFiles folder = host.In(kBackupFolder);
  const auto names = folder.List();
  if (!names && !folder.IsAbsent("")) groups.fReason.Add(names.GetReason());
  std::size_t size = 0;
  for (const std::string& name : names.ValueOr({})) {
    const TText text = folder.Read(name, TFiles::kMaxTableSize);
    size += text.ValueOr("").size();
    if (size > kMaxSize) {
      groups.fReason.Add({kBackupFolder + std::string(": too large"), TReason::kError});
      return;
    }
    const TReading<TVolumeGroup> group = text.and_then([&](const std::string& each) {
      return ParseVolumeGroup(PrintableText(folder.PathOf(name)), each);
    });
    if (!group) {
      groups.fReason.Add(group.GetReason());
      continue;
    }
    TKnownGroup known;
    static_cast<TVolumeGroup&>(known) = *group;
    groups.fAll.push_back(std::move(known));
  }
}

/// A group of which only the device mapper knows.
TKnownGroup UnsavedGroup(const THost& host, const std::string& name, const std::string& uuid) {
  const TFiles folder = host.In(kBackupFolder);
  const TReason unread = folder.Read(name, TFiles::kMaxTableSize).GetReason();
  const TMissing missing =
      unread.empty() ? folder.MissingFrom(name, "does not have the group") : Missing(unread);
  TKnownGroup group;
  group.fName = name;
  group.fUUID = uuid;
  group.fSequence = group.fExtentSize = group.fExtents = group.fFreeExtents = missing;
  group.fStatus = missing;
  group.fLogicalVolumes = missing;
  return group;
}

/// Returns "abcdef-ghij-..." as LVM writes it.
std::string WithHyphens(const std::string& uuid) {
  constexpr std::size_t kParts[] = {6, 4, 4, 4, 4, 4, 6};
  std::string text;
  std::size_t at = 0;
  for (const std::size_t size : kParts) {
    text += (at == 0 ? "" : "-") + uuid.substr(at, size);
    at += size;
  }
  return text;
}

TKnownGroup& GroupOf(const THost& host, const TBlockDevice& volume, const std::string& uuid,
                     TVolumeGroups& groups) {
  for (TKnownGroup& group : groups.fAll) {
    if (group.fUUID && WithoutHyphens(*group.fUUID) == uuid) return group;
  }
  std::string name = ParseLogicalVolume(volume.fMapperName.ValueOr("")).fGroup;
  if (name.empty()) name = WithHyphens(uuid);
  groups.fAll.push_back(UnsavedGroup(host, name, WithHyphens(uuid)));
  return groups.fAll.back();
}

void AddActive(const THost& host, const TBlockDevices& devices, TVolumeGroups& groups) {
  for (const TBlockDevice& device : devices.All()) {
    const std::string uuid = ParseLVMMapperUUID(device.fMapperUUID.ValueOr("")).fGroupUUID;
    if (uuid.empty()) continue;
    TKnownGroup& group = GroupOf(host, device, uuid, groups);
    group.fVolumes.push_back(device.fKernelName);
    for (const std::string& name : device.fSlaves.ValueOr({})) {
      const TBlockDevice* const slave = devices.Find(name);
      if (slave == nullptr) continue;
      const TLVMNames inner = ParseLVMMapperUUID(slave->fMapperUUID.ValueOr(""));
      if (inner.fGroupUUID != uuid) AddOnce(group.fMembers, name);
    }
  }
}

/// The path that LVM has saved is only a hint: another disk may have it by now. Returns the
/// kernel's name of the device if udev does not know what is in it; else an empty text.
std::string HintedName(const TBlockDevices& devices, const std::string& path) {
  const TBlockDevice* const device = devices.FindMounted("", path);
  return device != nullptr && !device->fUdev.Get("ID_FS_UUID") ? device->fKernelName : "";
}

/// Finds the device of each physical volume, by what udev found in it.
void FindDevices(const TBlockDevices& devices, TVolumeGroups& groups) {
  std::map<std::string, std::string> names;
  for (const TBlockDevice& device : devices.All()) {
    const TText uuid = device.fUdev.Get("ID_FS_UUID");
    if (uuid) names.emplace(*uuid, device.fKernelName);
  }
  for (TKnownGroup& group : groups.fAll) {
    for (const TPhysicalVolume& volume : group.fPhysicalVolumes) {
      if (!volume.fUUID) continue;
      const auto found = names.find(*volume.fUUID);
      const std::string name =
          found != names.end() ? found->second : HintedName(devices, volume.fDevice.ValueOr(""));
      if (name.empty()) continue;
      groups.fDevices.emplace(*volume.fUUID, name);
      AddOnce(group.fMembers, name);
    }
  }
}

}  // namespace

TVolumeGroups::TVolumeGroups(const THost& host) {
  const auto& devices = host.Shared<TBlockDevices>();
  AddSaved(host, *this);
  AddActive(host, devices, *this);
  for (TKnownGroup& group : fAll) group.fIsActive = !group.fVolumes.empty();
  FindDevices(devices, *this);
  if (devices.GetReason().IsError()) fReason.Add(devices.GetReason());
  if (fAll.empty() && fReason.empty()) {
    fReason = "neither the device mapper nor " + std::string(kBackupFolder) + " has a volume group";
  }
}

TText TVolumeGroups::FindDevice(const TPhysicalVolume& volume) const {
  const auto found = fDevices.find(volume.fUUID.ValueOr(""));
  if (found != fDevices.end()) return "/dev/" + found->second;
  return Missing("no block device is known to be the physical volume");
}

}  // namespace NVORNQDX20
