// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PowerSupply: what feeds the machine.
#include "firmware_probe.h"
#include "power_unit.h"

namespace NVORNQDX20 {
namespace {

/// The adapter of a notebook is the kernel's, the supplies in the chassis of a server are the
/// firmware's.
TInstances<TPowerUnit> ListSupplies(const THost& host) {
  TInstances<TPowerUnit> supplies;
  AddOfKernel(supplies, host, false);
  AddOfFirmware(supplies, host, 39, kFirmwareSupplyName);
  return supplies;
}

TReading<bool> ReadOnline(const TPowerUnit& supply) {
  return KernelNumber<std::uint32_t>("online")(supply).map(
      [](std::uint32_t number) { return number != 0; });
}

/// Reads bits of the firmware's characteristics.
TReading<std::uint16_t> Characteristic(const TPowerUnit& supply, unsigned int bit,
                                       unsigned int count) {
  return FirmwareField<std::uint16_t>(supply, 0x0E).map([=](std::uint16_t bits) {
    return static_cast<std::uint16_t>(static_cast<unsigned int>(bits) >> bit & ((1U << count) - 1));
  });
}

auto Flag(unsigned int bit) {
  return [bit](const TPowerUnit& supply) {
    return Characteristic(supply, bit, 1).map([](std::uint16_t flag) { return flag != 0; });
  };
}

template <std::size_t kCount>
TText NameOf(const TPowerUnit& supply, std::uint16_t number, const char* const (&names)[kCount]) {
  if (number < kCount && *names[number] != '\0') return names[number];
  return supply.fFirmware->MissingFrom("unknown");
}

TText ReadSupplyType(const TPowerUnit& supply) {
  if (supply.fKernel) return supply.fKernel->Read("type");
  return Characteristic(supply, 10, 4).and_then([&](std::uint16_t type) {
    constexpr const char* kTypes[] = {"",        "Other", "",          "Linear",   "Switching",
                                      "Battery", "UPS",   "Converter", "Regulator"};
    return NameOf(supply, type, kTypes);
  });
}

TText ReadSupplyStatus(const TPowerUnit& supply) {
  if (supply.fKernel) return supply.fKernel->Read("status");
  return Characteristic(supply, 7, 3).and_then([&](std::uint16_t status) {
    constexpr const char* kStates[] = {"", "Other", "", "OK", "Non-critical", "Critical"};
    return NameOf(supply, status, kStates);
  });
}

TReading<bool> ReadSwitching(const TPowerUnit& supply) {
  constexpr std::uint16_t kLinear = 3, kSwitching = 4;
  return Characteristic(supply, 10, 4).and_then([&](std::uint16_t type) -> TReading<bool> {
    if (type == kLinear || type == kSwitching) return type == kSwitching;
    return supply.fFirmware->MissingFrom("neither linear nor switching");
  });
}

/// The firmware's numbers are those of CIM.
TReading<std::uint16_t> ReadRangeSwitching(const TPowerUnit& supply) {
  constexpr std::uint16_t kLast = 6;
  return Characteristic(supply, 3, 4).and_then([&](std::uint16_t kind) -> TReading<std::uint16_t> {
    if (kind >= 1 && kind <= kLast) return kind;
    return supply.fFirmware->MissingFrom("no known kind of switching");
  });
}

TReading<bool> ReadACInput(const TPowerUnit& supply) {
  return KernelText("type")(supply).and_then([](const std::string& type) -> TReading<bool> {
    if (type == "Mains") return true;
    if (type.compare(0, 3, "USB") == 0) return false;
    return Missing("the type does not tell");
  });
}

TReading<std::uint32_t> ReadMaxPower(const TPowerUnit& supply) {
  constexpr std::uint16_t kUnknown = 0x8000;
  return FirmwareField<std::uint16_t>(supply, 0x0C)
      .and_then([&](std::uint16_t watts) -> TReading<std::uint32_t> {
        if (watts != 0 && watts != kUnknown) return std::uint32_t{watts};
        return supply.fFirmware->MissingFrom("the highest power is unknown");
      });
}

auto FirmwareLine(std::size_t offset) {
  return [offset](const TPowerUnit& supply) {
    return supply.fFirmware.and_then(
        [offset](const TSMBIOSStructure& each) { return each.ReadString(offset); });
  };
}

}  // namespace

TClass PowerSupplyClass() {
  return THostTable<TPowerUnit>{
      "VORNSG_PowerSupply",
      "A power supply in the chassis, an adapter, or another source of power.",
      ListSupplies,
      {{"Type", "The kind, as the kernel or the firmware names it.", ReadSupplyType},
       {"Status", "How it is.", ReadSupplyStatus},
       {"ElementName", "The name that the firmware has for it.", FirmwareLine(0x06)},
       {"Location", "Where it is in the machine.", FirmwareLine(0x05)},
       {"Manufacturer", "The maker.", UnitIdentity("manufacturer", 0x07)},
       {"Model", "The product.", UnitIdentity("model_name", 0x0A)},
       {"SerialNumber", "The serial number.", UnitIdentity("serial_number", 0x08),
        ESecret::kSerial},
       {"Revision", "The revision of the product.", FirmwareLine(0x0B)},
       {"AssetTag", "The tag with which its owner keeps track of it.", FirmwareLine(0x09),
        ESecret::kSerial},
       {"Online", "Whether it feeds the machine.", ReadOnline},
       {"Present", "Whether it is in its bay.", Flag(1)},
       {"Unplugged", "Whether it is without a cable.", Flag(2)},
       {"HotReplaceable", "Whether it can be replaced while the machine runs.", Flag(0)},
       {"IsACInput", "Whether it takes an alternating current.", ReadACInput},
       {"IsSwitchingSupply", "Whether it is a switching power supply, and not a linear one.",
        ReadSwitching},
       {"TypeOfRangeSwitching", "How it adapts to the voltage of its input.", ReadRangeSwitching,
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "Manual"},
                     {4, "Autoswitch"},
                     {5, "Wide Range"},
                     {6, "Not Applicable"}}},
       {"RatedMaxOutputPower", "The most power that it can give, in OutputPowerUnits.",
        ReadMaxPower},
       {"OutputPowerUnits", "The unit of RatedMaxOutputPower.",
        [](const TPowerUnit& supply) {
          return ReadMaxPower(supply).map([](std::uint32_t) { return std::string("watt"); });
        }},
       {"Voltage", "The voltage now.", KernelThousandths("voltage_now"), TUnit{"volt * 10^-3"},
        kGauge, kVolatile},
       {"Current", "The current now.", KernelThousandths("current_now"), TUnit{"ampere * 10^-3"},
        kGauge, kVolatile}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
