// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_DiskDrive: drives with a disk, or with memory in the place of one.
#include <algorithm>
#include <string_view>

#include "media_access_device.h"

namespace NVORNQDX20 {
namespace {

struct TDisk : TDrive {
  TReading<TDiskBuild> fBuild;
};

/// Reads it from ATA's page, else from that of SCSI.
TReading<TDiskBuild> ReadBuild(const TDrive& drive) {
  TReading<TDiskBuild> ofATA =
      drive.fATA.map([](const TATAIdentity& identity) { return identity.fBuild; });
  if (ofATA.GetReason().IsError() || (ofATA && ofATA->fRotationRate != 0)) return ofATA;
  const TText page = drive.Read("device/vpd_pgb1");
  return page.GetReason().IsError() ? page.map(ParseCharacteristicsPage)
                                    : ParseCharacteristicsPage(page.ValueOr(""));
}

TInstances<TDisk> ListDisks(const THost& host) {
  TInstances<TDrive> drives = DrivesFor(EMedia::kDisk)(host);
  TInstances<TDisk> disks;
  disks.fReason = std::move(drives.fReason);
  disks.fAll.reserve(drives.fAll.size());
  for (TDrive& drive : drives.fAll) {
    TReading<TDiskBuild> build = ReadBuild(drive);
    disks.fAll.push_back({std::move(drive), std::move(build)});
  }
  return disks;
}

constexpr std::uint16_t kHardDisk = 2, kSolidState = 3;

/// A hypervisor's disk says that it turns if nobody configures it otherwise, so its kind is open.
TReading<std::uint16_t> DiskTypeOf(const TDisk& disk) {
  const TText transport = ReadTransport(disk);
  for (const char* virtualBus : {"virtio", "xen"}) {
    if (transport && *transport == virtualBus) return Missing("a virtual disk");
  }
  return disk.fRotational.map([](bool turns) { return turns ? kHardDisk : kSolidState; });
}

TReading<std::uint32_t> ReadRPM(const TDisk& disk) {
  return disk.fBuild.and_then([](const TDiskBuild& build) -> TReading<std::uint32_t> {
    const unsigned rate = build.fRotationRate;
    if (rate == 1) return Missing("does not turn");
    // 0x0401 is the lowest speed that a disk may report.
    if (rate < 0x0401 || rate == 0xffff) return Missing("the disk does not tell");
    return rate;
  });
}

TReading<std::uint16_t> FormFactorOf(const TDisk& disk) {
  constexpr unsigned kFirst = 1, kLast = 4;
  return disk.fBuild.and_then([](const TDiskBuild& build) -> TReading<std::uint16_t> {
    const unsigned form = build.fFormFactor;
    if (form < kFirst || form > kLast) return Missing("the disk does not tell");
    return static_cast<std::uint16_t>(form + 2);
  });
}

TReading<std::uint16_t> ReadInterconnectType(const TDisk& disk) {
  constexpr std::pair<std::string_view, std::uint16_t> kTypes[] = {
      {"ata", 3}, {"sata", 4}, {"sas", 5}, {"fc", 6}};
  constexpr std::uint16_t kOther = 1;
  return ReadTransport(disk).map([&kTypes](const std::string& transport) {
    for (const auto& [name, type] : kTypes) {
      if (transport == name) return type;
    }
    return kOther;
  });
}

TNumber InterconnectSpeedOf(const TDisk& disk) {
  if (disk.fATA.GetReason().IsError()) return Missing(disk.fATA.GetReason());
  if (!disk.fATA || disk.fATA->fLinkSpeed == 0) return Missing("the disk does not tell");
  return disk.fATA->fLinkSpeed;
}

/// The one in use is in brackets: "none [mq-deadline] kyber".
TText ReadScheduler(const TFiles& disk) {
  return disk.ReadLine("queue/scheduler").map([](const std::string& line) {
    const std::size_t begin = line.find('[');
    const std::size_t end = line.find(']', begin + 1);
    const bool hasChoice = begin != std::string::npos && end != std::string::npos;
    return hasChoice ? line.substr(begin + 1, end - begin - 1) : line;
  });
}

/// An eMMC and a UFS disk estimate how much of their life is used, in tenths: "0x01 0x02" for two
/// kinds of memory, and 0x0b for what exceeds it.
TReading<std::uint8_t> ReadLifeTimeUsed(const TDisk& disk) {
  const char* const path = "device/life_time";
  const bool isNVMe = disk.fKernelName.compare(0, 4, "nvme") == 0;
  if (isNVMe && disk.IsAbsent(path)) {
    return Missing("no file has it: the health log of an NVMe disk (page 2) is read by ioctl only");
  }
  return disk.ReadLine(path).and_then([&](const std::string& line) -> TReading<std::uint8_t> {
    const std::size_t blank = line.find(' ');
    const auto first = ParseNumber<std::uint8_t>(line.substr(0, blank));
    const auto second =
        blank == std::string::npos ? first : ParseNumber<std::uint8_t>(line.substr(blank + 1));
    const unsigned tenths = std::max(first.value_or(0), second.value_or(0));
    if (tenths == 0 || tenths > 0x0b) return disk.MissingFrom(path, "not told");
    return static_cast<std::uint8_t>(std::min(tenths * 10, 100U));
  });
}

/// The kernel prints the number of errors as "0x1f".
TNumber ReadErrorCount(const TFiles& disk) { return disk.ReadNumber("device/ioerr_cnt"); }

}  // namespace

TClass DiskDriveClass() {
  return THostTable<TDisk>{
      "VORNSG_DiskDrive",
      "A disk, or another drive of blocks.",
      ListDisks,
      {{"DiskType", "Whether it has disks or memory.", DiskTypeOf,
        TEnumeration{{0, "Unknown"},
                     {1, "Other"},
                     {2, "Hard Disk Drive"},
                     {3, "Solid State Drive"},
                     {4, "Hybrid"}}},
       {"RPM", "How fast it turns, as the disk says.", ReadRPM, TUnit{"revolution / minute"}},
       {"FormFactor", "How wide the disk is, as it says.", FormFactorOf,
        TEnumeration{{0, "Unknown"},
                     {1, "Other"},
                     {2, "Not Reported"},
                     {3, "5.25 inch"},
                     {4, "3.5 inch"},
                     {5, "2.5 inch"},
                     {6, "1.8 inch"}}},
       {"InterconnectType", "How it is attached.", ReadInterconnectType,
        TEnumeration{{0, "Unknown"},
                     {1, "Other"},
                     {2, "Not Applicable"},
                     {3, "ATA"},
                     {4, "SATA"},
                     {5, "SAS"},
                     {6, "FC"},
                     {7, "SOP"}}},
       {"InterconnectSpeed", "The speed of its link, where that is SATA.", InterconnectSpeedOf,
        TUnit{"bit / second"}},
       {"Size", "The size of the disk, or of the medium that is in it, exactly.",
        &TBlockDevice::fSize, TUnit{"byte"}},
       {"PhysicalBlockSize", "The smallest block that is written without reading others first.",
        FileNumber("queue/physical_block_size"), TUnit{"byte"}},
       {"Scheduler", "What puts its requests in order.", ReadScheduler},
       {"WriteCache", "\"write back\" if a cache holds what is written, else \"write through\".",
        FileLine("queue/write_cache")},
       {"LifeTimeUsed",
        "How much of its life the memory has used, as the disk estimates, rounded up to tenths.",
        ReadLifeTimeUsed, TUnit{"percent"}, kGauge, kVolatile},
       {"ErrorCount", "Requests that ended with an error since the disk was found.", ReadErrorCount,
        kCounter, kVolatile},
       {"PartitionTableType", "As in \"gpt\" or \"dos\".",
        [](const TDisk& disk) { return disk.fUdev.Get("ID_PART_TABLE_TYPE"); }},
       {"NamespaceID", "The number of an NVMe namespace in its subsystem.",
        FileNumber<std::uint32_t>("nsid")}}}
      .DerivedFrom(MediaAccessDeviceTable());
}

}  // namespace NVORNQDX20
