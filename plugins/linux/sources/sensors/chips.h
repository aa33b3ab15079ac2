// SPDX-License-Identifier: Apache-2.0
/// Lists the sensors of the kernel's hardware monitoring: /sys/class/hwmon.
#ifndef PLUGINS_LINUX_SOURCES_SENSORS_CHIPS_H_
#define PLUGINS_LINUX_SOURCES_SENSORS_CHIPS_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sources/device_folder.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// What a sensor measures, and the unit in which a reading is kept: 32 bits have to be enough for a
/// power supply's watts and a year's joules, which the kernel has in microwatts and microjoules.
struct TQuantity {
  const char* fPrefix;         ///< Of the files' names: "temp".
  const char* fOther;          ///< The type's name, if CIM has no number for it.
  std::int64_t fKernelUnits;   ///< How many units of the kernel are one of a reading.
  std::int32_t fUnitModifier;  ///< The power of ten of a reading.
  std::uint16_t fBaseUnits;    ///< As in CIM_NumericSensor.
  std::uint16_t fSensorType;   ///< As in CIM_Sensor.
};
inline constexpr std::uint16_t kTemperature = 2;
inline constexpr std::uint16_t kDegreesCelsius = 2;
inline constexpr std::uint16_t kTachometer = 5;
inline constexpr std::uint16_t kIntrusion = 16;

/// One sensor of a chip, whose files begin with its name: "temp1_input", "temp1_max".
struct TChannel {
  std::string fID;      ///< Device, chip and sensor: "platform/coretemp.0/coretemp/temp1".
  std::string fName;    ///< "temp1"
  std::string fDevice;  ///< The device of the chip below /sys/devices; empty if it is not told.
  TText fChip;          ///< The name of the chip, as its driver has it.
  TFiles fFolder;
  const TQuantity* fQuantity;
  std::vector<std::string> fFiles;  ///< The sorted ends of the files' names: "input", "max".

  bool Has(const char* file) const;
  std::string PathOf(const char* file) const { return fName + "_" + file; }
  /// Reads a file in the units of a reading.
  TReading<std::int32_t> Read(const char* file) const;
  /// Reads the value that the sensor has now; missing while it reports a fault.
  TReading<std::int32_t> ReadValue() const;
};

/// All sensors of all chips.
struct TChips {
  explicit TChips(const THost& host);

  std::vector<TChannel> fChannels;
  TReason fReason;  ///< Why there are none, or not all.
};

/// Lists the devices of a folder by the numbers at the ends of their names, such as "hwmon10".
TInstances<TDeviceFolder> ListByNumber(const TFiles& files, const char* folder);

/// Returns the number in larger units. Missing if it has more than 32 bits in these, too.
TReading<std::int32_t> InUnitsOf(std::int64_t unit, const TReading<std::int64_t>& number,
                                 const std::string& source);

/// Returns the text, or the first of "text 2", "text 3" that is not among those taken, and takes
/// it.
std::string TakeID(std::map<std::string, int>& taken, const std::string& text);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SENSORS_CHIPS_H_
