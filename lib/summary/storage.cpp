// SPDX-License-Identifier: Apache-2.0
// Disks, arrays and file systems.
#include <qdxmodel/natural_order.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "facts.h"

namespace NVORNQDX20::NSummary {
namespace {

std::string LastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string BlockDeviceName(const TFacts& device) {
  const std::string name = device.Text("Name");
  return name.empty() ? LastPart(device.Text("DeviceID")) : name;
}

TDisks::EMedium MediumOf(const TFacts& disk) {
  constexpr std::uint64_t kHardDiskType = 2, kSolidStateType = 3;
  const TNumber type = disk.Number("DiskType");
  if (type == kHardDiskType) return TDisks::kHardDisk;
  return type == kSolidStateType ? TDisks::kSolidState : TDisks::kUnknown;
}

std::string DiskFaultOf(const std::string& state) {
  return state == "running" || state == "live" ? "" : state;
}

/// Finds the drives that a block device is made of.
class TDrives {
 public:
  void AddDrive(const std::string& device, const std::string& name) { fNames[device] = name; }
  void AddBase(const std::string& device, const std::string& base) { fBases[device].insert(base); }

  std::vector<std::string> Below(const std::string& device) {
    std::set<std::string> seen = {device};
    std::vector<std::string> rest = {device};
    std::vector<std::string> drives;
    while (!rest.empty() && fStepsLeft-- > 0) {
      const std::string next = std::move(rest.back());
      rest.pop_back();
      const auto drive = fNames.find(next);
      if (drive != fNames.end()) drives.push_back(drive->second);
      const auto bases = fBases.find(next);
      if (drive != fNames.end() || bases == fBases.end()) continue;
      std::copy_if(bases->second.begin(), bases->second.end(), std::back_inserter(rest),
                   [&seen](const std::string& base) { return seen.insert(base).second; });
    }
    std::stable_sort(drives.begin(), drives.end(), NModel::ComesBefore);
    return drives;
  }

 private:
  std::map<std::string, std::string> fNames;
  std::map<std::string, std::set<std::string>> fBases;
  // For all calls together: a made-up document may have a file system on each part of a long chain.
  std::ptrdiff_t fStepsLeft = 1'000'000;
};

void ReadDisks(const ICIMNamespace& ns, TSummary& summary, TDrives& drives) {
  TGroups<TDisks, TNumber, TDisks::EMedium, std::string, std::string, std::string> groups(
      summary.fDisks);
  ForEach(ns, "VORNSG_DiskDrive", [&](const TFacts& facts) {
    const std::string name = BlockDeviceName(facts);
    drives.AddDrive(facts.Text("DeviceID"), name);
    TDisks disk;
    disk.fBytes = facts.Number("Size");
    if (!disk.fBytes) disk.fBytes = Times(facts.Number("MaxMediaSize"), 1000);
    if (disk.fBytes == 0) disk.fBytes.reset();
    disk.fMedium = MediumOf(facts);
    disk.fTransport = facts.Text("Transport");
    disk.fModel = facts.Text("ElementName");
    if (disk.fModel.empty()) disk.fModel = facts.Text("Model");
    disk.fState = DiskFaultOf(facts.Text("State"));
    TDisks& group =
        groups.GroupOf(disk, disk.fBytes, disk.fMedium, disk.fTransport, disk.fModel, disk.fState);
    group.fNames.push_back(name);
  });
  for (TDisks& disks : summary.fDisks) {
    std::stable_sort(disks.fNames.begin(), disks.fNames.end(), NModel::ComesBefore);
  }
  std::stable_sort(summary.fDisks.begin(), summary.fDisks.end(),
                   [](const TDisks& left, const TDisks& right) {
                     // What is not well comes first, then what is large.
                     return std::tuple(left.fState.empty(), right.fBytes) <
                            std::tuple(right.fState.empty(), left.fBytes);
                   });
}

void ReadArrays(const ICIMNamespace& ns, std::vector<TArray>& arrays) {
  ForEach(ns, "VORNSG_StorageVolume", [&arrays](const TFacts& facts) {
    TArray array;
    array.fName = BlockDeviceName(facts);
    array.fLevel = facts.Text("RAIDLevel");
    array.fState = facts.Text("ArrayState");
    array.fBytes = facts.Number("Size");
    array.fMissingMembers = facts.Number("Degraded");
    array.fSyncAction = facts.Text("SyncAction");
    if (array.fSyncAction == "idle") array.fSyncAction.clear();
    array.fSyncPercent = facts.Number("SyncProgress");
    arrays.push_back(std::move(array));
  });
  std::stable_sort(arrays.begin(), arrays.end(), [](const TArray& left, const TArray& right) {
    const std::uint64_t missing = left.fMissingMembers.value_or(0);
    const std::uint64_t others = right.fMissingMembers.value_or(0);
    return missing == others ? NModel::ComesBefore(left.fName, right.fName) : missing > others;
  });
}

bool BeginsWith(const std::string& text, const char* start) { return text.rfind(start, 0) == 0; }

/// Layers of containers and what is in memory only are no places for files.
bool KeepsFiles(const TFacts& facts, const TFileSystem& system) {
  if (system.fMountPoint == "/") return true;
  for (const char* const layer : {"overlay", "aufs"}) {
    if (system.fType == layer) return false;
  }
  constexpr std::uint64_t kPersistent = 2, kExternal = 4;
  const std::uint64_t persistence = facts.Number("PersistenceType").value_or(0);
  return persistence == kPersistent || persistence == kExternal ||
         BeginsWith(system.fDevice, "/dev/");
}

/// The root, what can be written, and the fullest first; then by name.
bool SystemComesBefore(const TFileSystem& left, const TFileSystem& right) {
  const auto key = [](const TFileSystem& system) {
    return std::tuple(system.fMountPoint != "/", system.fIsReadOnly,
                      -system.UsedPart().value_or(-1));
  };
  const auto one = key(left);
  const auto other = key(right);
  return one == other ? NModel::ComesBefore(left.fMountPoint, right.fMountPoint) : one < other;
}

void ReadFileSystems(const ICIMNamespace& ns, std::vector<TFileSystem>& systems, TDrives& drives) {
  std::map<std::string, std::size_t> known;  // by block device
  std::vector<std::string> sources;
  ForEach(ns, "VORNSG_FileSystem", [&](const TFacts& facts) {
    TFileSystem system;
    system.fMountPoint = facts.Text("Name");
    system.fType = facts.Text("FileSystemType");
    system.fDevice = facts.Text("Device");
    if (!KeepsFiles(facts, system)) return;
    system.fBytes = facts.Number("FileSystemSize");
    if (system.fBytes == 0) system.fBytes.reset();
    system.fUsedBytes = facts.Number("UsedSpace");
    system.fAvailableBytes = facts.Number("AvailableSpace");
    system.fIsReadOnly = facts.Flag("ReadOnly").value_or(false);
    std::string source = facts.Text("SourceDevice");
    if (source.empty()) source = system.fDevice;
    if (BeginsWith(source, "/dev/")) {
      const auto [same, isNew] = known.emplace(source, systems.size());
      if (!isNew) {
        TFileSystem& other = systems[same->second];
        system.fOtherMounts = other.fOtherMounts + 1;
        other.fOtherMounts = system.fOtherMounts;
        if (system.fMountPoint.size() < other.fMountPoint.size()) other = std::move(system);
        return;
      }
    }
    systems.push_back(std::move(system));
    sources.push_back(std::move(source));
  });
  for (std::size_t i = 0; i < systems.size(); ++i) systems[i].fDisks = drives.Below(sources[i]);
  std::stable_sort(systems.begin(), systems.end(), SystemComesBefore);
}

}  // namespace

std::optional<double> TFileSystem::UsedPart() const {
  if (!fBytes || *fBytes == 0 || !fAvailableBytes) return std::nullopt;
  const double bytes = static_cast<double>(*fBytes);
  const double available = std::min(static_cast<double>(*fAvailableBytes), bytes);
  if (!fUsedBytes) return 1 - available / bytes;
  const double used = std::min(static_cast<double>(*fUsedBytes), bytes);
  return used + available == 0 ? 1 : used / (used + available);
}

void ReadStorage(const ICIMNamespace& ns, TSummary& summary) {
  TDrives drives;
  ReadDisks(ns, summary, drives);
  ReadArrays(ns, summary.fArrays);
  ForEach(ns, "VORNSG_BasedOn", [&drives](const TFacts& facts) {
    drives.AddBase(facts.DeviceIn("Dependent"), facts.DeviceIn("Antecedent"));
  });
  ReadFileSystems(ns, summary.fFileSystems, drives);
}

}  // namespace NVORNQDX20::NSummary
