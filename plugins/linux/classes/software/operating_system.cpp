// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_OperatingSystem: distribution and kernel, memory, processes and load.
#include <qdxcore/schema_helper.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <iterator>
#include <sstream>

#include "classes/catalogue.h"
#include "sources/fields.h"
#include "sources/os_release.h"
#include "sources/processors/topology.h"

namespace NVORNQDX20 {
namespace {

using TAverages = std::array<TReading<float>, 3>;

/// LINUX in the value map of CIM_OperatingSystem.OSType.
constexpr std::uint16_t kLinux = 36;

/// The files that several rows need.
struct TSystem {
  TReading<std::map<std::string, std::string>> fRelease;
  TFields fMemory;
  TAverages fLoadAverages;
};

/// Empty if the system has no such file.
TReading<std::map<std::string, std::string>> ReadOSRelease(const TFiles& files) {
  const auto parse = [&files](const std::string& path) {
    const TText file = files.Read(path);
    return !file && files.IsAbsent(path) ? ParseOSRelease("") : file.map(ParseOSRelease);
  };
  return files.FirstOf({"/etc/os-release", "/usr/lib/os-release"}).and_then(parse);
}

/// Parses the first three numbers of "3.30 3.10 2.65 7/149 28102"; those after a bad one are
/// missing.
TAverages ReadLoadAverages(const TFiles& files) {
  const char* const path = "/proc/loadavg";
  const TText line = files.ReadLine(path);
  TAverages averages;
  averages.fill(line ? files.MissingFrom(path, "not three numbers in a row")
                     : Missing(line.GetReason()));
  std::istringstream words(line.ValueOr(""));
  std::string word;
  for (auto& average : averages) {
    const auto number = std::getline(words, word, ' ') ? ParseNumber<float>(word) : std::nullopt;
    if (!number || *number < 0 || *number >= 1e9F) break;
    average = *number;
  }
  return averages;
}

TSystem ReadSystem(const THost& host) {
  const std::string path = "/proc/meminfo";
  return {ReadOSRelease(host), TFields(path, host.Read(path), ':'), ReadLoadAverages(host)};
}

/// Reads the distribution's name for itself, else the kernel's.
auto Release(const char* variable, TText THost::*ofKernel) {
  return [=](const TSystem& system, const THost& host) -> TText {
    return system.fRelease.and_then([&](const auto& release) -> TText {
      const auto found = release.find(variable);
      if (found != release.end() && !found->second.empty()) return found->second;
      const TText& kernel = host.*ofKernel;
      if (kernel) return kernel;
      return Missing(std::string("no ") + variable + " in os-release, and " + kernel.GetReason());
    });
  };
}

/// Decided by the kernel's name alone: distributions with other kernels have the same os-release.
TReading<std::uint16_t> OSType(const THost& host) {
  return host.fKernelName.and_then([](const std::string& name) -> TReading<std::uint16_t> {
    if (name == "Linux") return kLinux;
    return Missing("the kernel is '" + name + "', not Linux");
  });
}

auto Memory(const char* field) {
  return [field](const TSystem& system) { return system.fMemory.GetNumber(field, " kB"); };
}

auto LoadAverage(std::size_t index) {
  return [index](const TSystem& system) { return system.fLoadAverages[index]; };
}

/// The latest date of a CIM datetime: the end of the year 9999.
constexpr std::uint64_t kLastSecond = 253'402'300'799;

TReading<TCIMDateTime> ToDateTime(std::uint64_t secondsSince1970) {
  const auto seconds = static_cast<std::time_t>(std::min(secondsSince1970, kLastSecond));
  std::tm utc{};
  if (secondsSince1970 <= kLastSecond && ::gmtime_r(&seconds, &utc) != nullptr) {
    try {
      return TCIMDateTime(
          static_cast<std::uint16_t>(utc.tm_year + 1900),
          static_cast<std::uint16_t>(utc.tm_mon + 1), static_cast<std::uint32_t>(utc.tm_mday),
          static_cast<std::uint16_t>(utc.tm_hour), static_cast<std::uint16_t>(utc.tm_min),
          static_cast<std::uint16_t>(utc.tm_sec), 0, 0);
    } catch (const TQDXException&) {
      // The local time zone may skip that moment; the reason below fits that case, too.
    }
  }
  return Missing("/proc/stat: btime is no valid date");
}

TReading<TCIMDateTime> ReadLastBootUpTime(const THost& host) {
  const std::string path = "/proc/stat";
  const TFields fields(path, host.Read(path, TFiles::kMaxTableSize), ' ');
  return fields.GetNumber("btime").and_then(ToDateTime);
}

/// Counts the folders in /proc whose names are numbers. The image of a disk has none.
TReading<std::uint32_t> CountProcesses(const THost& host) {
  const auto isNumber = [](const std::string& name) { return ParseNumber(name).has_value(); };
  return host.List("/proc").and_then(
      [&](const std::vector<std::string>& names) -> TReading<std::uint32_t> {
        const auto count = std::count_if(names.begin(), names.end(), isNumber);
        if (count == 0) return Missing("/proc: shows no processes");
        return static_cast<std::uint32_t>(count);
      });
}

/// The file "offline" is no use: it also lists the numbers up to the maximum of the kernel.
TText ReadOfflineProcessors(const THost& host) {
  const auto& lists = host.Shared<TCPULists>();
  return lists.fPresent.and_then([&lists](const TCPUs& present) {
    return lists.fOnline.map([&present](const TCPUs& online) {
      TCPUs offline;
      std::set_difference(present.begin(), present.end(), online.begin(), online.end(),
                          std::inserter(offline, offline.end()));
      return FormatCPUList(offline);
    });
  });
}

}  // namespace

TClass OperatingSystemClass() {
  const TUnit kilobytes{"byte * 2^10"};
  return THostTable<TSystem>{
      TCIMSchemaHelper::kOperatingSystemCreationClassName.c_str(),
      "The operating system that runs on the machine.",
      ReadSystem,
      {{"CSCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"CSName", "The name of the machine.", &THost::fName, kKey, ESecret::kHostName},
       {"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Name", "The distribution, else the kernel.", Release("NAME", &THost::fKernelName), kKey},
       {"Version", "The version of the distribution, else the release of the kernel.",
        Release("VERSION_ID", &THost::fKernelRelease)},
       {"KernelRelease", "The release of the kernel.", &THost::fKernelRelease},
       {"OSType", "The kind of system; 36 is LINUX.", OSType, TEnumeration{{kLinux, "LINUX"}}},
       {"TotalVisibleMemorySize", "The memory that the kernel has.", Memory("MemTotal"), kilobytes},
       {"FreePhysicalMemory", "The memory that nothing uses.", Memory("MemFree"), kilobytes, kGauge,
        kVolatile},
       {"AvailablePhysicalMemory",
        "The memory that programs can get without swapping: caches give way.",
        Memory("MemAvailable"), kilobytes, kGauge, kVolatile},
       {"SizeStoredInPagingFiles", "The swap space; 0 if there is none.", Memory("SwapTotal"),
        kilobytes},
       {"FreeSpaceInPagingFiles", "The swap space that is not in use.", Memory("SwapFree"),
        kilobytes, kGauge, kVolatile},
       {"NumberOfProcesses", "The processes that are there just now.", CountProcesses, kGauge,
        kVolatile},
       {"LastBootUpTime", "When the system was started.", ReadLastBootUpTime},
       {"LoadAverage1", "The processes that run or wait, over one minute.", LoadAverage(0), kGauge,
        kVolatile},
       {"LoadAverage5", "The same over five minutes.", LoadAverage(1), kGauge, kVolatile},
       {"LoadAverage15", "The same over fifteen minutes.", LoadAverage(2), kGauge, kVolatile},
       {"OfflineProcessors",
        "The numbers of the logical processors that are switched off; empty if none is.",
        ReadOfflineProcessors},
       {"KernelTaint", "What may make the kernel unreliable, bit by bit; 0 if nothing has.",
        FileNumber("/proc/sys/kernel/tainted")}}};
}

}  // namespace NVORNQDX20
