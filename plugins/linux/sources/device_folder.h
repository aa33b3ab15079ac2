// SPDX-License-Identifier: Apache-2.0
/// What all folders of devices in sysfs have in common.
#ifndef PLUGINS_LINUX_SOURCES_DEVICE_FOLDER_H_
#define PLUGINS_LINUX_SOURCES_DEVICE_FOLDER_H_

#include <string>

#include "reading.h"

namespace NVORNQDX20 {

/// Returns why a device that is listed by this name cannot be described; empty if it can, and if it
/// is no longer there.
inline std::string ObstacleToDevice(const TFiles& folder, const std::string& name) {
  if (PrintableText(name) != name) return "the name is not printable";  // a key must be
  const bool leadsNowhere = folder.IsAbsent("") && folder.ReadLink("");
  return leadsNowhere ? "a link that leads nowhere" : "";
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_DEVICE_FOLDER_H_
