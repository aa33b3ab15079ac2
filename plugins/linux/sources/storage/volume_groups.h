// SPDX-License-Identifier: Apache-2.0
/// The volume groups of LVM: as the device mapper has them now, and as LVM last saved them.
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_VOLUME_GROUPS_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_VOLUME_GROUPS_H_

#include <map>
#include <string>
#include <vector>

#include "block_devices.h"
#include "lvm_metadata.h"

namespace NVORNQDX20 {

/// What is only in the saved text is missing for a group that has none.
struct TKnownGroup : TVolumeGroup {
  TReading<bool> fIsActive;           ///< Whether the device mapper has one of its volumes.
  std::vector<std::string> fVolumes;  ///< The kernel's names of its volumes: "dm-0".
  std::vector<std::string> fMembers;  ///< The kernel's names of its physical volumes: "sda2".
};

struct TVolumeGroups {
  explicit TVolumeGroups(const THost& host);

  /// Returns the path of the block device that a physical volume is on. Missing if none is known.
  TText FindDevice(const TPhysicalVolume& volume) const;

  std::vector<TKnownGroup> fAll;
  TReason fReason;  ///< Why there are none, or not all.
  /// The kernel's names of physical volumes, by their UUIDs.
  std::map<std::string, std::string> fDevices;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_VOLUME_GROUPS_H_
