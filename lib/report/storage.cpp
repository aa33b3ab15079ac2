// SPDX-License-Identifier: Apache-2.0
// Disks with their partitions, and file systems with their use, as bars.
#include <qdxdisplay/quantity.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "overview.h"

namespace NVORNQDX20::NReport {
namespace {

using namespace NSummary;

std::string Size(const TNumber& bytes) {
  return bytes ? FormatQuantity(static_cast<double>(*bytes), "byte") : "";
}

/// Partitions by the path of the disk that they are on.
std::multimap<std::string, TRecord> ReadPartitions(const TRecords& records) {
  std::map<std::string, TRecord> partitions;
  for (const TRecord& partition : records.Of("DiskPartition")) {
    partitions.emplace(partition.GetPath(), partition);
  }
  std::map<std::string, std::string> disks;  // by the medium
  for (const TRecord& tie : records.Of("MediaPresent")) {
    disks.emplace(tie.GetText("Dependent"), tie.GetText("Antecedent"));
  }
  std::multimap<std::string, TRecord> byDisk;
  for (const TRecord& tie : records.Of("BasedOn")) {
    const auto partition = partitions.find(tie.GetText("Dependent"));
    const auto disk = disks.find(tie.GetText("Antecedent"));
    if (partition != partitions.end() && disk != disks.end()) {
      byDisk.emplace(disk->second, partition->second);
    }
  }
  return byDisk;
}

double OffsetOf(const TRecord& partition) {
  return partition.GetNumber("StartingOffset").value_or(0);
}

/// The partitions of a disk where they are, with what is between them; empty without partitions.
THTML DiskPicture(const std::string& name, const TRecord& disk,
                  const std::multimap<std::string, TRecord>& all) {
  const double size = disk.GetNumber("Size").value_or(0);
  std::vector<TRecord> partitions;
  const auto range = all.equal_range(disk.GetPath());
  for (auto each = range.first; each != range.second; ++each) partitions.push_back(each->second);
  std::sort(partitions.begin(), partitions.end(), [](const TRecord& left, const TRecord& right) {
    return OffsetOf(left) < OffsetOf(right);
  });
  std::vector<TPart> parts;
  std::string label;
  double end = 0;
  for (const TRecord& partition : partitions) {
    const double start = OffsetOf(partition);
    const double length = partition.GetNumber("Size").value_or(0);
    // An extended partition has the logical ones in it; the first one stands for what it covers.
    if (start < end || start + length > size) continue;
    if (start > end) parts.push_back({start - end, "free", "no partition"});
    const std::string text = partition.GetText("Name") + " " + FormatQuantity(length, "byte") +
                             (partition.GetText("ContentType").empty() ? "" : " ") +
                             partition.GetText("ContentType");
    parts.push_back({length, parts.size() % 4 < 2 ? "full" : "other", text});
    label += (label.empty() ? "" : ", ") + text;
    end = start + length;
  }
  if (label.empty()) return "";
  if (end < size) parts.push_back({size - end, "free", "no partition"});
  return Element("div", "row",
                 TextElement("span", "name", "Partitions of " + name) + Strip(parts, label) +
                     TextElement("span", "quiet", label)) +
         "\n";
}

using TDrives = std::map<std::string, TRecord>;

THTML Describe(const TDisks& disks, const TDrives& drives) {
  constexpr std::size_t kMostNames = 12;
  THTML names;
  for (std::size_t i = 0; i < disks.fNames.size() && i < kMostNames; ++i) {
    const auto drive = drives.find(disks.fNames[i]);
    const auto number =
        drive == drives.end() ? std::nullopt : std::make_optional(drive->second.GetNumber());
    names += (i == 0 ? "" : ", ") + Link(number, disks.fNames[i]);
  }
  std::string text;
  if (disks.fNames.size() > kMostNames) {
    text += " and " + std::to_string(disks.fNames.size() - kMostNames) + " more";
  }
  text += ":";
  if (disks.fNames.size() > 1) text += " " + std::to_string(disks.fNames.size()) + " \u00d7";
  const std::string about = Joined({Size(disks.fBytes), disks.fTransport, disks.fModel});
  text += " " + (about.empty() ? "disk" : about);
  if (disks.fMedium == TDisks::kHardDisk) text += ", hard disk";
  if (disks.fMedium == TDisks::kSolidState) text += ", solid state";
  return Element("p", "",
                 names + Link({}, text) + " " + TextElement("strong", "bad", disks.fState));
}

THTML Disks(const TSummary& summary, const TRecords& records) {
  constexpr std::size_t kMostPictures = 24;
  constexpr std::size_t kMostGroups = 40;
  const auto partitions = ReadPartitions(records);
  TDrives drives;
  for (const TRecord& drive : records.Of("DiskDrive")) drives.emplace(drive.GetText("Name"), drive);
  THTML html;
  std::size_t groups = 0;
  for (const TDisks& disks : summary.fDisks) {
    if (++groups > kMostGroups) {
      return html + TextElement("p", "",
                                "and " + std::to_string(summary.fDisks.size() - kMostGroups) +
                                    " groups of disks more");
    }
    html += Describe(disks, drives);
    if (drives.size() > kMostPictures) continue;
    for (const std::string& name : disks.fNames) {
      const auto drive = drives.find(name);
      if (drive != drives.end()) html += DiskPicture(name, drive->second, partitions);
    }
  }
  return html;
}

THTML Arrays(const TSummary& summary) {
  THTML html;
  for (const TArray& array : summary.fArrays) {
    const std::string percent =
        array.fSyncPercent ? std::to_string(*array.fSyncPercent) + " %" : "";
    const std::string text =
        Joined({Joined({array.fLevel, Size(array.fBytes)}),
                array.fState.empty() ? "state unknown" : array.fState,
                array.fSyncAction.empty() ? "" : Joined({array.fSyncAction, percent})},
               ", ");
    const auto missing = array.fMissingMembers.value_or(0);
    const std::string fault = missing == 0   ? ""
                              : missing == 1 ? "lacks 1 disk"
                                             : "lacks " + std::to_string(missing) + " disks";
    html += Element(
        "p", "", Link({}, array.fName + ": " + text) + " " + TextElement("strong", "bad", fault));
  }
  return html;
}

THTML FileSystemPicture(const TFileSystem& fileSystem, const TRecords& records) {
  const auto record = records.Find({"FileSystem"}, "Name", fileSystem.fMountPoint);
  std::string about = fileSystem.fType + " on " + fileSystem.fDevice;
  if (fileSystem.fIsReadOnly) about += ", read-only";
  const auto number = record ? std::make_optional(record->GetNumber()) : std::nullopt;
  THTML html = Element("span", "name", Link(number, fileSystem.fMountPoint));
  if (const auto part = fileSystem.UsedPart()) {
    const double used = *part;
    const std::string text = std::to_string(std::lround(used * 100)) + " % used, " +
                             Size(fileSystem.fAvailableBytes) + " free of " +
                             Size(fileSystem.fBytes);
    html += Gauge(used, fileSystem.fMountPoint + ": " + text);
    about = text + "; " + about;
  }
  return Element("div", "row", html + TextElement("span", "quiet", about)) + "\n";
}

}  // namespace

THTML Storage(const TSummary& summary, const TRecords& records) {
  constexpr std::size_t kMostFileSystems = 40;
  THTML fileSystems;
  const std::size_t count = summary.fFileSystems.size();
  for (std::size_t i = 0; i < count && i < kMostFileSystems; ++i) {
    fileSystems += FileSystemPicture(summary.fFileSystems[i], records);
  }
  if (count > kMostFileSystems) {
    fileSystems +=
        TextElement("p", "", "and " + std::to_string(count - kMostFileSystems) + " more");
  }
  const THTML heading = fileSystems.empty() ? "" : TextElement("h3", "", "File systems");
  return Disks(summary, records) + Arrays(summary) + heading + fileSystems;
}

}  // namespace NVORNQDX20::NReport
