// SPDX-License-Identifier: Apache-2.0
/// Lists batteries and power supplies: /sys/class/power_supply.
#ifndef PLUGINS_LINUX_SOURCES_SENSORS_POWER_H_
#define PLUGINS_LINUX_SOURCES_SENSORS_POWER_H_

#include <cstdint>
#include <string>
#include <vector>

#include "sources/fields.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// A battery, or what feeds the machine. The kernel has each property in a file, and all of them in
/// one more, which stands in where a tree lacks the others.
struct TPowerSource {
  TPowerSource(std::string name, const TFiles& folder);

  TText Read(const std::string& property) const;
  template <typename T = std::uint64_t>
  TReading<T> ReadNumber(const std::string& property) const {
    return ToNumber<T>(Read(property), fFolder.PathOf(property));
  }
  /// Reads a text of the device's own memory, which its maker may have left unset.
  TText ReadIdentity(const std::string& property) const;
  /// Reads millionths as thousandths. A battery that is discharged can have a minus.
  TReading<std::int32_t> ReadThousandths(const std::string& property) const;
  /// Reads "energy_" and the property, else the charge by the voltage of the design, in thousandths
  /// of a watt hour.
  TReading<std::uint32_t> ReadEnergy(const std::string& property) const;
  TNumber ReadDesignVoltage() const;  ///< In millionths of a volt.

  std::string fName;  ///< "BAT0"
  TFiles fFolder;
  TFields fFields;
  bool fIsBattery = false;
  TReason fObstacle;  ///< Not empty if the kind could not be read.
};

struct TPowerSources {
  explicit TPowerSources(const THost& host);

  std::vector<TPowerSource> fAll;
  TReason fReason;  ///< Why there are none, or not all.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SENSORS_POWER_H_
