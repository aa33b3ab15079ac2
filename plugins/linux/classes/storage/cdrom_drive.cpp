// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_CDROMDrive and VORNSG_DVDDrive: drives of optical media.
#include <vector>

#include "media_access_device.h"

namespace NVORNQDX20 {
namespace {

/// Without a medium, the kernel reports the size of the last one, or a default.
TNumber MediumSizeOf(const TDrive& drive) { return Scaled(drive.fSize, 1, 1000); }

/// The media of CIM_DVDDrive.FormatsSupported, by what udev says about the drive.
constexpr std::pair<const char*, std::uint16_t> kFormats[] = {
    {"ID_CDROM", 16},         {"ID_CDROM_CD_R", 19},       {"ID_CDROM_CD_RW", 33},
    {"ID_CDROM_DVD", 25},     {"ID_CDROM_DVD_R", 36},      {"ID_CDROM_DVD_RW", 37},
    {"ID_CDROM_DVD_RAM", 24}, {"ID_CDROM_DVD_PLUS_RW", 23}};

std::vector<std::uint16_t> FormatsOf(const TDrive& drive) {
  std::vector<std::uint16_t> formats;
  for (const auto& [property, format] : kFormats) {
    if (drive.fUdev.Get(property)) formats.push_back(format);
  }
  return formats;
}

THostTable<TDrive>::TRows Rows() {
  return {{"MediumSize", "The size of the medium that was in it last.", MediumSizeOf,
           TUnit{"byte * 10^3"}}};
}

}  // namespace

TClass CDROMDriveClass() {
  return THostTable<TDrive>{"VORNSG_CDROMDrive", "A drive for CDs, or one that does not say more.",
                            DrivesFor(EMedia::kCD), Rows()}
      .DerivedFrom(MediaAccessDeviceTable());
}

TClass DVDDriveClass() {
  THostTable<TDrive>::TRows rows = Rows();
  rows.push_back({"FormatsSupported", "The media that it reads.", FormatsOf,
                  TEnumeration{{16, "CD-ROM"},
                               {19, "CD Recordable"},
                               {23, "DVD-RW+"},
                               {24, "DVD-RAM"},
                               {25, "DVD-ROM"},
                               {33, "CD-RW"},
                               {36, "DVD Recordable"},
                               {37, "DVD-RW"}}});
  return THostTable<TDrive>{"VORNSG_DVDDrive", "A drive for DVDs and CDs.", DrivesFor(EMedia::kDVD),
                            rows}
      .DerivedFrom(MediaAccessDeviceTable());
}

}  // namespace NVORNQDX20
