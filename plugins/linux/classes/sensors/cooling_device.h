// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of what cools.
#ifndef PLUGINS_LINUX_CLASSES_SENSORS_COOLING_DEVICE_H_
#define PLUGINS_LINUX_CLASSES_SENSORS_COOLING_DEVICE_H_

#include "classes/logical_device.h"

namespace NVORNQDX20 {

struct TCoolingDevice : TDevice {
  TText fLabel;
  TReading<bool> fIsActive;
};

THostTable<TCoolingDevice> CoolingDeviceTable();

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_SENSORS_COOLING_DEVICE_H_
