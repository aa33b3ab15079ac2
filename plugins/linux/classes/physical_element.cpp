// SPDX-License-Identifier: Apache-2.0
#include "physical_element.h"

#include <qdxcore/schema_helper.h>

#include <algorithm>

namespace NVORNQDX20 {

THostTable<TPhysicalElement> PhysicalElementTable() {
  return {"VORNSG_PhysicalElement",
          "A part of the machine that one can touch.",
          {{"CreationClassName", "The class of the part.", kClassName, kKey},
           {"Tag", "Tells the part from others of its class.", &TPhysicalElement::fTag, kKey},
           {"ElementName", "By which the part is known.", &TPhysicalElement::fName}}};
}

THostTable<TPhysicalElement> PhysicalPackageTable() {
  return THostTable<TPhysicalElement>{
      "VORNSG_PhysicalPackage", "A part that has other parts in it or on it.", {}}
      .DerivedFrom(PhysicalElementTable());
}

TClass PhysicalElementClass() { return PhysicalElementTable(); }
TClass PhysicalPackageClass() { return PhysicalPackageTable(); }

TInstances<TPhysicalElement> ListFirmware(const THost& host, std::uint8_t type, const char* name,
                                          const std::vector<const char*>& files) {
  const TReading<TSMBIOS>& smbios = host.GetSMBIOS();
  TInstances<TPhysicalElement> elements;
  if (smbios) {
    for (const TSMBIOSStructure& structure : smbios->OfType(type)) {
      const std::size_t number = elements.fAll.size() + 1;
      const std::string tag = number == 1 ? name : name + (" " + std::to_string(number));
      elements.fAll.push_back({tag, tag, structure});
    }
    if (!smbios->GetFlaw().empty()) elements.Miss({smbios->GetFlaw(), TReason::kError});
  }
  if (!elements.fAll.empty()) return elements;
  const TMissing missing =
      smbios ? Missing("the SMBIOS table has no structure of type " + std::to_string(type))
             : Missing(smbios.GetReason());
  const TFiles folder = host.In("/sys/class/dmi/id");
  for (const char* file : files) {
    const TReading<bool> exists = folder.Exists(file);
    if (!exists) elements.Miss(exists.GetReason());
    if (!exists.ValueOr(false)) continue;
    elements = {};
    elements.fAll.push_back({name, TText(name), missing});
    return elements;
  }
  if (elements.fReason.empty()) elements.Miss(missing.fReason);
  return elements;
}

TInstanceName TheSystem(const THost& host) {
  return {TCIMSchemaHelper::kSystemCreationClassName, host.GetNameAsKey()};
}

}  // namespace NVORNQDX20
