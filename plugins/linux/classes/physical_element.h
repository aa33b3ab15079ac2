// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of things that one can touch: chassis, boards, modules of memory.
#ifndef PLUGINS_LINUX_CLASSES_PHYSICAL_ELEMENT_H_
#define PLUGINS_LINUX_CLASSES_PHYSICAL_ELEMENT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "catalogue.h"

namespace NVORNQDX20 {

struct TPhysicalElement {
  std::string fTag;
  TText fName;
  /// What the firmware's table says of it; missing if something else has reported it.
  TReading<TSMBIOSStructure> fStructure;
};

/// The superclasses: the keys and the name.
THostTable<TPhysicalElement> PhysicalElementTable();
THostTable<TPhysicalElement> PhysicalPackageTable();

/// Lists what the firmware has of one type: from SMBIOS, with tags such as "Chassis" and
/// "Chassis 2". Without such a structure, there is one element if sysfs has any of the files.
TInstances<TPhysicalElement> ListFirmware(const THost& host, std::uint8_t type, const char* name,
                                          const std::vector<const char*>& files);

// Readers of rows, by the offset of a field. The source is derived from TPhysicalElement.
template <typename T>
auto FirmwareNumber(std::size_t offset) {
  return [offset](const TPhysicalElement& element) {
    return element.fStructure.and_then(
        [offset](const TSMBIOSStructure& each) { return each.ReadNumber<T>(offset); });
  };
}
inline auto FirmwareText(std::size_t offset) {
  return [offset](const TPhysicalElement& element) {
    return element.fStructure.and_then(
        [offset](const TSMBIOSStructure& each) { return each.ReadString(offset); });
  };
}
/// The same, or a file of /sys/class/dmi/id if nothing is known of the structure.
inline auto FirmwareText(std::size_t offset, const char* file) {
  return [offset, file](const TPhysicalElement& element, const THost& host) {
    return element.fStructure ? element.fStructure->ReadString(offset) : host.ReadDMIString(file);
  };
}
/// Reads one bit of a byte.
inline auto FirmwareFlag(std::size_t offset, unsigned int bit) {
  return [offset, bit](const TPhysicalElement& element) {
    return FirmwareNumber<std::uint8_t>(offset)(element).map(
        [bit](std::uint8_t byte) { return (byte >> bit & 1U) != 0; });
  };
}

/// Two instances that an association ties.
struct TTie {
  TInstanceName fFirst;
  TInstanceName fSecond;
};
TInstanceName TheSystem(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_PHYSICAL_ELEMENT_H_
