// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PhysicalMemory: modules of memory.
#include <iterator>

#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

/// What SMBIOS and CIM call one kind; CIM has "Other" for what is newer than its schema.
struct TKind {
  const char* fName;
  std::uint16_t fCIM;
};

/// By the number in SMBIOS.
constexpr TKind kTypes[] = {
    {"Unknown", 0},       {"Other", 1},    {"Unknown", 0},  {"DRAM", 2},
    {"EDRAM", 6},         {"VRAM", 7},     {"SRAM", 8},     {"RAM", 9},
    {"ROM", 10},          {"Flash", 11},   {"EEPROM", 12},  {"FEPROM", 13},
    {"EPROM", 14},        {"CDRAM", 15},   {"3DRAM", 16},   {"SDRAM", 17},
    {"SGRAM", 18},        {"RDRAM", 19},   {"DDR", 20},     {"DDR2", 21},
    {"DDR2 FB-DIMM", 23}, {"Reserved", 0}, {"Reserved", 0}, {"Reserved", 0},
    {"DDR3", 24},         {"FBD2", 25},    {"DDR4", 26},    {"LPDDR", 27},
    {"LPDDR2", 28},       {"LPDDR3", 29},  {"LPDDR4", 30},  {"Logical non-volatile device", 1},
    {"HBM", 1},           {"HBM2", 1},     {"DDR5", 1},     {"LPDDR5", 1},
    {"HBM3", 1},          {"MRDIMM", 1}};
constexpr TKind kForms[] = {{"Unknown", 0},     {"Other", 1},   {"Unknown", 0}, {"SIMM", 7},
                            {"SIP", 2},         {"Chip", 1},    {"DIP", 3},     {"ZIP", 4},
                            {"Proprietary", 6}, {"DIMM", 8},    {"TSOP", 9},    {"Row of chips", 1},
                            {"RIMM", 11},       {"SODIMM", 12}, {"SRIMM", 13},  {"FB-DIMM", 8},
                            {"Die", 1},         {"CAMM", 1}};

template <std::size_t kCount>
TReading<TKind> ReadKind(const TMemoryDevice& module, std::size_t offset,
                         const TKind (&kinds)[kCount]) {
  return FirmwareNumber<std::uint8_t>(offset)(module).and_then(
      [&](std::uint8_t number) -> TReading<TKind> {
        if (number < kCount) return kinds[number];
        return module.fStructure->MissingFrom("number " + std::to_string(number) +
                                              " has no meaning in SMBIOS");
      });
}

std::uint16_t NumberOf(const TKind& kind) { return kind.fCIM; }
std::string NameOf(const TKind& kind) { return kind.fName; }

TReading<std::uint16_t> ReadForm(const TMemoryDevice& module) {
  return ReadKind(module, 0x0E, kForms).map(NumberOf);
}
TText ReadFormName(const TMemoryDevice& module) {
  return ReadKind(module, 0x0E, kForms).map(NameOf);
}
TReading<std::uint16_t> ReadType(const TMemoryDevice& module) {
  return ReadKind(module, 0x12, kTypes).map(NumberOf);
}
TText ReadTypeName(const TMemoryDevice& module) {
  return module.fMemoryType ? module.fMemoryType : ReadKind(module, 0x12, kTypes).map(NameOf);
}

/// Reads a number for which 0, and for a width or a voltage the largest number, mean "unknown".
template <typename T>
auto Known(std::size_t offset) {
  return [offset](const TMemoryDevice& module) {
    return FirmwareNumber<T>(offset)(module).and_then([&module](T number) -> TReading<T> {
      if (number != 0 && number != static_cast<T>(~T{0})) return number;
      return module.fStructure->MissingFrom("unknown");
    });
  };
}

/// Transfers in a second, in millions; what does not fit is in a wider field.
auto Speed(std::size_t offset, std::size_t wideOffset) {
  return [offset, wideOffset](const TMemoryDevice& module) -> TReading<std::uint32_t> {
    const auto speed = FirmwareNumber<std::uint16_t>(offset)(module);
    if (speed && *speed == 0xFFFF) return Known<std::uint32_t>(wideOffset)(module);
    return Known<std::uint16_t>(offset)(module).map(
        [](std::uint16_t number) { return std::uint32_t{number}; });
  };
}

/// The lower half of the byte.
TReading<std::uint8_t> ReadRanks(const TMemoryDevice& module) {
  return FirmwareNumber<std::uint8_t>(0x1B)(module).and_then(
      [&module](std::uint8_t attributes) -> TReading<std::uint8_t> {
        if ((attributes & 0xFU) == 0) return module.fStructure->MissingFrom("unknown");
        return static_cast<std::uint8_t>(attributes & 0xFU);
      });
}

/// Reads a position in the mapped addresses; 255 means "unknown".
auto Position(std::size_t offset) {
  return [offset](const TMemoryDevice& module) {
    return module.fMapping.and_then(
        [offset](const TSMBIOSStructure& mapping) -> TReading<std::uint32_t> {
          const auto position = mapping.ReadNumber<std::uint8_t>(offset);
          if (position && *position == 0xFF) return mapping.MissingFrom("unknown");
          return position.map([](std::uint8_t number) { return std::uint32_t{number}; });
        });
  };
}

TInstances<TMemoryDevice> ListModules(const THost& host) {
  return MemoryDevicesWhere(
      host, [](const TMemoryDevice& device) { return device.fIsInstalled; },
      "no socket has a module");
}

constexpr TConstantEnumeration kCIMTypes = {
    {0, "Unknown"},    {1, "Other"},   {2, "DRAM"},   {3, "Synchronous DRAM"},
    {4, "Cache DRAM"}, {5, "EDO"},     {6, "EDRAM"},  {7, "VRAM"},
    {8, "SRAM"},       {9, "RAM"},     {10, "ROM"},   {11, "Flash"},
    {12, "EEPROM"},    {13, "FEPROM"}, {14, "EPROM"}, {15, "CDRAM"},
    {16, "3DRAM"},     {17, "SDRAM"},  {18, "SGRAM"}, {19, "RDRAM"},
    {20, "DDR"},       {21, "DDR-2"},  {22, "BRAM"},  {23, "FB-DIMM"},
    {24, "DDR3"},      {25, "FBD2"},   {26, "DDR4"},  {27, "LPDDR"},
    {28, "LPDDR2"},    {29, "LPDDR3"}, {30, "LPDDR4"}};
constexpr TConstantEnumeration kCIMForms = {
    {0, "Unknown"},     {1, "Other"},  {2, "SIP"},   {3, "DIP"},   {4, "ZIP"},    {5, "SOJ"},
    {6, "Proprietary"}, {7, "SIMM"},   {8, "DIMM"},  {9, "TSOP"},  {10, "PGA"},   {11, "RIMM"},
    {12, "SODIMM"},     {13, "SRIMM"}, {14, "SMD"},  {15, "SSMP"}, {16, "QFP"},   {17, "TQFP"},
    {18, "SOIC"},       {19, "LCC"},   {20, "PLCC"}, {21, "BGA"},  {22, "FPBGA"}, {23, "LGA"}};

}  // namespace

TClass PhysicalMemoryClass() {
  const TUnit bits{"bit"};
  const TUnit megahertz{"hertz * 10^6"};
  const TUnit millivolts{"volt * 10^-3"};
  return THostTable<TMemoryDevice>{
      "VORNSG_PhysicalMemory",
      "A module of memory.",
      ListModules,
      {{"Capacity", "Its size.", &TMemoryDevice::fCapacity, TUnit{"byte"}},
       {"FormFactor", "The shape.", ReadForm, kCIMForms},
       {"FormFactorDescription", "The shape, also of modules newer than the list of FormFactor.",
        ReadFormName},
       {"MemoryType", "The kind of chips.", ReadType, kCIMTypes},
       {"MemoryTypeDescription", "The kind, also of chips newer than the list of MemoryType.",
        ReadTypeName},
       {"Manufacturer", "The maker.", FirmwareText(0x17)},
       {"PartNumber", "The product, as its maker numbers them.", FirmwareText(0x1A)},
       {"SerialNumber", "The serial number.", FirmwareText(0x18), ESecret::kSerial},
       {"UserTracking", "The tag with which its owner keeps track of it.", FirmwareText(0x19),
        ESecret::kSerial},
       {"DeviceLocator", "The socket that it is in.", &TMemoryDevice::fName},
       {"BankLabel", "The bank that the socket is in.", FirmwareText(0x11)},
       {"TotalWidth", "The bits of a word, with those for the correction of errors.",
        Known<std::uint16_t>(0x08), bits},
       {"DataWidth", "The bits of data in a word.", Known<std::uint16_t>(0x0A), bits},
       {"MaxMemorySpeed", "The highest speed, as transfers in a second.", Speed(0x15, 0x54),
        megahertz},
       {"ConfiguredMemoryClockSpeed", "The speed that is set.", Speed(0x20, 0x58), megahertz},
       {"Ranks", "The sets of chips that are addressed together.", ReadRanks},
       {"MinimumVoltage", "The lowest voltage that it takes.", Known<std::uint16_t>(0x22),
        millivolts},
       {"MaximumVoltage", "The highest voltage that it takes.", Known<std::uint16_t>(0x24),
        millivolts},
       {"ConfiguredVoltage", "The voltage that is set.", Known<std::uint16_t>(0x26), millivolts},
       {"FirmwareVersion", "The version of its own firmware.", FirmwareText(0x2B)},
       {"PositionInRow", "Its place in the row of modules that are addressed together.",
        Position(0x10)},
       {"InterleavePosition", "Its place among the modules that take turns; 0 if none do.",
        Position(0x11)}}}
      .DerivedFrom(PhysicalElementTable());
}

}  // namespace NVORNQDX20
