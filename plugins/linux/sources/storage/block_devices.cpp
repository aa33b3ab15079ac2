// SPDX-License-Identifier: Apache-2.0
#include "block_devices.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <boost/algorithm/string/predicate.hpp>

#include "partitions.h"
#include "sources/device_folder.h"

namespace NVORNQDX20 {
namespace {

using boost::algorithm::starts_with;

const char* const kDiskFolder = "/sys/block";

/// Drivers of hardware. Their disks may lack the link "device" in a copied tree.
constexpr std::string_view kDrivers[] = {"cciss!", "dasd", "fd", "hd",  "mmcblk", "mtdblock",
                                         "nvme",   "sd",   "sr", "ubd", "vd",     "xvd"};

bool HasNumberAfter(std::string_view prefix, std::string_view name) {
  return starts_with(name, prefix) && name.size() > prefix.size() &&
         (name[prefix.size()] == '_' || (name[prefix.size()] >= '0' && name[prefix.size()] <= '9'));
}

TReading<EBlockKind> KindOf(const std::string& name, const TFiles& folder) {
  if (starts_with(name, "dm-")) return EBlockKind::kDeviceMapper;
  if (HasNumberAfter("md", name)) return EBlockKind::kRAID;
  if (HasNumberAfter("loop", name)) return EBlockKind::kLoop;
  const bool isKnown =
      std::any_of(std::begin(kDrivers), std::end(kDrivers),
                  [&name](std::string_view driver) { return starts_with(name, driver); });
  if (isKnown) return EBlockKind::kDrive;
  return folder.Exists("device").map(
      [](bool isDrive) { return isDrive ? EBlockKind::kDrive : EBlockKind::kOther; });
}

/// The kernel makes memory disks that nobody asked for. Of a disk with several paths, each path has
/// a hidden device of its own.
TReading<bool> IsTaken(const std::string& name, const TFiles& folder) {
  const TReason obstacle = ObstacleToDevice(folder, name);
  if (!obstacle.empty()) return Missing(obstacle);
  if (HasNumberAfter("ram", name)) return false;
  if (!starts_with(name, "nvme") || folder.IsAbsent("hidden")) return true;
  return folder.ReadFlag("hidden").map([](bool isHidden) { return !isHidden; });
}

/// In sysfs, "!" replaces a slash in the name of the device file.
std::string KernelNameOf(std::string name) {
  std::replace(name.begin(), name.end(), '!', '/');
  return name;
}

std::string FileNameOf(std::string kernelName) {
  std::replace(kernelName.begin(), kernelName.end(), '/', '!');
  return kernelName;
}

/// The kernel counts sectors of 512 bytes, independent of the disk's own sector size.
constexpr std::uint64_t kSectorSize = 512;

TBlockDevice MakeDevice(const THost& host, const TFiles& folder, const TFiles& disk,
                        const std::string& name, EBlockKind kind) {
  const TText number = folder.ReadLine("dev");
  return {{folder},
          disk,
          KernelNameOf(name),
          kind,
          number,
          Scaled(folder.ReadNumber("size"), kSectorSize),
          {},
          folder.ReadFlag("ro"),
          {},
          std::vector<std::string>(),
          Missing("not of the device mapper"),
          Missing("not of the device mapper"),
          Missing("not an array"),
          number ? TUdevData(host, *number) : TUdevData(folder.PathOf("dev"), number)};
}

/// In sysfs, a partition is in the folder of its disk.
TBlockDevice MakeListed(const THost& host, const TListedDevice& listed) {
  const bool isPartition = !listed.fDisk.empty();
  const std::string name = FileNameOf(listed.fName);
  const TFiles disk = host.In(kDiskFolder).In(isPartition ? FileNameOf(listed.fDisk) : name);
  const TFiles folder = isPartition ? disk.In(name) : disk;
  const EBlockKind kind =
      isPartition ? EBlockKind::kPartition : KindOf(name, folder).ValueOr(EBlockKind::kOther);
  TBlockDevice device = MakeDevice(host, folder, disk, name, kind);
  device.fBlockSize = Missing("sysfs does not have the device");
  device.fSlaves = Missing("sysfs does not have the device");
  device.fDiskName = listed.fDisk;
  return device;
}

TReading<std::vector<std::string>> ListSlaves(const TBlockDevice& device) {
  return device.List("slaves").map([](std::vector<std::string> slaves) {
    for (std::string& slave : slaves) slave = KernelNameOf(std::move(slave));
    return slaves;
  });
}

/// The sources of a mount or of a line of fstab that can name the device.
std::vector<std::string> SourcesOf(const TBlockDevice& device) {
  std::vector<std::string> sources = {device.GetPath()};
  const auto add = [&sources](const std::string& prefix, const TText& name) {
    if (name) sources.push_back(prefix + *name);
  };
  add("/dev/mapper/", device.fMapperName);
  const TLogicalVolume volume = ParseLogicalVolume(device.fMapperName.ValueOr(""));
  if (starts_with(device.fMapperUUID.ValueOr(""), "LVM-") && !volume.fName.empty()) {
    sources.push_back("/dev/" + volume.fGroup + "/" + volume.fName);
  }
  add("UUID=", device.fUdev.Get("ID_FS_UUID"));
  add("LABEL=", device.fUdev.GetDecoded("ID_FS_LABEL_ENC"));
  add("PARTUUID=", device.fUdev.Get("ID_PART_ENTRY_UUID"));
  add("PARTLABEL=", device.fUdev.GetDecoded("ID_PART_ENTRY_NAME"));
  for (const std::string& link : device.fUdev.GetLinks()) sources.push_back("/dev/" + link);
  return sources;
}

}  // namespace

TLogicalVolume ParseLogicalVolume(const std::string& mapperName) {
  TLogicalVolume volume;
  std::string* name = &volume.fGroup;
  for (std::size_t i = 0; i < mapperName.size(); ++i) {
    const bool isDash = mapperName[i] == '-';
    const bool isDouble = isDash && mapperName.compare(i, 2, "--") == 0;
    if (isDash && !isDouble && name == &volume.fGroup) {
      name = &volume.fName;
      continue;
    }
    *name += mapperName[i];
    if (isDouble) ++i;
  }
  return volume;
}

TBlockDevices::TBlockDevices(const THost& host) {
  const TReading<std::vector<std::string>> names = host.List(kDiskFolder);
  fReason = names.GetReason();
  if (!names && !host.IsAbsent(kDiskFolder)) return;
  for (const std::string& name : names.ValueOr({})) {
    const TReading<bool> isTaken = IsTaken(name, host.In(kDiskFolder).In(name));
    if (!isTaken) fReason.Add(isTaken.GetReason());
    if (isTaken.ValueOr(false)) AddDisk(host, name);
  }
  AddListed(host);
  if (!fAll.empty() && !fReason.IsError()) fReason = {};
  for (std::size_t i = 0; i < fAll.size(); ++i) AddToIndex(i);
}

/// Of a machine that was copied in part, sysfs may lack devices, their numbers and their sizes.
void TBlockDevices::AddListed(const THost& host) {
  std::unordered_map<std::string, std::size_t> known;
  for (std::size_t i = 0; i < fAll.size(); ++i) known.emplace(fAll[i].fKernelName, i);
  const TText list = host.Read("/proc/partitions", TFiles::kMaxTableSize);
  if (fAll.empty() && list.GetReason().IsError()) fReason.Add(list.GetReason());
  for (const TListedDevice& listed : ParsePartitions(list.ValueOr(""))) {
    if (HasNumberAfter("ram", listed.fName)) continue;
    const auto found = known.find(listed.fName);
    if (found == known.end()) fAll.push_back(MakeListed(host, listed));
    TBlockDevice& device = found == known.end() ? fAll.back() : fAll[found->second];
    if (device.fNumber && device.fSize) continue;
    if (!device.fNumber && device.IsAbsent("dev")) {
      device.fNumber = listed.fNumber;
      device.fUdev = TUdevData(host, listed.fNumber);
    }
    if (!device.fSize && device.IsAbsent("size")) device.fSize = listed.fSize;
  }
}

void TBlockDevices::AddDisk(const THost& host, const std::string& name) {
  const TFiles folder = host.In(kDiskFolder).In(name);
  const TReading<EBlockKind> kind = KindOf(name, folder);
  if (!kind) return fReason.Add(kind.GetReason());
  TBlockDevice device = MakeDevice(host, folder, folder, name, *kind);
  if (device.fKind == EBlockKind::kLoop && device.IsEmpty()) return;
  device.fBlockSize = folder.ReadNumber("queue/logical_block_size");
  if (device.fKind == EBlockKind::kDeviceMapper) {
    device.fMapperName = folder.ReadLine("dm/name");
    device.fMapperUUID = folder.ReadLine("dm/uuid");
  }
  if (device.fKind == EBlockKind::kRAID) device.fLevel = folder.ReadLine("md/level");
  if (device.fKind != EBlockKind::kDrive) device.fSlaves = ListSlaves(device);
  fAll.push_back(device);
  if (device.fKind == EBlockKind::kDeviceMapper) return;
  const auto files = folder.List();
  if (files) {
    AddPartitions(host, device, *files);
  } else {
    fReason.Add(files.GetReason());
  }
}

void TBlockDevices::AddPartitions(const THost& host, const TBlockDevice& disk,
                                  const std::vector<std::string>& files) {
  for (const std::string& name : files) {
    // The name begins with the disk's; so does that of another area of an eMMC.
    const bool mayBePartition = name.size() > disk.fKernelName.size() &&
                                starts_with(KernelNameOf(name), disk.fKernelName) &&
                                PrintableText(name) == name;
    if (!mayBePartition) continue;
    const TReading<bool> isPartition = disk.In(name).Exists("partition");
    if (!isPartition) fReason.Add(isPartition.GetReason());
    if (!isPartition.ValueOr(false)) continue;
    TBlockDevice partition = MakeDevice(host, disk.In(name), disk, name, EBlockKind::kPartition);
    partition.fBlockSize = disk.fBlockSize;
    partition.fDiskName = disk.fKernelName;
    fAll.push_back(std::move(partition));
  }
}

void TBlockDevices::AddToIndex(std::size_t position) {
  const TBlockDevice& device = fAll[position];
  fByName.emplace(device.fKernelName, position);
  if (device.fNumber) fByNumber.emplace(*device.fNumber, position);
  for (std::string& source : SourcesOf(device)) fBySource.emplace(std::move(source), position);
}

const TBlockDevice* TBlockDevices::FindBy(const TIndex& index, const std::string& key) const {
  const auto found = index.find(key);
  return found == index.end() ? nullptr : &fAll[found->second];
}

const TBlockDevice* TBlockDevices::FindMounted(const std::string& number,
                                               const std::string& source) const {
  const TBlockDevice* const device = FindBy(fByNumber, number);
  return device != nullptr ? device : FindBy(fBySource, source);
}

}  // namespace NVORNQDX20
