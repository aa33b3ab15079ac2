// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Slot: where cards are plugged in, also empty ones.
#include <iterator>

#include "classes/physical_element.h"
#include "sources/buses/id_names.h"

namespace NVORNQDX20 {
namespace {

/// From number 1 on.
const char* const kSlotTypes[] = {"Other",
                                  "Unknown",
                                  "ISA",
                                  "MCA",
                                  "EISA",
                                  "PCI",
                                  "PC Card (PCMCIA)",
                                  "VLB",
                                  "Proprietary",
                                  "Processor Card",
                                  "Proprietary Memory Card",
                                  "I/O Riser Card",
                                  "NuBus",
                                  "PCI-66",
                                  "AGP",
                                  "AGP 2x",
                                  "AGP 4x",
                                  "PCI-X",
                                  "AGP 8x",
                                  "M.2 Socket 1-DP",
                                  "M.2 Socket 1-SD",
                                  "M.2 Socket 2",
                                  "M.2 Socket 3",
                                  "MXM Type I",
                                  "MXM Type II",
                                  "MXM Type III (standard connector)",
                                  "MXM Type III (HE connector)",
                                  "MXM Type IV",
                                  "MXM 3.0 Type A",
                                  "MXM 3.0 Type B",
                                  "PCI Express 2 SFF-8639 (U.2)",
                                  "PCI Express 3 SFF-8639 (U.2)",
                                  "PCI Express Mini 52-pin with bottom-side keep-outs",
                                  "PCI Express Mini 52-pin without bottom-side keep-outs",
                                  "PCI Express Mini 76-pin",
                                  "PCI Express 4 SFF-8639 (U.2)",
                                  "PCI Express 5 SFF-8639 (U.2)",
                                  "OCP NIC 3.0 Small Form Factor (SFF)",
                                  "OCP NIC 3.0 Large Form Factor (LFF)",
                                  "OCP NIC Prior to 3.0"};
constexpr std::uint8_t kPCI = 0x06, kPCI66 = 0x0e, kPCIX = 0x12;

/// Types of PCI Express: the first of each generation, which are followed by those with widths.
struct TGeneration {
  unsigned int fFirst;
  const char* fName;
};
constexpr TGeneration kGenerations[] = {{0xa5, "PCI Express"},
                                        {0xab, "PCI Express 2"},
                                        {0xb1, "PCI Express 3"},
                                        {0xb8, "PCI Express 4"},
                                        {0xbe, "PCI Express 5"}};
const char* const kWidths[] = {"", " x1", " x2", " x4", " x8", " x16"};

/// Returns null for another type.
const TGeneration* GenerationOf(unsigned int type) {
  for (const TGeneration& each : kGenerations) {
    if (type >= each.fFirst && type - each.fFirst < std::size(kWidths)) return &each;
  }
  return nullptr;
}

TReading<std::uint8_t> ReadSlotType(const TPhysicalElement& slot) {
  return FirmwareNumber<std::uint8_t>(0x05)(slot);
}

TText DescribeSlotType(const TPhysicalElement& slot) {
  return ReadSlotType(slot).and_then([](unsigned int type) -> TText {
    const TGeneration* const generation = GenerationOf(type);
    if (generation != nullptr) {
      return std::string(generation->fName) + kWidths[type - generation->fFirst];
    }
    if (type > 0 && type <= std::size(kSlotTypes)) return std::string(kSlotTypes[type - 1]);
    return Missing("SMBIOS has no text for type " + std::to_string(type));
  });
}

TReading<std::uint16_t> ReadLayout(const TPhysicalElement& slot) {
  return ReadSlotType(slot).map([](unsigned int type) -> std::uint16_t {
    constexpr std::uint16_t kLayoutPCI = 16, kLayoutPCIX = 17, kLayoutPCIe = 18, kLayoutSlot = 7;
    const TGeneration* const generation = GenerationOf(type);
    if (generation != nullptr) {
      return static_cast<std::uint16_t>(kLayoutPCIe + (type - generation->fFirst));
    }
    if (type == kPCI || type == kPCI66) return kLayoutPCI;
    return type == kPCIX ? kLayoutPCIX : kLayoutSlot;
  });
}

/// Reads the width of the slot: one field for bits and lanes.
auto Width(std::uint8_t first, std::uint8_t last, std::uint16_t (*convert)(unsigned int index)) {
  return [=](const TPhysicalElement& slot) {
    return FirmwareNumber<std::uint8_t>(0x06)(slot).and_then(
        [&](std::uint8_t width) -> TReading<std::uint16_t> {
          if (width < first || width > last)
            return slot.fStructure->MissingFrom("has no such width");
          return convert(static_cast<unsigned int>(width) - first);
        });
  };
}
std::uint16_t BitsOf(unsigned int index) { return static_cast<std::uint16_t>(8U << index); }
std::uint16_t LanesOf(unsigned int index) { return static_cast<std::uint16_t>(index + 2); }

/// Returns the address of the function in the slot; ones in all bits stand for no bus.
TText ReadBusAddress(const TPhysicalElement& slot) {
  return FirmwareNumber<std::uint8_t>(0x10)(slot).and_then([&](std::uint8_t function) -> TText {
    const std::uint16_t segment = *FirmwareNumber<std::uint16_t>(0x0d)(slot);
    const std::uint8_t bus = *FirmwareNumber<std::uint8_t>(0x0f)(slot);
    if (segment == 0xffff && bus == 0xff && function == 0xff) {
      return slot.fStructure->MissingFrom("bus is not told");
    }
    return HexID(segment) + ":" + HexID(bus) + ":" +
           HexID(static_cast<std::uint8_t>(function >> 3U)) + "." + std::to_string(function & 7U);
  });
}

TInstances<TPhysicalElement> ListSlots(const THost& host) {
  constexpr std::uint8_t kType = 9;
  return ListFirmware(host, kType, "Slot", {});
}

}  // namespace

TClass SlotClass() {
  return THostTable<TPhysicalElement>{
      "VORNSG_Slot",
      "A slot for a card, whether one is in it or not.",
      ListSlots,
      {{"ElementName", "What is written beside it.", FirmwareText(0x04)},
       {"Number", "The number that the maker has given it.", FirmwareNumber<std::uint16_t>(0x09)},
       {"SlotTypeDescription", "As in \"PCI Express 3 x8\".", DescribeSlotType},
       {"ConnectorLayout", "Which cards fit in.", ReadLayout,
        TEnumeration{{7, "Slot"},
                     {16, "PCI"},
                     {17, "PCI-X"},
                     {18, "PCI-E"},
                     {19, "PCI-E x1"},
                     {20, "PCI-E x2"},
                     {21, "PCI-E x4"},
                     {22, "PCI-E x8"},
                     {23, "PCI-E x16"}}},
       {"MaxDataWidth", "The bits that it transfers at once, if it is parallel.",
        Width(0x03, 0x07, BitsOf), TUnit{"bit"}},
       {"MaxLinkWidth", "The lanes that are connected, if it is serial.",
        Width(0x08, 0x0e, LanesOf),
        TEnumeration{
            {2, "x1"}, {3, "x2"}, {4, "x4"}, {5, "x8"}, {6, "x12"}, {7, "x16"}, {8, "x32"}}},
       {"CurrentUsage", "Whether a card is in it.", FirmwareNumber<std::uint8_t>(0x07),
        TEnumeration{
            {1, "Other"}, {2, "Unknown"}, {3, "Available"}, {4, "In use"}, {5, "Unavailable"}}},
       {"SupportsHotPlug", "Whether cards may be exchanged while the machine runs.",
        FirmwareFlag(0x0c, 1)},
       {"BusAddress", "The PCI function that is in it, or that it belongs to.", ReadBusAddress}}}
      .DerivedFrom(PhysicalElementTable());
}

}  // namespace NVORNQDX20
