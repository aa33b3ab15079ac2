// SPDX-License-Identifier: Apache-2.0
/// All block devices of a machine: drives, their partitions, and what the kernel makes of them.
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_BLOCK_DEVICES_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_BLOCK_DEVICES_H_

#include <string>
#include <unordered_map>
#include <vector>

#include "sources/host.h"
#include "udev_data.h"

namespace NVORNQDX20 {

enum class EBlockKind {
  kDrive,         ///< Hardware, or what a hypervisor presents as such.
  kPartition,     ///< A part of another block device.
  kDeviceMapper,  ///< Logical volumes, encrypted devices, multipath devices.
  kRAID,          ///< An array of the driver md.
  kLoop,          ///< A file.
  kOther          ///< Compressed memory, a disk on the network, others of their kind.
};

/// The relative paths of its files lead to its folder in sysfs.
struct TBlockDevice : TFiles {
  std::string GetPath() const { return "/dev/" + fKernelName; }
  /// The disk that this is a partition of; the device itself if it is none.
  TFiles fDisk;
  std::string fKernelName;  ///< For example "sda1", "cciss/c0d0".
  EBlockKind fKind;
  TText fNumber;       ///< For example "8:1".
  TNumber fSize;       ///< In bytes. Of a drive: the size of its medium.
  TNumber fBlockSize;  ///< The smallest block that can be addressed, in bytes.
  TReading<bool> fReadOnly;
  std::string fDiskName;                       ///< Of a partition: the kernel's name of the disk.
  TReading<std::vector<std::string>> fSlaves;  ///< The kernel's names of what it is made of.
  TText fMapperName;                           ///< Of the device mapper, for example "vg0-root".
  TText fMapperUUID;                           ///< Of the device mapper, for example "LVM-...".
  TText fLevel;                                ///< Of an array, for example "raid1".
  TUdevData fUdev;

  /// Returns whether there is no medium in it, or a loop device has no file.
  bool IsEmpty() const { return fSize.ValueOr(1) == 0; }
};

/// A logical volume of LVM, by the name that the device mapper has for it.
struct TLogicalVolume {
  std::string fGroup;
  std::string fName;
};

/// Parses "vg--0-root", where "--" is a "-" of a name. Names that have no single "-" are all group.
TLogicalVolume ParseLogicalVolume(const std::string& mapperName);

/// The block devices of sysfs, else of /proc/partitions; without hidden paths and unused memory
/// disks.
class TBlockDevices {
 public:
  explicit TBlockDevices(const THost& host);

  const std::vector<TBlockDevice>& All() const { return fAll; }
  /// Why there are none, or why some are missing.
  const TReason& GetReason() const { return fReason; }

  /// Returns the device of the kernel's name, for example "sda"; a null pointer if there is none.
  const TBlockDevice* Find(const std::string& kernelName) const {
    return FindBy(fByName, kernelName);
  }
  /// Returns what is mounted. `number` is that of the mount, for example "8:1"; empty if not known.
  /// `source` is a path such as "/dev/mapper/vg0-root", or for example "UUID=...".
  const TBlockDevice* FindMounted(const std::string& number, const std::string& source) const;

 private:
  using TIndex = std::unordered_map<std::string, std::size_t>;

  void AddDisk(const THost& host, const std::string& name);
  void AddPartitions(const THost& host, const TBlockDevice& disk,
                     const std::vector<std::string>& files);
  void AddListed(const THost& host);
  void AddToIndex(std::size_t position);
  const TBlockDevice* FindBy(const TIndex& index, const std::string& key) const;

  std::vector<TBlockDevice> fAll;
  TReason fReason;
  TIndex fByName;
  TIndex fByNumber;
  TIndex fBySource;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_BLOCK_DEVICES_H_
