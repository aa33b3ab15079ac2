// SPDX-License-Identifier: Apache-2.0
// What is not known, and why.
#include <qdxdescribe/missing_values.h>

#include <algorithm>
#include <string_view>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

using NDescribe::TReason;

struct TSubject {
  const char* fName;
  const char* fClass;
  const char* fProperty;  ///< Empty for instances.
  bool fIsExpected;       ///< Whether it matters that a machine does not have it.
};

constexpr TSubject kSubjects[] = {
    {"maker", "VORNSG_ComputerSystem", "Manufacturer", true},
    {"product name", "VORNSG_ComputerSystem", "ProductName", true},
    {"serial number", "VORNSG_ComputerSystem", "SerialNumber", true},
    {"chassis", "VORNSG_Chassis", "", false},
    {"board", "VORNSG_Card", "", false},
    {"firmware", "VORNSG_BIOSElement", "", true},
    {"operating system", "VORNSG_OperatingSystem", "Caption", true},
    {"kernel", "VORNSG_OperatingSystem", "KernelRelease", true},
    {"uptime", "VORNSG_OperatingSystem", "SystemUpTime", true},
    {"load", "VORNSG_OperatingSystem", "LoadAverage1", true},
    {"memory", "VORNSG_OperatingSystem", "TotalVisibleMemorySize", true},
    {"processors", "VORNSG_Processor", "", true},
    {"memory modules", "VORNSG_PhysicalMemory", "", true},
    {"memory slots", "VORNSG_MemorySlot", "", false},
    {"memory errors", "VORNSG_MemoryErrorCount", "", false},
    {"disks", "VORNSG_DiskDrive", "", true},
    {"sizes of disks", "VORNSG_DiskDrive", "Size", false},
    {"states of disks", "VORNSG_DiskDrive", "State", false},
    {"arrays", "VORNSG_StorageVolume", "", false},
    {"states of arrays", "VORNSG_StorageVolume", "Degraded", false},
    {"file systems", "VORNSG_FileSystem", "", true},
    {"space of file systems", "VORNSG_FileSystem", "FileSystemSize", false},
    {"network ports", "VORNSG_EthernetPort", "", true},
    {"states of ports", "VORNSG_EthernetPort", "LinkState", false},
    {"addresses", "VORNSG_IPProtocolEndpoint", "", true},
    {"cards", "VORNSG_PCIDevice", "", true},
    {"names of cards", "VORNSG_PCIDevice", "DeviceName", true},
    {"sensors", "VORNSG_NumericSensor", "", true},
    {"readings of sensors", "VORNSG_NumericSensor", "CurrentReading", false},
    {"batteries", "VORNSG_Battery", "", false},
    {"power supplies", "VORNSG_PowerSupply", "", false}};

bool Has(const TReason& reason, std::string_view text) {
  return reason.find(text) != std::string::npos;
}

TGap::EKind KindOf(const TReason& reason) {
  if (reason.rfind("part ", 0) == 0 && Has(reason, " is left out")) return TGap::kLeftOut;
  if (!reason.IsError()) return TGap::kNotThere;
  const bool isRefused = Has(reason, "Permission denied") || Has(reason, "Operation not permitted");
  return isRefused ? TGap::kNeedsRoot : TGap::kFailed;
}

void Add(std::vector<TGap>& gaps, TGap::EKind kind, const TReason& reason, const char* subject) {
  auto same = std::find_if(gaps.begin(), gaps.end(), [&](const TGap& gap) {
    return gap.fKind == kind && gap.fReason == reason;
  });
  if (same == gaps.end()) same = gaps.insert(gaps.end(), {kind, reason, {}});
  same->fSubjects.emplace_back(subject);
}

/// Returns whether it is known in spite of the reason: from another source, or of other parts.
bool IsKnown(const TSummary& summary, std::string_view subject) {
  const TOperatingSystem& os = summary.fOperatingSystem;
  if (subject == "operating system") return !os.fName.empty();
  if (subject == "uptime") return !os.fBootTime.empty();
  if (subject == "addresses") {
    return std::any_of(summary.fPorts.begin(), summary.fPorts.end(),
                       [](const TPort& port) { return !port.fAddresses.empty(); });
  }
  if (subject == "names of cards") {
    return std::all_of(summary.fCards.begin(), summary.fCards.end(),
                       [](const TCards& cards) { return !cards.fVendor.empty(); });
  }
  return subject == "memory" && summary.fMemory.fBytes.has_value();
}

}  // namespace

void ReadGaps(const ICIMNamespace& ns, TSummary& summary) {
  const NDescribe::TMissingReasons reasons = NDescribe::ReadMissingReasons(ns);
  for (const auto& [name, className, property, isExpected] : kSubjects) {
    const TReason* worst = nullptr;
    for (auto each = reasons.lower_bound({className, "", ""});
         each != reasons.end() && std::get<0>(each->first) == className; ++each) {
      if (std::get<2>(each->first) != property) continue;
      if (worst == nullptr || (each->second.IsError() && !worst->IsError())) worst = &each->second;
    }
    if (worst == nullptr) continue;
    const TGap::EKind kind = KindOf(*worst);
    if (kind == TGap::kNotThere && (!isExpected || IsKnown(summary, name))) continue;
    Add(summary.fGaps, kind, *worst, name);
  }
}

}  // namespace NVORNQDX20::NSummary
