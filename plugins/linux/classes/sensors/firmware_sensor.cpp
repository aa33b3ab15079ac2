// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_FirmwareSensor: probes of voltage, temperature and current that firmware describes.
#include "firmware_probe.h"
#include "sensor.h"

namespace NVORNQDX20 {
namespace {

/// A type of structure. All three have the same fields in different units.
struct TProbeKind {
  std::uint8_t fType;
  const char* fName;
  std::uint16_t fSensorType;
  std::uint16_t fBaseUnits;
  std::int32_t fMultiplier;  ///< How many thousandths of BaseUnits one is.
  std::uint16_t fDivisor;    ///< How many of a resolution are such a thousandth.
};
constexpr TProbeKind kKinds[] = {{26, "Voltage Probe", 3, 5, 1, 10},
                                 {28, "Temperature Probe", kTemperature, kDegreesCelsius, 100, 1},
                                 {29, "Electrical Current Probe", 4, 6, 1, 10}};

/// Only temperatures can be below zero.
TReading<std::int32_t> ReadValue(const TSMBIOSStructure& structure, std::size_t offset,
                                 const TProbeKind& kind) {
  return ReadKnown(structure, offset).map([&kind](std::uint16_t number) {
    const bool isSigned = kind.fSensorType == kTemperature;
    const std::int32_t value = isSigned ? static_cast<std::int16_t>(number) : number;
    return value * kind.fMultiplier;
  });
}

struct TProbe : TNumericSensor {
  const TProbeKind* fKind;
  TReading<TSMBIOSStructure> fStructure;
  TReading<std::int32_t> fLowerFatal;
};

/// A component of a management device ties limits to a probe. Returns them by the probe's handle.
std::map<std::uint16_t, TSMBIOSStructure> LimitsIn(const TSMBIOS& smbios) {
  constexpr std::uint8_t kComponent = 35, kLimits = 36;
  std::map<std::uint16_t, TSMBIOSStructure> limits;
  for (const TSMBIOSStructure& component : smbios.OfType(kComponent)) {
    const auto probe = component.ReadNumber<std::uint16_t>(0x07);
    const auto handle = component.ReadNumber<std::uint16_t>(0x09);
    const TSMBIOSStructure* const found = handle ? smbios.Find(*handle) : nullptr;
    if (probe && found != nullptr && found->GetType() == kLimits) limits.emplace(*probe, *found);
  }
  return limits;
}

void SetLimits(TProbe& probe, const TReading<TSMBIOSStructure>& limits) {
  const auto limit = [&](std::size_t offset) {
    return limits.and_then([&](const TSMBIOSStructure& structure) {
      return ReadValue(structure, offset, *probe.fKind);
    });
  };
  probe.fLowerNonCritical = limit(0x04);
  probe.fUpperNonCritical = limit(0x06);
  probe.fLowerCritical = limit(0x08);
  probe.fUpperCritical = limit(0x0A);
  probe.fLowerFatal = limit(0x0C);
  probe.fUpperFatal = limit(0x0E);
}

TProbe ProbeOf(const TPhysicalElement& element, const TProbeKind& kind) {
  const TMissing noReading = Missing("the firmware's table has no readings");
  TProbe probe;
  probe.fID = element.fTag;
  probe.fName = element.fName;
  probe.fLabel = element.fStructure->ReadString(0x04);
  probe.fChip = Missing("the firmware's table does not tell the chip");
  probe.fType = kind.fSensorType;
  probe.fOtherType = Missing("SensorType tells the type");
  probe.fState = noReading;
  probe.fStates = noReading;
  probe.fBaseUnits = kind.fBaseUnits;
  probe.fUnitModifier = -3;
  probe.fReading = noReading;
  probe.fAverage = noReading;
  probe.fHysteresis = Missing("the firmware's table has no hysteresis");
  probe.fKind = &kind;
  probe.fStructure = element.fStructure;
  return probe;
}

TInstances<TProbe> ListProbes(const THost& host) {
  const auto limits = host.GetSMBIOS().map(LimitsIn).ValueOr({});
  TInstances<TProbe> probes;
  for (const TProbeKind& kind : kKinds) {
    const auto elements = ListFirmware(host, kind.fType, kind.fName, {});
    for (const TPhysicalElement& element : elements.fAll) {
      TProbe probe = ProbeOf(element, kind);
      const auto own = limits.find(element.fStructure->GetHandle());
      SetLimits(probe, own == limits.end() ? TReading<TSMBIOSStructure>(Missing(
                                                 "the firmware's table has no limits for it"))
                                           : TReading<TSMBIOSStructure>(own->second));
      probes.fAll.push_back(std::move(probe));
    }
    const bool isNew = probes.fReason.find(elements.fReason) == std::string::npos;
    if (!elements.fReason.empty() && isNew) probes.Miss(elements.fReason);
  }
  if (!probes.fAll.empty() && !probes.fReason.IsError()) probes.fReason = {};
  return probes;
}

auto Value(std::size_t offset) {
  return
      [offset](const TProbe& probe) { return ReadValue(*probe.fStructure, offset, *probe.fKind); };
}

TReading<std::uint32_t> ReadResolution(const TProbe& probe) {
  return ReadKnown(*probe.fStructure, 0x0A)
      .and_then([&probe](std::uint16_t number) -> TReading<std::uint32_t> {
        const std::uint16_t divisor = probe.fKind->fDivisor;
        if (number % divisor == 0) return std::uint32_t{number} / divisor;
        return probe.fStructure->MissingFrom(std::to_string(number) +
                                             " tenths of the unit are no whole number");
      });
}

/// In hundredths of a percent, as in CIM.
TReading<std::int32_t> ReadAccuracy(const TProbe& probe) {
  return ReadKnown(*probe.fStructure, 0x0E).map([](std::uint16_t number) {
    return std::int32_t{number};
  });
}

/// Of temperatures there are more.
TReading<std::uint8_t> ReadLocation(const TProbe& probe) {
  return ReadBits(*probe.fStructure, 0x05, 0, probe.fKind->fSensorType == kTemperature ? 15 : 11);
}

TReading<std::uint8_t> ReadProbeStatus(const TProbe& probe) {
  return ReadBits(*probe.fStructure, 0x05, 5, 6);
}

}  // namespace

std::map<std::uint16_t, std::string> ListProbeIDs(const THost& host) {
  std::map<std::uint16_t, std::string> ids;
  for (const TProbeKind& kind : kKinds) {
    for (const TPhysicalElement& element : ListFirmware(host, kind.fType, kind.fName, {}).fAll) {
      ids.emplace(element.fStructure->GetHandle(), element.fTag);
    }
  }
  return ids;
}

TClass FirmwareSensorClass() {
  return THostTable<TProbe>{
      kFirmwareSensorClassName,
      "A probe of voltage, temperature or current as the firmware's table describes it, without a "
      "reading. The kernel may know the same sensor by a chip.",
      ListProbes,
      {{"Location", "Where it is.", ReadLocation,
        TEnumeration{{1, "Other"},
                     {2, "Unknown"},
                     {3, "Processor"},
                     {4, "Disk"},
                     {5, "Peripheral Bay"},
                     {6, "System Management Module"},
                     {7, "Motherboard"},
                     {8, "Memory Module"},
                     {9, "Processor Module"},
                     {10, "Power Unit"},
                     {11, "Add-in Card"},
                     {12, "Front Panel Board"},
                     {13, "Back Panel Board"},
                     {14, "Power System Board"},
                     {15, "Drive Back Plane"}}},
       {"Status", "How what it watches was when the machine started.", ReadProbeStatus,
        kProbeStatuses},
       {"MaxReadable", "The highest that it can read.", Value(0x06)},
       {"MinReadable", "The lowest that it can read.", Value(0x08)},
       {"Resolution", "The smallest difference that it can tell.", ReadResolution},
       {"Tolerance", "How far off it can be, up or down.", Value(0x0C)},
       {"Accuracy", "The same, as a part of the reading.", ReadAccuracy, TUnit{"percent * 10^-2"}},
       {"NominalReading", "What it reads if all is well.", Value(0x14)},
       {"LowerThresholdFatal", "Readings below it call for an emergency.", &TProbe::fLowerFatal}}}
      .DerivedFrom(NumericSensorTable());
}

}  // namespace NVORNQDX20
