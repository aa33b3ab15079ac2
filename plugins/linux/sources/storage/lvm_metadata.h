// SPDX-License-Identifier: Apache-2.0
/// Parses the text in which LVM keeps what it knows of a volume group: /etc/lvm/backup/*.
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_LVM_METADATA_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_LVM_METADATA_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// A section: "name { setting = value ... }". The elements of a list are several values.
struct TLVMSection {
  std::string fName;
  std::map<std::string, std::vector<std::string>> fValues;
  std::vector<TLVMSection> fSections;

  /// Returns the section of the name; null if there is none.
  const TLVMSection* Find(std::string_view name) const;
  /// Returns the first value; missing if there is none.
  TText Get(const std::string& name) const;
  TNumber GetNumber(const std::string& name) const;
  std::vector<std::string> GetList(const std::string& name) const;
};

/// Parses a text. The reason of a failure names the line.
TReading<TLVMSection> ParseLVMText(std::string_view text);

/// A disk or partition of a volume group.
struct TPhysicalVolume {
  std::string fName;  ///< In its group: "pv0".
  TText fUUID;        ///< With hyphens, as udev has it.
  TText fDevice;      ///< Where it was once: "/dev/sda2".
  TNumber fSize;      ///< Of the device, in bytes.
  TNumber fExtents;
  TNumber fUsedExtents;
  std::vector<std::string> fStatus;  ///< As in "ALLOCATABLE" or "MISSING".
};

struct TVolumeGroup {
  std::string fName;
  TText fUUID;  ///< With hyphens.
  TNumber fSequence;
  TNumber fExtentSize;  ///< In bytes.
  TNumber fExtents;     ///< Of all physical volumes.
  TNumber fFreeExtents;
  TReading<std::vector<std::string>> fStatus;
  TReading<std::vector<std::string>> fLogicalVolumes;  ///< Those that users see.
  std::vector<TPhysicalVolume> fPhysicalVolumes;
};

/// Parses the text of one volume group. `source` is the name of the file, for reasons.
TReading<TVolumeGroup> ParseVolumeGroup(const std::string& source, std::string_view text);

/// Returns the UUIDs of a volume group and its logical volume, without hyphens, in what the device
/// mapper has: "LVM-", 32 letters and digits of each, and for parts of a volume "-" and a word.
/// Empty for another text.
struct TLVMNames {
  std::string fGroupUUID;
  std::string fVolumeUUID;
};
TLVMNames ParseLVMMapperUUID(std::string_view uuid);

/// Returns the text without hyphens.
std::string WithoutHyphens(std::string text);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_LVM_METADATA_H_
