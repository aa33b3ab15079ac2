// SPDX-License-Identifier: Apache-2.0
#include "power.h"

#include <utility>

#include <boost/algorithm/string/case_conv.hpp>

#include "chips.h"
#include "sources/firmware/placeholders.h"

namespace NVORNQDX20 {

TPowerSource::TPowerSource(std::string name, const TFiles& folder)
    : fName(std::move(name)),
      fFolder(folder),
      fFields(folder.PathOf("uevent"), folder.Read("uevent"), '=') {
  const TText type = Read("type");
  const TText capacity = type ? TText() : Read("capacity");
  fIsBattery = type ? *type == "Battery" : bool(capacity);
  for (const TReason& reason : {type.GetReason(), capacity.GetReason()}) {
    if (reason.IsError()) fObstacle = reason;
  }
}

TText TPowerSource::Read(const std::string& property) const {
  TText line = fFolder.ReadLine(property);
  if (line || line.GetReason().IsError()) return line;
  TText field = fFields.Get("POWER_SUPPLY_" + boost::algorithm::to_upper_copy(property));
  return field || field.GetReason().IsError() ? field : line;
}

TText TPowerSource::ReadIdentity(const std::string& property) const {
  return WithoutPlaceholder(Read(property), fFolder.PathOf(property));
}

TReading<std::int32_t> TPowerSource::ReadThousandths(const std::string& property) const {
  return InUnitsOf(1000, ReadNumber<std::int64_t>(property), fFolder.PathOf(property));
}

TNumber TPowerSource::ReadDesignVoltage() const {
  TNumber lowest = ReadNumber("voltage_min_design");
  if (lowest.ValueOr(0) != 0 || lowest.GetReason().IsError()) return lowest;
  return ReadNumber("voltage_max_design");
}

TReading<std::uint32_t> TPowerSource::ReadEnergy(const std::string& property) const {
  const TNumber energy = ReadNumber("energy_" + property);
  const TNumber charge = ReadNumber("charge_" + property);
  if (energy || energy.GetReason().IsError() || !charge) {
    return Scaled<std::uint32_t>(energy, 1, 1000);
  }
  return ReadDesignVoltage().and_then([&charge](std::uint64_t voltage) {
    return Scaled<std::uint32_t>(charge, voltage, 1'000'000'000);
  });
}

TPowerSources::TPowerSources(const THost& host) {
  const TInstances<TDeviceFolder> sources = ListDevices(host, "/sys/class/power_supply");
  fReason = sources.fReason;
  for (const TDeviceFolder& source : sources.fAll) {
    TPowerSource power(source.fFileName, source);
    if (power.fObstacle.empty()) {
      fAll.push_back(std::move(power));
    } else {
      fReason.Add(power.fObstacle);
    }
  }
}

}  // namespace NVORNQDX20
