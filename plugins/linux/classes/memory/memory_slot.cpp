// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_MemorySlot: sockets for modules of memory, also empty ones.
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

/// Modules that only EDAC knows have no known socket.
TInstances<TMemoryDevice> ListSlots(const THost& host) {
  return MemoryDevicesWhere(
      host, [](const TMemoryDevice& device) { return static_cast<bool>(device.fStructure); },
      "the firmware names no sockets");
}

TText ReadArray(const TMemoryDevice& slot) {
  if (!slot.fArray.fKey.empty()) return slot.fArray.fKey;
  return slot.fStructure->MissingFrom("belongs to no array");
}

}  // namespace

TClass MemorySlotClass() {
  return THostTable<TMemoryDevice>{
      "VORNSG_MemorySlot",
      "A socket for a module of memory, whether one is in it or not.",
      ListSlots,
      {{"DeviceLocator", "Its place on the board.", &TMemoryDevice::fName},
       {"BankLabel", "The bank that it is in.", FirmwareText(0x11)},
       {"Populated", "Whether a module is in it.", &TMemoryDevice::fIsInstalled},
       {"MemoryArray", "The array that it belongs to.", ReadArray}}}
      .DerivedFrom(PhysicalElementTable());
}

}  // namespace NVORNQDX20
