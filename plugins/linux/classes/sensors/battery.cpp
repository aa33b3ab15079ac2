// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Battery: batteries of the machine and of what is attached to it.
#include <algorithm>
#include <iterator>
#include <string_view>

#include "power_unit.h"

namespace NVORNQDX20 {
namespace {

/// The firmware's description is that of the time when it started.
TInstances<TPowerUnit> ListBatteries(const THost& host) {
  TInstances<TPowerUnit> batteries;
  AddOfKernel(batteries, host, true);
  if (batteries.fAll.empty()) AddOfFirmware(batteries, host, 22, "Portable Battery");
  return batteries;
}

constexpr std::uint16_t kOther = 1;

struct TName {
  std::string_view fText;
  std::uint16_t fNumber;
};

template <std::size_t kCount>
std::uint16_t NumberOf(const TName (&names)[kCount], const std::string& text, std::uint16_t other) {
  const auto* const found = std::find_if(std::begin(names), std::end(names),
                                         [&text](const TName& each) { return each.fText == text; });
  return found == std::end(names) ? other : found->fNumber;
}

TReading<std::uint16_t> ReadBatteryStatus(const TPowerUnit& battery) {
  constexpr std::uint16_t kUnknown = 2, kFull = 3, kLow = 4, kCritical = 5, kCharging = 6;
  constexpr std::uint16_t kPartial = 11;
  const TText level = KernelText("capacity_level")(battery);
  using TNumberRead = TReading<std::uint16_t>;
  return KernelText("status")(battery).and_then([&level](const std::string& status) -> TNumberRead {
    if (status == "Unknown") return kUnknown;
    if (status == "Full") return kFull;
    if (level.GetReason().IsError()) return Missing(level.GetReason());
    if (status == "Charging") {
      constexpr TName kLevels[] = {{"High", 7}, {"Low", 8}, {"Critical", 9}};
      return NumberOf(kLevels, level.ValueOr(""), kCharging);
    }
    constexpr TName kLevels[] = {{"Full", kFull}, {"Low", kLow}, {"Critical", kCritical}};
    return NumberOf(kLevels, level.ValueOr(""), kPartial);
  });
}

TReading<std::uint16_t> ReadChargingStatus(const TPowerUnit& battery) {
  return KernelText("status")(battery).map([](const std::string& status) {
    constexpr TName kStates[] = {
        {"Charging", 2}, {"Discharging", 3}, {"Not charging", 4}, {"Full", 4}};
    return NumberOf(kStates, status, 0);
  });
}

/// The firmware's numbers are those of CIM.
TReading<std::uint16_t> ReadChemistry(const TPowerUnit& battery) {
  constexpr std::uint8_t kLast = 8;
  constexpr TName kTechnologies[] = {
      {"Unknown", 2}, {"NiCd", 4}, {"NiMH", 5}, {"Li-ion", 6}, {"Li-poly", 8}};
  if (battery.fKernel) {
    return KernelText("technology")(battery).map(
        [&](const std::string& text) { return NumberOf(kTechnologies, text, kOther); });
  }
  return FirmwareField<std::uint8_t>(battery, 0x09)
      .and_then([&](std::uint8_t number) -> TReading<std::uint16_t> {
        if (number >= 1 && number <= kLast) return std::uint16_t{number};
        return battery.fFirmware->MissingFrom("no known chemistry");
      });
}

TReading<std::uint32_t> ReadDesignCapacity(const TPowerUnit& battery) {
  if (battery.fKernel) return battery.fKernel->ReadEnergy("full_design");
  const auto multiplier = FirmwareField<std::uint8_t>(battery, 0x15).ValueOr(1);
  return FirmwareField<std::uint16_t>(battery, 0x0A)
      .and_then([&](std::uint16_t capacity) -> TReading<std::uint32_t> {
        if (capacity == 0) return battery.fFirmware->MissingFrom("unknown");
        return std::uint32_t{capacity} * multiplier;
      });
}

auto Energy(const char* property) {
  return [property](const TPowerUnit& battery) {
    return battery.fKernel.and_then(
        [property](const TPowerSource& source) { return source.ReadEnergy(property); });
  };
}

TNumber ReadDesignVoltage(const TPowerUnit& battery) {
  if (battery.fKernel) return Scaled(battery.fKernel->ReadDesignVoltage(), 1, 1000);
  return FirmwareField<std::uint16_t>(battery, 0x0C)
      .and_then([&](std::uint16_t voltage) -> TNumber {
        if (voltage == 0) return battery.fFirmware->MissingFrom("unknown");
        return std::uint64_t{voltage};
      });
}

/// A new battery can hold more than its design promises.
TReading<std::uint8_t> ReadHealth(const TPowerUnit& battery) {
  return ReadDesignCapacity(battery).and_then([&](std::uint32_t design) {
    const TNumber full =
        Energy("full")(battery).map([](std::uint32_t now) -> std::uint64_t { return now; });
    return Scaled<std::uint32_t>(full, 100, design).map([](std::uint32_t percent) {
      return static_cast<std::uint8_t>(std::min(percent, 100U));
    });
  });
}

/// Reads seconds, as minutes.
auto Minutes(const char* now, const char* average) {
  return [now, average](const TPowerUnit& battery) {
    return battery.fKernel.and_then([&](const TPowerSource& source) {
      const TNumber seconds = source.ReadNumber(now);
      return Scaled<std::uint32_t>(seconds ? seconds : source.ReadNumber(average), 1, 60);
    });
  };
}

/// Drivers have 0 for a count that the battery does not keep.
TReading<std::uint32_t> CountCharges(const TPowerUnit& battery) {
  const char* const property = "cycle_count";
  auto count = KernelNumber<std::uint32_t>(property)(battery);
  if (!count || *count != 0) return count;
  return battery.fKernel->fFolder.MissingFrom(property, "not known to the driver");
}

TReading<bool> ReadPresent(const TPowerUnit& battery) {
  return KernelNumber<std::uint32_t>("present")(battery).map(
      [](std::uint32_t number) { return number != 0; });
}

}  // namespace

TClass BatteryClass() {
  const TUnit energy{"watt * hour * 10^-3"};
  return THostTable<TPowerUnit>{
      "VORNSG_Battery",
      "A battery of the machine, or of a device such as a mouse.",
      ListBatteries,
      {{"Manufacturer", "The maker.", UnitIdentity("manufacturer", 0x05)},
       {"Model", "The product.", UnitIdentity("model_name", 0x08)},
       {"SerialNumber", "The serial number.", UnitIdentity("serial_number", 0x07),
        ESecret::kSerial},
       {"Present", "Whether the battery is in its bay.", ReadPresent},
       {"Scope", "\"System\" if it feeds the machine, \"Device\" if it feeds something else.",
        KernelText("scope")},
       {"BatteryStatus", "Its charge, roughly.", ReadBatteryStatus,
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "Fully Charged"},
                     {4, "Low"},
                     {5, "Critical"},
                     {6, "Charging"},
                     {7, "Charging and High"},
                     {8, "Charging and Low"},
                     {9, "Charging and Critical"},
                     {10, "Undefined"},
                     {11, "Partially Charged"},
                     {12, "Learning"},
                     {13, "Overcharged"}},
        kVolatile},
       {"Status", "What it does, as the kernel names it.", KernelText("status"), kVolatile},
       {"ChargingStatus", "Whether it is charged.", ReadChargingStatus,
        TEnumeration{{0, "Unknown"}, {2, "Charging"}, {3, "Discharging"}, {4, "Idle"}}, kVolatile},
       {"EstimatedChargeRemaining", "How full it is.", KernelNumber<std::uint16_t>("capacity"),
        TUnit{"percent"}, kGauge, kVolatile},
       {"EstimatedRunTime", "How long it will last.",
        Minutes("time_to_empty_now", "time_to_empty_avg"), TUnit{"minute"}, kGauge, kVolatile},
       {"TimeToFullCharge", "How long it will take to be full.",
        Minutes("time_to_full_now", "time_to_full_avg"), TUnit{"minute"}, kGauge, kVolatile},
       {"Chemistry", "What it is made of.", ReadChemistry,
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "Lead Acid"},
                     {4, "Nickel Cadmium"},
                     {5, "Nickel Metal Hydride"},
                     {6, "Lithium-ion"},
                     {7, "Zinc air"},
                     {8, "Lithium Polymer"}}},
       {"Technology", "The same, as the kernel or the firmware names it.",
        UnitIdentity("technology", 0x14)},
       {"DesignCapacity", "What it could hold when it was new.", ReadDesignCapacity, energy},
       {"FullChargeCapacity", "What it can hold now.", Energy("full"), energy, kGauge, kVolatile},
       {"RemainingCapacity", "What it holds.", Energy("now"), energy, kGauge, kVolatile},
       {"HealthPercent", "What it can hold, as a part of what it could.", ReadHealth,
        TUnit{"percent"}, kGauge, kVolatile},
       {"DesignVoltage", "The voltage that it was made for.", ReadDesignVoltage,
        TUnit{"volt * 10^-3"}},
       {"RechargeCount", "How often it was charged.", CountCharges, kCounter, kVolatile},
       {"Voltage", "The voltage now.", KernelThousandths("voltage_now"), TUnit{"volt * 10^-3"},
        kGauge, kVolatile},
       {"Current", "The current now.", KernelThousandths("current_now"), TUnit{"ampere * 10^-3"},
        kGauge, kVolatile},
       {"Power", "The power now.", KernelThousandths("power_now"), TUnit{"watt * 10^-3"}, kGauge,
        kVolatile},
       {"ChargeLimit", "The charge at which charging ends.",
        KernelNumber<std::uint8_t>("charge_control_end_threshold"), TUnit{"percent"}}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
