// SPDX-License-Identifier: Apache-2.0
#include "attention.h"

#include <string>
#include <utility>

#include "words.h"

namespace NVORNQDX20 {
namespace {

using namespace NSummary;

/// File systems become slow and programs fail before nothing is left.
constexpr int kAlmostFull = 95;

class TWarnings {
 public:
  void Add(const std::string& text, std::size_t count = 1) {
    fSection.fLines.push_back({{text}, count, TTableRow::kRemoved});
  }
  TSection Take() && { return std::move(fSection); }

 private:
  TSection fSection{"Attention", {}};
};

void AddDisks(const TSummary& summary, TWarnings& warnings) {
  for (const TDisks& disks : summary.fDisks) {
    if (disks.fState.empty()) continue;
    warnings.Add("disk " + FirstOf(disks.fNames, 3) + ": " + Listed({disks.fState}),
                 disks.fNames.size());
  }
  for (const TArray& array : summary.fArrays) {
    const auto missing = array.fMissingMembers.value_or(0);
    if (missing == 0) continue;
    warnings.Add("array " + Listed({array.fName}) + " lacks " + Counted(missing, "disk", "disks"));
  }
  for (const TFileSystem& system : summary.fFileSystems) {
    const int used = PercentUsed(system);
    if (system.fIsReadOnly || used < kAlmostFull) continue;
    warnings.Add("file system " + Listed({system.fMountPoint}) + ": " + std::to_string(used) +
                 " % used");
  }
}

void AddMemory(const TMemory& memory, TWarnings& warnings) {
  const auto uncorrected = memory.fUncorrectedErrors.value_or(0);
  const auto corrected = memory.fCorrectedErrors.value_or(0);
  if (uncorrected != 0) {
    warnings.Add("memory: " + Counted(uncorrected, "uncorrected error", "uncorrected errors"));
  }
  if (corrected != 0) {
    warnings.Add("memory: " + Counted(corrected, "corrected error", "corrected errors"));
  }
}

void AddSensors(const TSensors& sensors, TWarnings& warnings) {
  for (const TSensor& sensor : sensors.fOutOfRange) {
    const std::string reading = sensor.fReading ? ReadingOf(sensor, *sensor.fReading) : "";
    const std::string limit =
        sensor.fLimit ? "the limit is " + ReadingOf(sensor, *sensor.fLimit) : "";
    const std::string where = sensor.fChip.empty() ? "" : " of " + Listed({sensor.fChip});
    warnings.Add("sensor " + Listed({sensor.fName}) + where + ": " +
                 Listed({sensor.fState, reading, limit}));
  }
}

/// Returns a section with a line for each reason.
TSection Explained(const char* label, const std::vector<TGap>& gaps, TGap::EKind kind) {
  TSection section{label, {}};
  for (const TGap& gap : gaps) {
    if (gap.fKind != kind) continue;
    section.fLines.push_back({{Listed(gap.fSubjects) + ": " + FirstReason(gap.fReason)},
                              gap.fSubjects.size(),
                              TTableRow::kRemoved});
  }
  return section;
}

/// Returns "no DMI table" of "no DMI table: /sys/class/dmi/id does not exist", and what the
/// firmware says of "SMBIOS structure of type 1: placeholder text"; empty if the reason begins with
/// a file, which is just not there.
std::string Cause(const std::string& reason) {
  if (reason.empty() || reason.front() == '/') return "";
  const bool isOfStructure = reason.compare(0, 17, "SMBIOS structure ") == 0;
  const std::size_t colon = reason.find(": ");
  if (isOfStructure && colon != std::string::npos) return reason.substr(colon + 2);
  return reason.substr(0, reason.find(": /"));
}

/// Returns a section with the subjects, as a text of several lines. They are followed by the cause
/// in brackets if `withCauses`.
TSection Subjects(const char* label, const std::vector<TGap>& gaps, TGap::EKind kind,
                  TTableRow::EStyle style, bool withCauses) {
  constexpr std::size_t kLineWidth = 66;  // on 80 columns, after the label
  TSection section{label, {}};
  std::string line;
  const auto endLine = [&section, &line, style] {
    if (!line.empty()) section.fLines.push_back({{line}, 1, style});
    line.clear();
  };
  for (const TGap& gap : gaps) {
    if (gap.fKind != kind) continue;
    const std::string cause = withCauses ? Shortened(Cause(gap.fReason), 45) : "";
    for (std::size_t i = 0; i < gap.fSubjects.size(); ++i) {
      const bool isLast = i + 1 == gap.fSubjects.size();
      const std::string item =
          gap.fSubjects[i] + (isLast && !cause.empty() ? " (" + cause + ")" : "");
      if (!line.empty()) line += ",";
      if (WidthOf(line) + WidthOf(item) + 2 > kLineWidth) endLine();
      line += (line.empty() ? "" : " ") + item;
    }
  }
  endLine();
  return section;
}

}  // namespace

TSection AttentionSection(const TSummary& summary) {
  TWarnings warnings;
  AddDisks(summary, warnings);
  AddMemory(summary.fMemory, warnings);
  AddSensors(summary.fSensors, warnings);
  for (const TPowerSupplies& supplies : summary.fPowerSupplies) {
    if (supplies.fFault.empty() || supplies.fFault == "not present") continue;
    warnings.Add("power supply " + Listed({supplies.fModel, supplies.fFault}, ": "),
                 supplies.fCount);
  }
  return std::move(warnings).Take();
}

std::vector<TSection> GapSections(const std::vector<TGap>& gaps, bool mayAskAsRoot) {
  return {// Root sees the reasons: what refuses it is a container or the hardware.
          mayAskAsRoot ? Subjects("As root", gaps, TGap::kNeedsRoot, TTableRow::kHeading, false)
                       : Explained("Refused", gaps, TGap::kNeedsRoot),
          Explained("Not read", gaps, TGap::kFailed),
          Subjects("Left out", gaps, TGap::kLeftOut, TTableRow::kDim, false),
          Subjects("Not there", gaps, TGap::kNotThere, TTableRow::kDim, true)};
}

}  // namespace NVORNQDX20
