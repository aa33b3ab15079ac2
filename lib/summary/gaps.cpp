// SPDX-License-Identifier: Apache-2.0
// What is not known, and why.
#include <qdxdescribe/missing_values.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

using NDescribe::TReason;

/// What a machine is expected to have: also an absence is a gap.
struct TExpected {
  const char* fSubject;
  const char* fClass;
  const char* fProperty;  ///< Empty for instances.
};

constexpr TExpected kExpected[] = {{"maker", "VORNSG_ComputerSystem", "Manufacturer"},
                                   {"product name", "VORNSG_ComputerSystem", "ProductName"},
                                   {"serial number", "VORNSG_ComputerSystem", "SerialNumber"},
                                   {"firmware", "VORNSG_BIOSElement", ""},
                                   {"operating system", "VORNSG_OperatingSystem", "Caption"},
                                   {"kernel", "VORNSG_OperatingSystem", "KernelRelease"},
                                   {"uptime", "VORNSG_OperatingSystem", "SystemUpTime"},
                                   {"load", "VORNSG_OperatingSystem", "LoadAverage1"},
                                   {"memory", "VORNSG_OperatingSystem", "TotalVisibleMemorySize"},
                                   {"processors", "VORNSG_Processor", ""},
                                   {"memory modules", "VORNSG_PhysicalMemory", ""},
                                   {"disks", "VORNSG_DiskDrive", ""},
                                   {"file systems", "VORNSG_FileSystem", ""},
                                   {"network ports", "VORNSG_EthernetPort", ""},
                                   {"addresses", "VORNSG_IPProtocolEndpoint", ""},
                                   {"cards", "VORNSG_PCIDevice", ""},
                                   {"names of cards", "VORNSG_PCIDevice", "DeviceName"},
                                   {"sensors", "VORNSG_NumericSensor", ""}};

/// What the summary reads: an error in the way of a class or of one of these properties is a gap.
struct TPart {
  const char* fSubject;
  const char* fClass;
  const char* fProperties;  ///< Each between blanks.
};

constexpr const char* kPortProperties =
    " Name Kind LinkTechnology OtherLinkTechnology LinkState PortState Speed CurrentAddress ";
constexpr const char* kSensorProperties =
    " ElementName Chip BaseUnits UnitModifier CurrentReading CurrentState UpperThresholdFatal "
    "LowerThresholdFatal UpperThresholdCritical LowerThresholdCritical UpperThresholdNonCritical "
    "LowerThresholdNonCritical ";
constexpr TPart kParts[] = {
    {"host name", "VORNSG_ComputerSystem", " Name "},
    {"chassis", "VORNSG_Chassis", " ChassisTypeDescription "},
    {"board", "VORNSG_Card", " Manufacturer Model HostingBoard "},
    {"firmware", "VORNSG_BIOSElement", " Manufacturer Version ReleaseDate UEFI "},
    {"operating system", "VORNSG_OperatingSystem",
     " Name Version Architecture Container VirtualMachine NumberOfProcesses "},
    {"uptime", "VORNSG_OperatingSystem", " LastBootUpTime "},
    {"load", "VORNSG_OperatingSystem", " LoadAverage5 LoadAverage15 "},
    {"memory", "VORNSG_OperatingSystem",
     " AvailablePhysicalMemory SizeStoredInPagingFiles FreeSpaceInPagingFiles "},
    {"processors", "VORNSG_Processor",
     " Name MaxClockSpeed NumberOfEnabledCores NumberOfLogicalProcessors "},
    {"memory modules", "VORNSG_Memory", " InstalledSize "},
    {"memory", "VORNSG_Memory", " OnlineSize "},
    {"memory modules", "VORNSG_PhysicalMemory",
     " Capacity MemoryTypeDescription ConfiguredMemoryClockSpeed MaxMemorySpeed "},
    {"memory slots", "VORNSG_MemorySlot", " Populated "},
    {"memory errors", "VORNSG_MemoryErrorCount", " CorrectableErrors UncorrectableErrors "},
    {"disks", "VORNSG_DiskDrive",
     " Name Size MaxMediaSize DiskType Transport ElementName Model State "},
    {"arrays", "VORNSG_StorageVolume",
     " Name RAIDLevel ArrayState Size Degraded SyncAction SyncProgress "},
    {"disks of file systems", "VORNSG_BasedOn", ""},
    {"file systems", "VORNSG_FileSystem",
     " FileSystemType Device FileSystemSize UsedSpace AvailableSpace ReadOnly SourceDevice "},
    {"network ports", "VORNSG_NetworkPort", kPortProperties},
    {"network ports", "VORNSG_EthernetPort", kPortProperties},
    {"network ports", "VORNSG_WiFiPort", kPortProperties},
    {"network ports", "VORNSG_IBPort", kPortProperties},
    {"network ports", "VORNSG_FCPort", kPortProperties},
    {"addresses", "VORNSG_IPProtocolEndpoint", " PortName PrefixLength "},
    {"cards", "VORNSG_PCIDevice",
     " VendorID VendorName PCIDeviceID ClassCode SubclassCode ClassDescription Driver "
     "PhysicalSlot "},
    {"sensors", "VORNSG_Sensor", kSensorProperties},
    {"sensors", "VORNSG_NumericSensor", kSensorProperties},
    {"sensors", "VORNSG_ThermalZone", kSensorProperties},
    {"batteries", "VORNSG_Battery",
     " Name Scope Present Status EstimatedChargeRemaining HealthPercent "},
    {"power supplies", "VORNSG_PowerSupply",
     " Model RatedMaxOutputPower Present Unplugged Status "}};

bool Has(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// Returns whether it is known in spite of an absence: from another source, or of other parts.
bool IsKnown(const TSummary& summary, std::string_view subject) {
  const TOperatingSystem& os = summary.fOperatingSystem;
  if (subject == "operating system") return !os.fName.empty();
  if (subject == "uptime") return !os.fBootTime.empty();
  if (subject == "network ports") return !summary.fPorts.empty();
  if (subject == "sensors") return summary.fSensors.fCount != 0;
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

/// What the summary calls a value.
struct TSubject {
  std::size_t fOrder = 0;
  std::string_view fName;  ///< Empty for what the summary does not read.
  bool fIsExpected = false;
};

/// Finds a subject, with its place in the tables.
TSubject FindSubject(const std::string& className, const std::string& property) {
  for (std::size_t i = 0; i < std::size(kExpected); ++i) {
    const auto& [subject, its, expected] = kExpected[i];
    if (className == its && property == expected) return {i, subject, true};
  }
  for (std::size_t i = 0; i < std::size(kParts); ++i) {
    const auto& [subject, its, properties] = kParts[i];
    const bool isRead = property.empty() || Has(properties, " " + property + " ");
    if (className == its && isRead) return {std::size(kExpected) + i, subject, false};
  }
  return {};
}

/// The worst reason of each subject.
class TWorst {
 public:
  void Add(const TSubject& subject, TGap::EKind kind, const TReason& reason) {
    const TFound added{subject.fOrder, kind, &reason};
    const auto [known, isNew] = fAll.emplace(subject.fName, added);
    TFound& found = known->second;
    // Of two that are as bad, the one that stands first in the tables is closer to the subject.
    const bool isWorse =
        std::pair(Severity(kind), found.fOrder) > std::pair(Severity(found.fKind), added.fOrder);
    const std::size_t order = std::min(found.fOrder, added.fOrder);
    if (!isNew && isWorse) found = added;
    found.fOrder = order;
  }

  /// Subjects with the same reason share a gap.
  std::vector<TGap> Take() const {
    std::map<std::size_t, std::pair<std::string_view, TFound>> ordered;
    for (const auto& [subject, found] : fAll) ordered[found.fOrder] = {subject, found};
    std::vector<TGap> gaps;
    for (const auto& [order, each] : ordered) {
      const auto& [subject, found] = each;
      auto same = std::find_if(gaps.begin(), gaps.end(), [&found = found](const TGap& gap) {
        return gap.fKind == found.fKind && gap.fReason == *found.fReason;
      });
      if (same == gaps.end()) same = gaps.insert(gaps.end(), {found.fKind, *found.fReason, {}});
      same->fSubjects.emplace_back(subject);
    }
    return gaps;
  }

 private:
  struct TFound {
    std::size_t fOrder = 0;
    TGap::EKind fKind = TGap::kNotThere;
    const TReason* fReason = nullptr;
  };

  static int Severity(TGap::EKind kind) {
    switch (kind) {
      case TGap::kFailed:
        return 3;
      case TGap::kNeedsRoot:
        return 2;
      case TGap::kLeftOut:
        return 1;
      case TGap::kNotThere:
        break;
    }
    return 0;
  }

  std::map<std::string_view, TFound> fAll;
};

/// Its classes are not there to say so.
void AddPartLeftOut(const std::string& part, std::vector<TGap>& gaps) {
  const std::string reason = NDescribe::ReasonOfPart(part);
  auto gap = std::find_if(gaps.begin(), gaps.end(), [&reason](const TGap& each) {
    return each.fKind == TGap::kLeftOut && each.fReason == reason;
  });
  if (gap == gaps.end()) gap = gaps.insert(gaps.end(), {TGap::kLeftOut, reason, {}});
  std::vector<std::string>& subjects = gap->fSubjects;
  if (std::find(subjects.begin(), subjects.end(), part) == subjects.end()) {
    subjects.insert(subjects.begin(), part);
  }
}

}  // namespace

TGap::EKind KindOf(const TReason& reason) {
  if (reason.rfind("part ", 0) == 0 && Has(reason, " is left out")) return TGap::kLeftOut;
  if (!reason.IsError()) return TGap::kNotThere;
  const bool isRefused = Has(reason, "Permission denied") || Has(reason, "Operation not permitted");
  return isRefused ? TGap::kNeedsRoot : TGap::kFailed;
}

void ReadGaps(const ICIMNamespace& ns, const std::vector<std::string>& partsLeftOut,
              TSummary& summary) {
  const NDescribe::TMissingReasons reasons = NDescribe::ReadMissingReasons(ns);
  TWorst worst;
  for (const auto& [place, reason] : reasons) {
    const auto& [className, instance, property] = place;
    const TSubject subject = FindSubject(className, property);
    if (subject.fName.empty()) continue;
    const TGap::EKind kind = KindOf(reason);
    // What was not expected is no gap unless something stood in the way.
    const bool isError = kind == TGap::kNeedsRoot || kind == TGap::kFailed;
    if (!isError && !subject.fIsExpected) continue;
    if (kind == TGap::kNotThere && IsKnown(summary, subject.fName)) continue;
    worst.Add(subject, kind, reason);
  }
  summary.fGaps = worst.Take();
  for (const std::string& part : partsLeftOut) AddPartLeftOut(part, summary.fGaps);
}

}  // namespace NVORNQDX20::NSummary
