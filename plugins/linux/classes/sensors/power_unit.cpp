// SPDX-License-Identifier: Apache-2.0
#include "power_unit.h"

namespace NVORNQDX20 {

void AddOfKernel(TInstances<TPowerUnit>& units, const THost& host, bool areBatteries) {
  const auto& sources = host.Shared<TPowerSources>();
  const TMissing missing = Missing("the kernel tells, not the firmware");
  if (!sources.fReason.empty()) units.Miss(sources.fReason);
  for (const TPowerSource& source : sources.fAll) {
    if (source.fIsBattery != areBatteries) continue;
    units.fAll.push_back({{source.fName, source.fName}, source, missing});
  }
}

void AddOfFirmware(TInstances<TPowerUnit>& units, const THost& host, std::uint8_t type,
                   const char* name) {
  const auto elements = ListFirmware(host, type, name, {});
  const TMissing missing = Missing("the firmware tells, not the kernel");
  for (const TPhysicalElement& element : elements.fAll) {
    units.fAll.push_back({{element.fTag, element.fName}, missing, element.fStructure});
  }
  if (elements.fReason.IsError() || units.fAll.empty()) units.Miss(elements.fReason);
  // Without a folder of the kernel's, those of the firmware are all that there are.
  if (!units.fAll.empty() && !units.fReason.IsError()) units.fReason = {};
}

}  // namespace NVORNQDX20
