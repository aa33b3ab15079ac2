// SPDX-License-Identifier: Apache-2.0
#include "power.h"

#include <limits>
#include <utility>

#include <boost/algorithm/string/case_conv.hpp>

#include "sources/device_folder.h"
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
  return Read(property).and_then([&](const std::string& text) -> TText {
    if (!IsPlaceholder(text)) return text;
    return fFolder.MissingFrom(property, "placeholder text '" + text + "'");
  });
}

TReading<std::int32_t> TPowerSource::ReadThousandths(const std::string& property) const {
  return ReadNumber<std::int64_t>(property).and_then(
      [&](std::int64_t number) -> TReading<std::int32_t> {
        const std::int64_t value = number / 1000;
        using TLimits = std::numeric_limits<std::int32_t>;
        if (value >= TLimits::min() && value <= TLimits::max()) {
          return static_cast<std::int32_t>(value);
        }
        return fFolder.MissingFrom(property, std::to_string(number) + " is out of range");
      });
}

TNumber TPowerSource::ReadDesignVoltage() const {
  TNumber lowest = ReadNumber("voltage_min_design");
  if (lowest.ValueOr(0) != 0 || lowest.GetReason().IsError()) return lowest;
  return ReadNumber("voltage_max_design");
}

TReading<std::uint32_t> TPowerSource::ReadEnergy(const std::string& property) const {
  const TNumber energy = ReadNumber("energy_" + property);
  const TNumber charge = ReadNumber("charge_" + property);
  if (energy || energy.GetReason().IsError() || !charge)
    return Scaled<std::uint32_t>(energy, 1, 1000);
  return ReadDesignVoltage().and_then([&charge](std::uint64_t voltage) {
    return Scaled<std::uint32_t>(charge, voltage, 1'000'000'000);
  });
}

TPowerSources::TPowerSources(const THost& host) {
  const TFiles folder = host.In("/sys/class/power_supply");
  const auto names = folder.List();
  fReason = names.GetReason();
  for (const std::string& name : names.ValueOr({})) {
    const TFiles source = folder.In(name);
    const std::string obstacle = ObstacleToDevice(source, name);
    if (!obstacle.empty()) {
      fReason.Add(Failed(PrintableText(source.PathOf("")) + ": " + obstacle).fReason);
      continue;
    }
    TPowerSource power(name, source);
    if (power.fObstacle.empty()) {
      fAll.push_back(std::move(power));
    } else {
      fReason.Add(power.fObstacle);
    }
  }
}

}  // namespace NVORNQDX20
