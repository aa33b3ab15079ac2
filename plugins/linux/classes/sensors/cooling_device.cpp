// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_CoolingDevice: the superclass of what cools.
#include "cooling_device.h"

namespace NVORNQDX20 {

THostTable<TCoolingDevice> CoolingDeviceTable() {
  return THostTable<TCoolingDevice>{
      "VORNSG_CoolingDevice",
      "What cools, of whatever kind.",
      {{"ElementName", "What it is, as the driver or the firmware names it.",
        &TCoolingDevice::fLabel},
       {"ActiveCooling", "Whether it takes away heat, and does not only avoid it.",
        &TCoolingDevice::fIsActive}}}
      .DerivedFrom(LogicalDeviceTable());
}

TClass CoolingDeviceClass() { return CoolingDeviceTable(); }

}  // namespace NVORNQDX20
