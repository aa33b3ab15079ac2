// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of services.
#ifndef PLUGINS_LINUX_CLASSES_SOFTWARE_SERVICE_H_
#define PLUGINS_LINUX_CLASSES_SOFTWARE_SERVICE_H_

#include <string>

#include "classes/catalogue.h"
#include "sources/software/units.h"

namespace NVORNQDX20 {

/// The superclass of all services, which has the instances of services proper.
THostTable<TServiceUnit> ServiceTable();

/// Returns the units whose names have the suffix, and the reason why some may be missing.
TInstances<TServiceUnit> UnitsWithSuffix(const THost& host, const char* suffix);

/// Reads the unit that a timer or socket starts: one that the setting names, else one of the same
/// name.
inline auto StartedUnit(const char* section, const char* setting) {
  return [section, setting](const TServiceUnit& unit) {
    return unit.fSettings.map([&](const TUnitSettings& settings) {
      const std::string name = settings.Get(section, setting);
      const std::string stem = unit.fName.substr(0, unit.fName.rfind('.'));
      const std::string accept = settings.Get(section, "Accept");
      const bool isForEach = accept == "yes" || accept == "true" || accept == "on" || accept == "1";
      return name.empty() ? stem + (isForEach ? "@.service" : ".service") : name;
    });
  };
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_SOFTWARE_SERVICE_H_
