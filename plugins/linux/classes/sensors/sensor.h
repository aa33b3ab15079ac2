// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of sensors.
#ifndef PLUGINS_LINUX_CLASSES_SENSORS_SENSOR_H_
#define PLUGINS_LINUX_CLASSES_SENSORS_SENSOR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "classes/logical_device.h"
#include "sources/sensors/chips.h"

namespace NVORNQDX20 {

inline constexpr std::uint16_t kPowerConsumption = 13, kPowerProduction = 14;

struct TSensor : TDevice {
  TText fLabel;
  TText fChip;
  TReading<std::uint16_t> fType;
  TText fOtherType;
  TText fState;
  TReading<std::vector<std::string>> fStates;
};

struct TNumericSensor : TSensor {
  std::uint16_t fBaseUnits = 0;
  std::int32_t fUnitModifier = 0;
  TReading<std::int32_t> fReading;
  TReading<std::int32_t> fAverage;
  TReading<std::int32_t> fLowerNonCritical;
  TReading<std::int32_t> fUpperNonCritical;
  TReading<std::int32_t> fLowerCritical;
  TReading<std::int32_t> fUpperCritical;
  TReading<std::int32_t> fUpperFatal;
  TReading<std::uint32_t> fHysteresis;
};

/// Returns what sensors with a number and those without have in common.
TSensor SensorOfChannel(const TChannel& channel);

THostTable<TSensor> SensorTable();
THostTable<TNumericSensor> NumericSensorTable();

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_SENSORS_SENSOR_H_
