// SPDX-License-Identifier: Apache-2.0
/// Parses the vital product data of SCSI disks: pages 80, 83 and b1 (SCSI Primary and Block
/// Commands), and page 89, which has the identification of an ATA disk (SCSI / ATA Translation).
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_VPD_PAGES_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_VPD_PAGES_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// Returns the serial number in page 80; empty if the disk has none.
std::string ParseSerialNumberPage(std::string_view page);

/// Returns the worldwide name of the disk in page 83, for example "naa.5000c500a1b2c3d4"; empty if
/// there is none. The longest NAA name is preferred to an EUI-64.
std::string ParseIdentificationPage(std::string_view page);

/// How a disk is built.
struct TDiskBuild {
  /// Revolutions per minute; 0 if not reported, 1 for a solid-state disk.
  std::uint16_t fRotationRate = 0;
  /// 0 if not reported, 1 for 5.25, 2 for 3.5, 3 for 2.5 and 4 for 1.8 inches.
  std::uint8_t fFormFactor = 0;
};

/// Parses page b1.
TDiskBuild ParseCharacteristicsPage(std::string_view page);

/// The identification of an ATA disk. Texts are empty where the disk has none.
struct TATAIdentity {
  std::string fModel;
  std::string fSerialNumber;
  std::string fFirmware;
  TDiskBuild fBuild;
  std::uint64_t fLinkSpeed = 0;  ///< Of SATA, in bit/s; 0 if not reported.
};

/// Parses page 89; without values if the page is too short.
TATAIdentity ParseATAPage(std::string_view page);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_VPD_PAGES_H_
