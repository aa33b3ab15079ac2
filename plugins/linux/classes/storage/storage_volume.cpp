// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_StorageVolume: arrays of disks of the driver md.
#include <algorithm>
#include <map>
#include <string_view>

#include <boost/algorithm/string/predicate.hpp>

#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

struct TArray : TExtent {
  TReading<std::map<std::string, TText>> fStates;  ///< By the kernel's name of the member.
  TReading<std::uint32_t> fMemberCount;
  TReading<std::uint32_t> fDegraded;
};

/// While an array is reshaped, the former number follows: "11 (10)".
TReading<std::uint32_t> ReadMemberCount(const TFiles& array) {
  const TText count = array.ReadLine("md/raid_disks").map([](const std::string& text) {
    return text.substr(0, text.find(' '));
  });
  return ToNumber<std::uint32_t>(count, array.PathOf("md/raid_disks"));
}

TReading<std::map<std::string, TText>> ReadStates(const TFiles& array) {
  return array.List("md").map([&array](const std::vector<std::string>& files) {
    constexpr std::string_view kPrefix = "dev-";
    std::map<std::string, TText> states;
    for (const std::string& file : files) {
      if (!boost::algorithm::starts_with(file, kPrefix)) continue;
      states.emplace(file.substr(kPrefix.size()), array.ReadLine("md/" + file + "/state"));
    }
    return states;
  });
}

TInstances<TArray> ListArrays(const THost& host) {
  const TInstances<TExtent> extents = ExtentsOf(EBlockKind::kRAID)(host);
  TInstances<TArray> arrays({}, extents.fReason);
  arrays.fAll.reserve(extents.fAll.size());
  for (const TExtent& extent : extents.fAll) {
    arrays.fAll.push_back({extent, ReadStates(extent), ReadMemberCount(extent),
                           extent.ReadNumber<std::uint32_t>("md/degraded")});
  }
  return arrays;
}

using TNames = std::vector<std::string>;

TReading<TNames> Members(const TArray& array) {
  return array.fStates.map([](const std::map<std::string, TText>& states) {
    TNames members;
    members.reserve(states.size());
    for (const auto& member : states) members.push_back(member.first);
    return members;
  });
}

/// Returns the reader of the members whose state has the word.
auto MembersThatAre(const char* word) {
  return [word](const TArray& array) {
    using TStates = std::map<std::string, TText>;
    return array.fStates.and_then([word](const TStates& states) -> TReading<TNames> {
      TNames members;
      for (const auto& [name, state] : states) {
        if (!state) return Missing(state.GetReason());
        if (state->find(word) != std::string::npos) members.push_back(name);
      }
      return members;
    });
  };
}

/// How many members can fail as long as all are there. Of RAID 10 it is one for sure.
TReading<std::uint32_t> RedundancyOf(const TArray& array) {
  return array.fLevel.and_then([&array](const std::string& level) -> TReading<std::uint32_t> {
    if (level == "raid1") {
      return array.fMemberCount.map(
          [](std::uint32_t count) { return count - std::min(count, 1U); });
    }
    if (level == "raid4" || level == "raid5" || level == "raid10") return 1U;
    if (level == "raid6") return 2U;
    if (level == "raid0" || level == "linear") return 0U;
    return Missing("level " + level + " tells nothing about redundancy");
  });
}

/// Levels without redundancy have no file that counts missing disks.
TReading<std::uint16_t> PackageRedundancyOf(const TArray& array) {
  return RedundancyOf(array).and_then([&array](std::uint32_t redundancy) {
    if (redundancy == 0) return TReading<std::uint16_t>(std::uint16_t{0});
    return array.fDegraded.map([redundancy](std::uint32_t degraded) {
      return static_cast<std::uint16_t>(redundancy - std::min(redundancy, degraded));
    });
  });
}

/// Parses "1569888 / 2093056"; "none" if nothing is being synchronised.
TReading<std::uint8_t> ReadSyncProgress(const TFiles& array) {
  const std::string path = "md/sync_completed";
  return array.ReadLine(path).and_then([&](const std::string& text) -> TReading<std::uint8_t> {
    const std::size_t slash = text.find(" / ");
    if (slash == std::string::npos) return array.MissingFrom(path, text);
    const auto total = ParseNumber(text.substr(slash + 3));
    const TNumber done = ToNumber(TText(text.substr(0, slash)), array.PathOf(path));
    return Scaled<std::uint8_t>(done, 100, total.value_or(0));
  });
}

}  // namespace

TClass StorageVolumeClass() {
  return THostTable<TArray>{
      "VORNSG_StorageVolume",
      "An array of disks that the kernel's driver md makes (software RAID).",
      ListArrays,
      {{"RAIDLevel", "As in \"raid1\"; \"container\" if it only holds other arrays.",
        &TBlockDevice::fLevel},
       {"ArrayState", "As in \"clean\", \"active\" or \"inactive\".", FileLine("md/array_state"),
        kVolatile},
       {"NumberOfMembers", "The disks that it has if it is complete.", &TArray::fMemberCount},
       {"Degraded", "How many of these disks are missing.", &TArray::fDegraded},
       {"Members", "The block devices that it has now.", Members},
       {"FailedMembers", "Those that the kernel no longer uses.", MembersThatAre("faulty")},
       {"SpareMembers", "Those that wait for another to fail.", MembersThatAre("spare")},
       {"PackageRedundancy", "How many disks can still fail without a loss of data.",
        PackageRedundancyOf},
       {"NoSinglePointOfFailure", "Whether one disk can still fail without a loss of data.",
        [](const TArray& array) {
          return PackageRedundancyOf(array).map([](unsigned count) { return count > 0; });
        }},
       {"SyncAction", "As in \"idle\", \"resync\", \"recover\", \"check\" or \"reshape\".",
        FileLine("md/sync_action"), kVolatile},
       {"SyncProgress", "How much of that is done.", ReadSyncProgress, TUnit{"percent"}, kGauge,
        kVolatile},
       {"MismatchCount", "The sectors that differed between members at the last check.",
        FileNumber("md/mismatch_cnt")},
       {"ChunkSize", "The size of the pieces in which it is spread over its disks.",
        FileNumber("md/chunk_size"), TUnit{"byte"}},
       {"MetadataVersion", "The format of the superblocks of its members.",
        FileLine("md/metadata_version")},
       {"UUID", "The UUID of the array.", FileLine("md/uuid"), ESecret::kSerial}}}
      .DerivedFrom(StorageExtentTable());
}

}  // namespace NVORNQDX20
