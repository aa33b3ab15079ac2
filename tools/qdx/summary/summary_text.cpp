// SPDX-License-Identifier: Apache-2.0
#include "summary_text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>
#include <utility>

#include "attention.h"
#include "words.h"

namespace NVORNQDX20 {
namespace {

using namespace NSummary;

/// So many names of disks and ports, and addresses of a port, are told.
constexpr std::size_t kMostNames = 3;

TScreenLine Line(std::vector<std::string> cells, std::size_t count = 1) {
  return {std::move(cells), count};
}

/// No line if nothing is known.
TSection Single(const char* label, const std::string& text) {
  TSection section{label, {}};
  if (!text.empty()) section.fLines.push_back(Line({text}));
  return section;
}

/// Returns "Maker Product", without a maker that the product begins with.
std::string MadeBy(const std::string& maker, const std::string& product) {
  constexpr std::size_t kLongestName = 60;  // a longer maker leaves room for the product
  if (product.rfind(maker, 0) == 0) return product;
  return Listed({Shortened(maker, kLongestName), Shortened(product, kLongestName)}, " ");
}

/// The provider writes "other" for one without a known name.
std::string KindIn(const std::string& kind, const std::string& what) {
  if (kind.empty()) return "";
  return kind == "other" ? what : what + " (" + kind + ")";
}

TSection MachineSection(const TSummary& summary) {
  const TProduct& product = summary.fProduct;
  std::string what = MadeBy(product.fManufacturer, product.fName);
  const std::string virtualMachine =
      KindIn(summary.fOperatingSystem.fVirtualMachine, "virtual machine");
  const std::string serial = product.fSerialNumber.empty() ? "" : "serial " + product.fSerialNumber;
  TSection section =
      Single("Machine", Listed({product.fHostName, what, serial, product.fShape, virtualMachine}));
  for (TScreenLine& line : section.fLines) line.fStyle = TTableRow::kHeading;
  return section;
}

TSection BoardSection(const TProduct& product) {
  const bool isKnown = product.fBoard.empty() || product.fBoard == product.fName;
  return Single("Board", isKnown ? "" : MadeBy(product.fBoardManufacturer, product.fBoard));
}

TSection FirmwareSection(const TFirmware& firmware) {
  const std::string start = firmware.fIsUEFI ? (*firmware.fIsUEFI ? "UEFI" : "BIOS") : "";
  return Single("Firmware", Listed({Listed({firmware.fManufacturer, firmware.fVersion}, " "),
                                    DayOf(firmware.fReleaseDate), start}));
}

std::string LoadText(const TOperatingSystem& os) {
  std::string text;
  for (const auto& load : os.fLoad) {
    if (!load) return "";
    char number[32];
    std::snprintf(number, sizeof number, " %.2f", *load);
    text += number;
  }
  return "load" + text;
}

TSection TimeSection(const TOperatingSystem& os) {
  std::string up = AsQuantity(os.fUptimeSeconds, "second");
  if (up.empty() && !os.fBootTime.empty()) up = "since " + MinuteOf(os.fBootTime);
  const std::string processes =
      os.fProcesses ? Counted(*os.fProcesses, "process", "processes") : "";
  return Single("Up", Listed({up, LoadText(os), processes}));
}

TSection ProcessorSection(const std::vector<TProcessors>& all) {
  TSection section{"Processors", {}};
  for (const TProcessors& each : all) {
    const std::string name = each.fName.empty() ? "unknown processor" : each.fName;
    const std::string cores = each.fCores == 0 ? "" : Counted(each.fCores, "core", "cores");
    const std::string threads =
        each.fThreads == 0 ? "" : Counted(each.fThreads, "thread", "threads");
    // Many names end with the speed.
    const std::string speed =
        name.find("GHz") == std::string::npos ? AsQuantity(each.fMaxHertz, "hertz") : "";
    section.fLines.push_back(
        Line({Listed({Times(each.fCount) + name, speed, cores, threads})}, each.fCount));
  }
  return section;
}

std::string SwapText(const TMemory& memory) {
  if (!memory.fSwapBytes) return "";
  if (*memory.fSwapBytes == 0) return "no swap";
  return AsMemorySize(memory.fSwapBytes) + " swap";
}

TSection MemorySection(const TMemory& memory) {
  std::string free = AsMemorySize(memory.fAvailableBytes);
  if (!free.empty()) free += " available";
  std::string slots;
  if (memory.fSlots) {
    slots = Counted(*memory.fSlots, "slot", "slots");
    if (memory.fFreeSlots) slots += ", " + std::to_string(*memory.fFreeSlots) + " free";
  }
  TSection section =
      Single("Memory", Listed({AsMemorySize(memory.fBytes), free, SwapText(memory), slots}));
  for (const TModules& module : memory.fModules) {
    std::string speed =
        module.fTransfersPerSecond ? std::to_string(*module.fTransfersPerSecond / 1'000'000) : "";
    const std::string size = module.fBytes ? AsMemorySize(module.fBytes) : "module";
    section.fLines.push_back(
        Line({Times(module.fCount) + Listed({size, Listed({module.fType, speed}, "-")}, " ")},
             module.fCount));
  }
  return section;
}

std::string KindOf(const TDisks& disks) {
  static const std::map<std::string, const char*> transports = {
      {"sata", "SATA"}, {"sas", "SAS"}, {"nvme", "NVMe"}, {"usb", "USB"},
      {"ata", "ATA"},   {"fc", "FC"},   {"mmc", "MMC"}};
  const auto known = transports.find(disks.fTransport);
  const std::string transport = known == transports.end() ? disks.fTransport : known->second;
  const char* const medium = disks.fMedium == TDisks::kSolidState ? "SSD" : "disk";
  return Listed({transport, medium}, " ");
}

TSection DiskSection(const std::vector<TDisks>& all) {
  TSection section{"Disks", {}};
  for (const TDisks& disks : all) {
    const std::size_t count = disks.fNames.size();
    section.fLines.push_back(
        Line({Times(count) + Listed({AsDiskSize(disks.fBytes), KindOf(disks)}, " "),
              Listed({disks.fModel}), FirstOf(disks.fNames, kMostNames), disks.fState},
             count));
  }
  return section;
}

TSection ArraySection(const std::vector<TArray>& arrays) {
  TSection section{"Arrays", {}};
  for (const TArray& array : arrays) {
    std::string sync = array.fSyncAction;
    if (!sync.empty() && array.fSyncPercent)
      sync += " " + std::to_string(*array.fSyncPercent) + " %";
    section.fLines.push_back(
        Line({array.fName, AsDiskSize(array.fBytes), Listed({array.fLevel, array.fState, sync})}));
  }
  return section;
}

TScreenLine LineOf(const TFileSystem& system) {
  const int used = PercentUsed(system);
  const std::string size = AsDiskSize(system.fBytes);
  const std::string use =
      used < 0 ? size
               : Listed({size, std::to_string(used) + " % used",
                         AsDiskSize(std::min(system.fBytes, system.fAvailableBytes)) + " free"});
  const std::string disks = system.fDisks.empty() ? "" : "on " + FirstOf(system.fDisks, kMostNames);
  const std::string readOnly = system.fIsReadOnly ? "read only" : "";
  return Line(
      {Listed({system.fMountPoint}), Listed({system.fType}), use, Listed({disks, readOnly})},
      1 + system.fOtherMounts);
}

/// Those of one type that only can be read share a line: they are images of programs or media.
TSection FileSystemSection(const std::vector<TFileSystem>& systems) {
  TSection section{"Files", {}};
  std::map<std::string, std::vector<std::string>> images;
  for (const TFileSystem& system : systems) {
    if (system.fIsReadOnly && system.fMountPoint != "/") {
      images[system.fType].push_back(system.fMountPoint);
    } else {
      section.fLines.push_back(LineOf(system));
    }
  }
  for (const auto& [type, mounts] : images) {
    const std::string count = mounts.size() == 1 ? "" : " (" + std::to_string(mounts.size()) + ")";
    section.fLines.push_back(
        Line({FirstOf(mounts, 1) + count, Listed({type}), "read only"}, mounts.size()));
  }
  return section;
}

/// Those of the link alone tell nothing: each port that is up has one.
std::vector<std::string> UsefulAddresses(const TPort& port) {
  std::vector<std::string> useful;
  std::copy_if(port.fAddresses.begin(), port.fAddresses.end(), std::back_inserter(useful),
               [](const std::string& address) { return address.rfind("fe80:", 0) != 0; });
  return useful;
}

/// Ports with addresses are on lines of their own; others share one if they are alike.
TSection NetworkSection(const std::vector<TPort>& ports) {
  TSection section{"Network", {}};
  struct TGroup {
    std::vector<std::string> fCells;
    std::vector<std::string> fNames;
  };
  std::vector<TGroup> groups;
  std::map<std::vector<std::string>, std::size_t> known;
  for (const TPort& port : ports) {
    std::vector<std::string> cells = {Listed({port.fKind.empty() ? port.fTechnology : port.fKind}),
                                      Listed({port.fLinkState}),
                                      AsQuantity(port.fBitsPerSecond, "bit / second")};
    const std::vector<std::string> addresses = UsefulAddresses(port);
    if (!addresses.empty()) {
      cells.insert(cells.begin(), Listed({port.fName}));
      cells.push_back(FirstOf(addresses, kMostNames));
      section.fLines.push_back(Line(std::move(cells)));
      continue;
    }
    const auto [group, isNew] = known.emplace(cells, groups.size());
    if (isNew) groups.push_back({std::move(cells), {}});
    groups[group->second].fNames.push_back(port.fName);
  }
  for (auto& [cells, names] : groups) {
    const std::string count = names.size() == 1 ? "" : " (" + std::to_string(names.size()) + ")";
    cells.insert(cells.begin(), FirstOf(names, kMostNames) + count);
    section.fLines.push_back(Line(std::move(cells), names.size()));
  }
  return section;
}

std::string NameOf(const TCards& cards) {
  char id[sizeof("8086:1572")];
  std::snprintf(id, sizeof id, "%04x:%04x", static_cast<unsigned int>(cards.fVendorID),
                static_cast<unsigned int>(cards.fDeviceID));
  static const std::map<int, const char*> classes = {
      {1, "storage"},    {2, "network"},     {3, "display"},
      {4, "multimedia"}, {11, "processor"},  {12, "serial bus"},
      {13, "wireless"},  {16, "encryption"}, {18, "accelerator"}};
  const std::string name = MadeBy(cards.fVendor, cards.fDevice);
  const auto known = classes.find(cards.fClassCode);
  const std::string kind = cards.fDevice.empty() && known != classes.end() ? known->second : "";
  return Listed({id, name, kind}, " ");
}

TSection CardSection(const std::vector<TCards>& all) {
  TSection section{"Cards", {}};
  for (const TCards& cards : all) {
    const std::size_t count = cards.fAddresses.size();
    const std::string slots =
        cards.fSlots.empty() ? "" : "slot " + FirstOf(cards.fSlots, kMostNames);
    section.fLines.push_back(Line({Listed({Times(count) + NameOf(cards), slots})}, count));
  }
  return section;
}

TSection SensorSection(const TSensors& sensors) {
  if (sensors.fCount == 0) return {"Sensors", {}};
  const std::size_t bad = sensors.fOutOfRange.size();
  std::string text = std::to_string(sensors.fCount) + ", " +
                     (bad == 0 ? "none out of range" : std::to_string(bad) + " out of range");
  if (sensors.fWarmest) {
    const TSensor& warmest = *sensors.fWarmest;
    text +=
        "; warmest " + ReadingOf(warmest, *warmest.fReading) + " (" + Listed({warmest.fName}) + ")";
  }
  return Single("Sensors", text);
}

TSection PowerSection(const TSummary& summary) {
  TSection section{"Power", {}};
  const auto percent = [](const char* what, const TNumber& number) {
    return number ? what + std::to_string(*number) + " %" : "";
  };
  for (const TBattery& battery : summary.fBatteries) {
    section.fLines.push_back(Line(
        {Listed({"battery " + Listed({battery.fName}), percent("charge ", battery.fChargePercent),
                 percent("health ", battery.fHealthPercent), battery.fStatus})}));
  }
  for (const TPowerSupplies& supplies : summary.fPowerSupplies) {
    // Firmware counts some of which it knows nothing.
    if (!supplies.fWatts && supplies.fModel.empty() && supplies.fFault.empty()) continue;
    const std::string watts = AsQuantity(supplies.fWatts, "watt");
    const std::string what = supplies.fCount == 1 ? "power supply" : "power supplies";
    section.fLines.push_back(Line({Listed({Times(supplies.fCount) + Listed({watts, what}, " "),
                                           supplies.fModel, supplies.fFault})},
                                  supplies.fCount));
  }
  return section;
}

}  // namespace

std::vector<TSection> SectionsOf(const TSummary& summary, const TSummarySource& source) {
  const TOperatingSystem& os = summary.fOperatingSystem;
  std::vector<TSection> sections = {
      MachineSection(summary),
      Single("Collected", source.fCollected),
      AttentionSection(summary),
      BoardSection(summary.fProduct),
      FirmwareSection(summary.fFirmware),
      Single("System", Listed({os.fName, KindIn(os.fContainer, "in a container")})),
      Single("Kernel", Listed({os.fKernel, os.fArchitecture})),
      TimeSection(os),
      ProcessorSection(summary.fProcessors),
      MemorySection(summary.fMemory),
      DiskSection(summary.fDisks),
      ArraySection(summary.fArrays),
      FileSystemSection(summary.fFileSystems),
      NetworkSection(summary.fPorts),
      CardSection(summary.fCards),
      SensorSection(summary.fSensors),
      PowerSection(summary)};
  for (TSection& section : GapSections(summary.fGaps, source.fMayAskAsRoot)) {
    sections.push_back(std::move(section));
  }
  return sections;
}

}  // namespace NVORNQDX20
