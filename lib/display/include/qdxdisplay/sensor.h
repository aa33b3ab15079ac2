// SPDX-License-Identifier: Apache-2.0
/// The units of sensors, which are values of theirs.
#ifndef QDXDISPLAY_SENSOR_H_
#define QDXDISPLAY_SENSOR_H_

#include <cstdint>
#include <string>

namespace NVORNQDX20 {

/// Returns the PUnit that a number of CIM_NumericSensor.BaseUnits means, "degree celsius" for 2;
/// empty for a number without one.
const char* UnitOfSensor(std::uint64_t baseUnits);

/// Returns a reading times ten to the power of `modifier` with its unit, "41 °C".
std::string FormatReading(std::int64_t reading, std::uint64_t baseUnits, std::int64_t modifier);

}  // namespace NVORNQDX20

#endif  // QDXDISPLAY_SENSOR_H_
