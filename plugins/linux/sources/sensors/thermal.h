// SPDX-License-Identifier: Apache-2.0
/// Lists what the kernel keeps cool, and how: /sys/class/thermal.
#ifndef PLUGINS_LINUX_SOURCES_SENSORS_THERMAL_H_
#define PLUGINS_LINUX_SOURCES_SENSORS_THERMAL_H_

#include <cstdint>
#include <string>
#include <vector>

#include "sources/host.h"

namespace NVORNQDX20 {

/// A thermal zone or a cooling device.
struct TThermalDevice {
  std::string fID;    ///< "acpitz", and "acpitz 2" for another one of the type.
  std::string fName;  ///< "thermal_zone0": numbers depend on the order in which drivers came.
  TText fType;
  TFiles fFolder;
};

struct TThermal {
  explicit TThermal(const THost& host);

  TInstances<TThermalDevice> fZones;
  TInstances<TThermalDevice> fCoolingDevices;
};

/// The temperatures at which the kernel acts, in thousandths of a degree.
struct TTripPoints {
  explicit TTripPoints(const TFiles& zone);

  TReading<std::int32_t> fWarning;   ///< The lowest at which something is slowed down or warned of.
  TReading<std::int32_t> fCritical;  ///< The machine is switched off.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SENSORS_THERMAL_H_
