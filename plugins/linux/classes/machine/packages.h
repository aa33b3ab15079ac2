// SPDX-License-Identifier: Apache-2.0
/// Lists chassis and boards for their classes and for associations.
#ifndef PLUGINS_LINUX_CLASSES_MACHINE_PACKAGES_H_
#define PLUGINS_LINUX_CLASSES_MACHINE_PACKAGES_H_

#include "classes/physical_element.h"

namespace NVORNQDX20 {

inline constexpr const char* kChassisClassName = "VORNSG_Chassis";
inline constexpr const char* kCardClassName = "VORNSG_Card";

TInstances<TPhysicalElement> ListChassis(const THost& host);
TInstances<TPhysicalElement> ListBoards(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_MACHINE_PACKAGES_H_
