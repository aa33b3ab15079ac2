// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of probes and cooling devices that firmware describes.
#ifndef PLUGINS_LINUX_CLASSES_SENSORS_FIRMWARE_PROBE_H_
#define PLUGINS_LINUX_CLASSES_SENSORS_FIRMWARE_PROBE_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "classes/physical_element.h"

namespace NVORNQDX20 {

inline constexpr const char* kFirmwareSensorClassName = "VORNSG_FirmwareSensor";
inline constexpr const char* kFirmwareCoolingClassName = "VORNSG_FirmwareCoolingDevice";
inline constexpr std::uint8_t kFirmwareCoolingType = 27;
inline constexpr const char* kFirmwareCoolingName = "Cooling Device";
inline constexpr const char* kFirmwareSupplyName = "System Power Supply";

/// What SMBIOS says about the state of a probe or cooling device.
inline constexpr TConstantEnumeration kProbeStatuses = {{1, "Other"},    {2, "Unknown"},
                                                        {3, "OK"},       {4, "Non-critical"},
                                                        {5, "Critical"}, {6, "Non-recoverable"}};

/// Reads a number of which firmware may not know the value.
TReading<std::uint16_t> ReadKnown(const TSMBIOSStructure& structure, std::size_t offset);

/// Reads one of the numbers from 1 to `last` in some bits of a byte.
TReading<std::uint8_t> ReadBits(const TSMBIOSStructure& structure, std::size_t offset,
                                unsigned int lowest, std::uint8_t last);

/// Returns the IDs of all probes by their handles.
std::map<std::uint16_t, std::string> ListProbeIDs(const THost& host);

/// Returns the ties of probes to the power supplies and cooling devices that they watch.
std::vector<TTie> ListFirmwareSensorTies(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_SENSORS_FIRMWARE_PROBE_H_
