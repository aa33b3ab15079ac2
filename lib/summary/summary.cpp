// SPDX-License-Identifier: Apache-2.0
#include <qdxsummary/summary.h>

#include <algorithm>
#include <utility>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

void ReadProduct(const ICIMNamespace& ns, TProduct& product) {
  ForEach(ns, "VORNSG_ComputerSystem", [&product](const TFacts& system) {
    product.fHostName = system.Text("Name");
    product.fManufacturer = system.Text("Manufacturer");
    product.fName = system.Text("ProductName");
    product.fSerialNumber = system.Text("SerialNumber");
  });
  ForEach(ns, "VORNSG_Chassis", [&product](const TFacts& chassis) {
    if (product.fShape.empty()) product.fShape = chassis.Text("ChassisTypeDescription");
  });
  ForEach(ns, "VORNSG_Card", [&product](const TFacts& card) {
    const bool isFirst = product.fBoard.empty() && product.fBoardManufacturer.empty();
    if (!isFirst && !card.Flag("HostingBoard").value_or(false)) return;
    if (card.Text("Model").empty()) return;
    product.fBoardManufacturer = card.Text("Manufacturer");
    product.fBoard = card.Text("Model");
  });
}

void ReadFirmware(const ICIMNamespace& ns, TFirmware& firmware) {
  ForEach(ns, "VORNSG_BIOSElement", [&firmware](const TFacts& facts) {
    firmware.fManufacturer = facts.Text("Manufacturer");
    firmware.fVersion = facts.Text("Version");
    firmware.fReleaseDate = facts.Text("ReleaseDate");
    firmware.fIsUEFI = facts.Flag("UEFI");
  });
}

/// The provider writes "none" for what is known not to be there.
std::string UnlessNone(const std::string& text) { return text == "none" ? "" : text; }

void ReadOperatingSystem(const ICIMNamespace& ns, TOperatingSystem& os, TMemory& memory) {
  ForEach(ns, "VORNSG_OperatingSystem", [&os, &memory](const TFacts& facts) {
    os.fName = facts.Text("Caption");
    if (os.fName.empty()) {
      const std::string version = facts.Text("Version");
      os.fName = facts.Text("Name") + (version.empty() ? "" : " " + version);
    }
    os.fKernel = facts.Text("KernelRelease");
    os.fArchitecture = facts.Text("Architecture");
    os.fContainer = UnlessNone(facts.Text("Container"));
    os.fVirtualMachine = UnlessNone(facts.Text("VirtualMachine"));
    os.fBootTime = facts.Text("LastBootUpTime");
    os.fUptimeSeconds = facts.Number("SystemUpTime");
    os.fLoad = {facts.Real("LoadAverage1"), facts.Real("LoadAverage5"),
                facts.Real("LoadAverage15")};
    os.fProcesses = facts.Number("NumberOfProcesses");
    memory.fBytes = Times(facts.Number("TotalVisibleMemorySize"), 1024);
    memory.fAvailableBytes = Times(facts.Number("AvailablePhysicalMemory"), 1024);
    memory.fSwapBytes = Times(facts.Number("SizeStoredInPagingFiles"), 1024);
    memory.fFreeSwapBytes = Times(facts.Number("FreeSpaceInPagingFiles"), 1024);
  });
}

void ReadProcessors(const ICIMNamespace& ns, std::vector<TProcessors>& all) {
  TGroups<TProcessors, std::string, TNumber> groups(all);
  ForEach(ns, "VORNSG_Processor", [&groups](const TFacts& facts) {
    const std::string name = facts.Text("Name");
    const TNumber hertz = Times(facts.Number("MaxClockSpeed"), 1'000'000);
    TProcessors& group = groups.GroupOf({0, name, 0, 0, hertz}, name, hertz);
    ++group.fCount;
    group.fCores += facts.Number("NumberOfEnabledCores").value_or(0);
    group.fThreads += facts.Number("NumberOfLogicalProcessors").value_or(0);
  });
}

void ReadModules(const ICIMNamespace& ns, std::vector<TModules>& all) {
  TGroups<TModules, TNumber, std::string, TNumber> groups(all);
  ForEach(ns, "VORNSG_PhysicalMemory", [&groups](const TFacts& facts) {
    const TNumber bytes = facts.Number("Capacity");
    const std::string type = facts.Text("MemoryTypeDescription");
    TNumber speed = facts.Number("ConfiguredMemoryClockSpeed");
    if (!speed) speed = facts.Number("MaxMemorySpeed");
    speed = Times(speed, 1'000'000);
    ++groups.GroupOf({0, bytes, type, speed}, bytes, type, speed).fCount;
  });
  std::stable_sort(all.begin(), all.end(), [](const TModules& left, const TModules& right) {
    return left.fBytes > right.fBytes;
  });
}

void ReadMemory(const ICIMNamespace& ns, TMemory& memory) {
  ForEach(ns, "VORNSG_Memory", [&memory](const TFacts& facts) {
    // What is installed, even if the kernel does not use all of it.
    const TNumber bytes = std::max(facts.Number("InstalledSize"), facts.Number("OnlineSize"));
    memory.fBytes = std::max(memory.fBytes, bytes);
  });
  ForEach(ns, "VORNSG_MemorySlot", [&memory](const TFacts& facts) {
    memory.fSlots = memory.fSlots.value_or(0) + 1;
    const bool isFree = !facts.Flag("Populated").value_or(true);
    memory.fFreeSlots = memory.fFreeSlots.value_or(0) + (isFree ? 1 : 0);
  });
  ReadModules(ns, memory.fModules);
  const auto add = [](TNumber& sum, const TNumber& more) {
    if (more) sum = sum.value_or(0) + *more;
  };
  ForEach(ns, "VORNSG_MemoryErrorCount", [&memory, &add](const TFacts& facts) {
    add(memory.fCorrectedErrors, facts.Number("CorrectableErrors"));
    add(memory.fUncorrectedErrors, facts.Number("UncorrectableErrors"));
  });
}

}  // namespace

bool TSummary::DescribesMachine() const {
  const bool hasIdentity = !fProduct.fHostName.empty() || !fProduct.fManufacturer.empty() ||
                           !fProduct.fName.empty() || !fProduct.fSerialNumber.empty() ||
                           !fFirmware.fVersion.empty() || !fOperatingSystem.fName.empty() ||
                           !fOperatingSystem.fKernel.empty();
  const bool hasParts = !fProcessors.empty() || fMemory.fBytes || fMemory.fSlots ||
                        !fMemory.fModules.empty() || !fDisks.empty() || !fFileSystems.empty() ||
                        !fPorts.empty() || !fCards.empty() || fSensors.fCount != 0;
  return hasIdentity || hasParts;
}

const std::vector<std::string>& ClassesOfSummary() {
  static const std::vector<std::string> classes = {"VORNSG_ComputerSystem",
                                                   "VORNSG_Chassis",
                                                   "VORNSG_Card",
                                                   "VORNSG_BIOSElement",
                                                   "VORNSG_OperatingSystem",
                                                   "VORNSG_Processor",
                                                   "VORNSG_Memory",
                                                   "VORNSG_MemorySlot",
                                                   "VORNSG_PhysicalMemory",
                                                   "VORNSG_MemoryErrorCount",
                                                   "VORNSG_DiskDrive",
                                                   "VORNSG_StorageVolume",
                                                   "VORNSG_BasedOn",
                                                   "VORNSG_FileSystem",
                                                   "VORNSG_NetworkPort",
                                                   "VORNSG_IPProtocolEndpoint",
                                                   "VORNSG_PCIDevice",
                                                   "VORNSG_Sensor",
                                                   "VORNSG_Battery",
                                                   "VORNSG_PowerSupply"};
  return classes;
}

TSummary Summarize(const ICIMNamespace& ns, const std::vector<std::string>& partsLeftOut) {
  TSummary summary;
  ReadProduct(ns, summary.fProduct);
  ReadFirmware(ns, summary.fFirmware);
  ReadOperatingSystem(ns, summary.fOperatingSystem, summary.fMemory);
  ReadProcessors(ns, summary.fProcessors);
  ReadMemory(ns, summary.fMemory);
  ReadStorage(ns, summary);
  ReadDevices(ns, summary);
  ReadPower(ns, summary);
  ReadGaps(ns, partsLeftOut, summary);
  return summary;
}

}  // namespace NVORNQDX20::NSummary
