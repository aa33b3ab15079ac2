// SPDX-License-Identifier: Apache-2.0
/// Processors as firmware describes them: structures of type 4 (DMTF DSP0134).
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_FIRMWARE_SOCKET_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_FIRMWARE_SOCKET_H_

#include <cstddef>
#include <vector>

#include "sources/host.h"

namespace NVORNQDX20 {

using TMegahertz = TReading<std::uint32_t>;

/// Fields of a structure. Counts and clock speeds are missing where firmware does not know them.
struct TFirmwareSocket {
  static constexpr std::size_t kDesignation = 0x04, kFamily = 0x06, kManufacturer = 0x07,
                               kID = 0x08, kVersion = 0x10, kStatus = 0x18, kUpgrade = 0x19,
                               kFirstCache = 0x1a, kSerialNumber = 0x20, kAssetTag = 0x21,
                               kPartNumber = 0x22, kCharacteristics = 0x26, kLongFamily = 0x28;

  static TReading<std::uint16_t> ReadCores(const TSMBIOSStructure& socket);
  static TReading<std::uint16_t> ReadEnabledCores(const TSMBIOSStructure& socket);
  static TReading<std::uint16_t> ReadThreads(const TSMBIOSStructure& socket);
  static TMegahertz ReadBusClock(const TSMBIOSStructure& socket);
  static TMegahertz ReadMaxClock(const TSMBIOSStructure& socket);
  static TMegahertz ReadCurrentClock(const TSMBIOSStructure& socket);
};

/// Returns the sockets that are not empty, in the order of the table; none without a table.
std::vector<TSMBIOSStructure> ReadPopulatedSockets(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_FIRMWARE_SOCKET_H_
