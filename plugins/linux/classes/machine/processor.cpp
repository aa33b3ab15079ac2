// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Processor: what sits in one socket.
#include <iterator>
#include <utility>
#include <vector>

#include "classes/logical_device.h"
#include "sources/processors/topology.h"

namespace NVORNQDX20 {
namespace {

constexpr TConstantEnumeration kStatuses = {{0, "Unknown"},
                                            {1, "CPU Enabled"},
                                            {2, "CPU Disabled by User"},
                                            {3, "CPU Disabled By BIOS (POST Error)"},
                                            {4, "CPU Is Idle"},
                                            {7, "Other"}};
constexpr TConstantEnumeration kUpgradeMethods = {{1, "Other"},
                                                  {2, "Unknown"},
                                                  {3, "Daughter Board"},
                                                  {4, "ZIF Socket"},
                                                  {5, "Replacement/Piggy Back"},
                                                  {6, "None"},
                                                  {7, "LIF Socket"},
                                                  {8, "Slot 1"},
                                                  {9, "Slot 2"},
                                                  {10, "370 Pin Socket"},
                                                  {11, "Slot A"},
                                                  {12, "Slot M"},
                                                  {13, "Socket 423"},
                                                  {14, "Socket A (Socket 462)"},
                                                  {15, "Socket 478"},
                                                  {16, "Socket 754"},
                                                  {17, "Socket 940"},
                                                  {18, "Socket 939"},
                                                  {19, "Socket mPGA604"},
                                                  {20, "Socket LGA771"},
                                                  {21, "Socket LGA775"},
                                                  {22, "Socket S1"},
                                                  {23, "Socket AM2"},
                                                  {24, "Socket F (1207)"},
                                                  {25, "Socket LGA1366"},
                                                  {26, "Socket G34"},
                                                  {27, "Socket AM3"},
                                                  {28, "Socket C32"},
                                                  {29, "Socket LGA1156"},
                                                  {30, "Socket LGA1567"},
                                                  {31, "Socket PGA988A"},
                                                  {32, "Socket BGA1288"},
                                                  {33, "rPGA988B"},
                                                  {34, "BGA1023"},
                                                  {35, "BGA1224"},
                                                  {36, "LGA1155"},
                                                  {37, "LGA1356"},
                                                  {38, "LGA2011"},
                                                  {39, "Socket FS1"},
                                                  {40, "Socket FS2"},
                                                  {41, "Socket FM1"},
                                                  {42, "Socket FM2"},
                                                  {43, "Socket LGA2011-3"},
                                                  {44, "Socket LGA1356-3"},
                                                  {45, "Socket LGA1150"},
                                                  {46, "Socket BGA1168"},
                                                  {47, "Socket BGA1234"},
                                                  {48, "Socket BGA1364"},
                                                  {49, "Socket AM4"},
                                                  {50, "Socket LGA1151"},
                                                  {51, "Socket BGA1356"},
                                                  {52, "Socket BGA1440"},
                                                  {53, "Socket BGA1515"},
                                                  {54, "Socket LGA3647-1"},
                                                  {55, "Socket SP3"},
                                                  {56, "Socket SP3r2"}};

struct TProcessor : TDevice {
  TSocket fSocket;
};

TInstances<TProcessor> ListProcessors(const THost& host) {
  const auto& topology = host.Shared<TTopology>();
  TInstances<TProcessor> processors({}, topology.GetReason());
  processors.fAll.reserve(topology.GetSockets().size());
  for (const TSocket& socket : topology.GetSockets()) {
    processors.fAll.push_back({{socket.fID, socket.fModel.fName}, socket});
  }
  return processors;
}

/// Reads what the processor says about itself.
template <typename T>
auto Model(T TCPUModel::*member) {
  return [member](const TProcessor& processor) { return processor.fSocket.fModel.*member; };
}

/// The clock speed just now, or that of a processor whose clock does not change.
TMegahertz ReadCurrentClock(const TProcessor& processor, const THost& host) {
  const TMegahertz& told = processor.fSocket.fModel.fCurrentClock;
  if (told || processor.fSocket.fThreads.empty()) return told;
  const std::string folder =
      kProcessorFolder + ("/cpu" + std::to_string(*processor.fSocket.fThreads.begin()));
  const TMegahertz now =
      Scaled<std::uint32_t>(host.ReadNumber(folder + "/cpufreq/scaling_cur_freq"), 1, 1000);
  return now ? now : told;
}

TReading<std::uint16_t> DataWidth(const TProcessor& processor) {
  const unsigned bits = processor.fSocket.fModel.fArchitectureBits;
  if (bits == 0) return Missing("the kernel does not say it");
  return static_cast<std::uint16_t>(bits);
}

TText VirtualizationTechnology(const TProcessor& processor) {
  const TWords& flags = processor.fSocket.fModel.fFlags;
  if (HasFlag(flags, "vmx")) return "VT-x";
  if (HasFlag(flags, "svm")) return "AMD-V";
  if (HasFlag(flags, "lvz")) return "LVZ";
  if (!flags) return Missing(flags.GetReason());
  return Missing("no flag of the processor names any");
}

TReading<std::uint16_t> CountThreads(const TProcessor& processor) {
  if (processor.fSocket.fThreads.empty()) return Missing("firmware does not say what is online");
  return static_cast<std::uint16_t>(processor.fSocket.fThreads.size());
}

TText Threads(const TProcessor& processor) {
  if (processor.fSocket.fThreads.empty()) return Missing("firmware does not say what is online");
  return FormatCPUList(processor.fSocket.fThreads);
}

/// Reads what firmware says about the socket.
template <typename TRead>
auto Firmware(TRead read) {
  return [read](const TProcessor& processor) { return processor.fSocket.fFirmware.and_then(read); };
}

auto SocketText(std::size_t offset) { return Firmware(SMBIOSString(offset)); }

TReading<std::uint16_t> Family(const TSMBIOSStructure& socket) {
  const auto family = socket.ReadNumber<std::uint8_t>(TFirmwareSocket::kFamily);
  if (!family) return Missing(family.GetReason());
  constexpr std::uint8_t kIsLong = 0xfe;
  if (*family == kIsLong) return socket.ReadNumber<std::uint16_t>(TFirmwareSocket::kLongFamily);
  return std::uint16_t{*family};
}

/// The bytes that identify it, as hexadecimal digits in the order of the number.
TText ID(const TSMBIOSStructure& socket) {
  return socket.ReadNumber<std::uint64_t>(TFirmwareSocket::kID)
      .and_then([&](std::uint64_t id) -> TText {
        if (id == 0) return socket.MissingFrom("has no processor ID");
        std::string digits(16, '0');
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, id >>= 4U) {
          *digit = "0123456789ABCDEF"[id & 0xfU];
        }
        return digits;
      });
}

TReading<std::uint16_t> Status(const TSMBIOSStructure& socket) {
  return socket.ReadNumber<std::uint8_t>(TFirmwareSocket::kStatus).map([](std::uint8_t status) {
    return static_cast<std::uint16_t>(status & 7U);
  });
}

/// The numbers are those of DSP0134 as far as the schema goes.
TReading<std::uint16_t> UpgradeMethod(const TSMBIOSStructure& socket) {
  return socket.ReadNumber<std::uint8_t>(TFirmwareSocket::kUpgrade).map([](std::uint8_t method) {
    constexpr std::uint16_t kOther = 1, kLast = 56;
    return method == 0 || method > kLast ? kOther : std::uint16_t{method};
  });
}

/// Bits 2 to 7 of DSP0134, but for "multi-core", which the schema does not have.
TReading<std::vector<std::uint16_t>> Characteristics(const TSMBIOSStructure& socket) {
  return socket.ReadNumber<std::uint16_t>(TFirmwareSocket::kCharacteristics)
      .map([](std::uint16_t bits) {
        struct TMeaning {
          unsigned fBit;
          std::uint16_t fNumber;
        };
        constexpr TMeaning kMeanings[] = {{2, 2}, {6, 4}, {4, 5}, {5, 6}, {7, 7}};
        std::vector<std::uint16_t> numbers;
        numbers.reserve(std::size(kMeanings));
        for (const TMeaning& each : kMeanings) {
          if (((bits >> each.fBit) & 1U) != 0) numbers.push_back(each.fNumber);
        }
        return numbers;
      });
}

}  // namespace

TClass ProcessorClass() {
  const TUnit megahertz{"hertz * 10^6"};
  const TUnit bits{"bit"};
  return THostTable<TProcessor>{
      "VORNSG_Processor",
      "A processor: what sits in one socket.",
      ListProcessors,
      {{"Description", "What else the kernel calls it.", Model(&TCPUModel::fDescription)},
       {"Manufacturer", "The maker, as the processor says.", Model(&TCPUModel::fVendor)},
       {"VendorID", "How the processor itself names its maker.", Model(&TCPUModel::fVendorID)},
       {"FamilyID", "The family, as the processor says.", Model(&TCPUModel::fFamily)},
       {"ModelID", "The model within its family, as the processor says.",
        Model(&TCPUModel::fModel)},
       {"Stepping", "The revision within its model.", Model(&TCPUModel::fStepping)},
       {"Microcode", "The revision of the loaded microcode.", Model(&TCPUModel::fMicrocode)},
       {"MaxClockSpeed", "The highest clock speed, of its fastest core.",
        [](const TProcessor& processor) { return processor.fSocket.fClock.fMax; }, megahertz},
       {"MinClockSpeed", "The lowest clock speed, of its slowest core.",
        [](const TProcessor& processor) { return processor.fSocket.fClock.fMin; }, megahertz},
       {"CurrentClockSpeed", "The clock speed of its first logical processor just now.",
        ReadCurrentClock, megahertz, kGauge, kVolatile},
       {"DataWidth", "How many bits it handles at once.", DataWidth, bits},
       {"PhysicalAddressWidth", "The width of addresses of memory.",
        Model(&TCPUModel::fPhysicalAddressBits), bits},
       {"VirtualAddressWidth", "The width of addresses of programs.",
        Model(&TCPUModel::fVirtualAddressBits), bits},
       {"VirtualizationTechnology", "What it has for virtual machines.", VirtualizationTechnology},
       {"Flags", "The features that the kernel uses or shows.", Model(&TCPUModel::fFlags)},
       {"Bugs", "The faults of this model for which the kernel has a workaround.",
        Model(&TCPUModel::fBugs)},
       {"NumberOfEnabledCores", "The cores that are online.",
        [](const TProcessor& processor) { return processor.fSocket.fCoreCount; }},
       {"NumberOfLogicalProcessors", "The threads of these cores that are online.", CountThreads},
       {"LogicalProcessors", "The numbers of these threads.", Threads},
       {"NumberOfCores", "Its cores, also those that are not in use.",
        Firmware(&TFirmwareSocket::ReadCores)},
       {"NumberOfHardwareThreads", "Its threads, also those that are not in use.",
        Firmware(&TFirmwareSocket::ReadThreads)},
       {"SocketDesignation", "What is written next to its socket.",
        SocketText(TFirmwareSocket::kDesignation)},
       {"FirmwareName", "The name by which firmware knows it.",
        SocketText(TFirmwareSocket::kVersion)},
       {"SerialNumber", "Its serial number.", SocketText(TFirmwareSocket::kSerialNumber),
        ESecret::kSerial},
       {"AssetTag", "The tag of its owner.", SocketText(TFirmwareSocket::kAssetTag),
        ESecret::kSerial},
       {"PartNumber", "The number by which it is ordered.",
        SocketText(TFirmwareSocket::kPartNumber)},
       {"Family", "The family, a number of DMTF DSP0134.", Firmware(Family)},
       {"UniqueID", "What it identifies itself with: on x86 its model and features.", Firmware(ID)},
       {"ExternalBusClockSpeed", "The clock speed of its bus.",
        Firmware(&TFirmwareSocket::ReadBusClock), megahertz},
       {"CPUStatus", "What firmware did with it.", Firmware(Status), kStatuses},
       {"UpgradeMethod", "The kind of its socket.", Firmware(UpgradeMethod), kUpgradeMethods},
       {"Characteristics", "What it can do, as firmware says.", Firmware(Characteristics),
        TEnumeration{{0, "Unknown"},
                     {2, "64-bit Capable"},
                     {3, "32-bit Capable"},
                     {4, "Enhanced Virtualization"},
                     {5, "Hardware Thread"},
                     {6, "NX-bit"},
                     {7, "Power/Performance Control"},
                     {8, "Core Frequency Boosting"}}}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
