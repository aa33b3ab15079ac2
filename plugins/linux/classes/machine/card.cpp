// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Card: the boards of the machine.
#include "packages.h"

namespace NVORNQDX20 {

TInstances<TPhysicalElement> ListBoards(const THost& host) {
  return ListFirmware(host, 2, "Board",
                      {"board_vendor", "board_name", "board_serial", "board_version"});
}

TClass CardClass() {
  return THostTable<TPhysicalElement>{
      kCardClassName,
      "A board of the machine, such as its main board.",
      ListBoards,
      {{"Manufacturer", "The maker.", FirmwareText(0x04, "board_vendor")},
       {"Model", "The product name.", FirmwareText(0x05, "board_name")},
       {"Version", "The version, as its maker counts.", FirmwareText(0x06, "board_version")},
       {"SerialNumber", "The serial number.", FirmwareText(0x07, "board_serial"), ESecret::kSerial},
       {"UserTracking", "The tag with which its owner keeps track of it.",
        FirmwareText(0x08, "board_asset_tag"), ESecret::kSerial},
       {"HostingBoard", "Whether other boards are plugged into it.", FirmwareFlag(0x09, 0)},
       {"RequiresDaughterBoard", "Whether it works only with another board on it.",
        FirmwareFlag(0x09, 1)},
       {"Removable", "Whether it can be taken out.", FirmwareFlag(0x09, 2)},
       {"Replaceable", "Whether another one can replace it.", FirmwareFlag(0x09, 3)},
       {"HotSwappable", "Whether it can be replaced while the machine runs.",
        FirmwareFlag(0x09, 4)},
       {"Location", "Its place in the chassis.", FirmwareText(0x0A)},
       {"BoardType", "What the board is.", FirmwareNumber<std::uint8_t>(0x0D),
        TEnumeration{{1, "Unknown"},
                     {2, "Other"},
                     {3, "Server Blade"},
                     {4, "Connectivity Switch"},
                     {5, "System Management Module"},
                     {6, "Processor Module"},
                     {7, "I/O Module"},
                     {8, "Memory Module"},
                     {9, "Daughter Board"},
                     {10, "Motherboard"},
                     {11, "Processor and Memory Module"},
                     {12, "Processor and I/O Module"},
                     {13, "Interconnect Board"}}}}}
      .DerivedFrom(PhysicalPackageTable());
}

}  // namespace NVORNQDX20
