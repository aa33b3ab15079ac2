// SPDX-License-Identifier: Apache-2.0
/// Batteries and power supplies that the kernel or the firmware knows.
#ifndef PLUGINS_LINUX_CLASSES_SENSORS_POWER_UNIT_H_
#define PLUGINS_LINUX_CLASSES_SENSORS_POWER_UNIT_H_

#include <cstddef>

#include "classes/logical_device.h"
#include "classes/physical_element.h"
#include "sources/sensors/power.h"

namespace NVORNQDX20 {

/// Known by the kernel, or else by the firmware.
struct TPowerUnit : TDevice {
  TReading<TPowerSource> fKernel;
  TReading<TSMBIOSStructure> fFirmware;
};

/// Adds what the kernel knows.
void AddOfKernel(TInstances<TPowerUnit>& units, const THost& host, bool areBatteries);
/// Adds the structures of a type; their IDs are `name`, and "name 2" for the next.
void AddOfFirmware(TInstances<TPowerUnit>& units, const THost& host, std::uint8_t type,
                   const char* name);

// Readers of rows: of a property of the kernel, or of a field of the firmware at an offset.
inline auto KernelText(const char* property) {
  return [property](const TPowerUnit& unit) {
    return unit.fKernel.and_then(
        [property](const TPowerSource& source) { return source.Read(property); });
  };
}
template <typename T>
auto KernelNumber(const char* property) {
  return [property](const TPowerUnit& unit) {
    return unit.fKernel.and_then(
        [property](const TPowerSource& source) { return source.ReadNumber<T>(property); });
  };
}
/// A number of millionths, as thousandths.
inline auto KernelThousandths(const char* property) {
  return [property](const TPowerUnit& unit) {
    return unit.fKernel.and_then(
        [property](const TPowerSource& source) { return source.ReadThousandths(property); });
  };
}
inline auto UnitIdentity(const char* property, std::size_t offset) {
  return [property, offset](const TPowerUnit& unit) {
    if (unit.fKernel) return unit.fKernel->ReadIdentity(property);
    return unit.fFirmware.and_then(
        [offset](const TSMBIOSStructure& each) { return each.ReadString(offset); });
  };
}
template <typename T>
TReading<T> FirmwareField(const TPowerUnit& unit, std::size_t offset) {
  return unit.fFirmware.and_then(
      [offset](const TSMBIOSStructure& each) { return each.ReadNumber<T>(offset); });
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_SENSORS_POWER_UNIT_H_
