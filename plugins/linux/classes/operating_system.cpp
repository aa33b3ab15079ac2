// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_OperatingSystem: distribution and kernel, memory, processes and load.
#include <qdxcore/schema_helper.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <iterator>

#include "catalogue.h"
#include "machine/fields.h"
#include "machine/numbers.h"
#include "machine/os_release.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;
using TAverages = std::array<TReadingOf<float>, 3>;

/// LINUX in the value map of CIM_OperatingSystem.OSType.
constexpr std::uint16_t kLinux = 36;

std::map<std::string, std::string> ReadOSRelease(const THostFiles& files) {
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    const TReading file = files.Read(path);
    if (file) return ParseOSRelease(*file.fValue);
  }
  return {};
}

/// The distribution's name for itself, else the kernel's.
TReading Choose(const std::map<std::string, std::string>& release, const char* variable,
                const TReading& ofKernel) {
  const auto found = release.find(variable);
  if (found != release.end() && !found->second.empty()) return TReading::Of(found->second);
  if (ofKernel) return ofKernel;
  return TReading::Missing(std::string("no ") + variable + " in os-release, and " +
                           ofKernel.fReason);
}

/// Decided by the kernel's name alone: distributions with other kernels have the same os-release.
TPropertyValue OSType(const TReading& kernelName) {
  if (!kernelName) return {"OSType", kernelName};
  if (*kernelName.fValue == "Linux") return {"OSType", TCIMValue(kLinux)};
  return {"OSType", TReading::Missing("the kernel is '" + *kernelName.fValue + "', not Linux")};
}

/// The latest date of a CIM datetime: the end of the year 9999.
constexpr std::uint64_t kLastSecond = 253'402'300'799;

TReadingOf<TCIMDateTime> ToDateTime(std::uint64_t secondsSince1970) {
  const auto seconds = static_cast<std::time_t>(std::min(secondsSince1970, kLastSecond));
  std::tm utc{};
  if (secondsSince1970 <= kLastSecond && ::gmtime_r(&seconds, &utc) != nullptr) {
    try {
      return TReadingOf<TCIMDateTime>::Of(
          {static_cast<std::uint16_t>(utc.tm_year + 1900),
           static_cast<std::uint16_t>(utc.tm_mon + 1), static_cast<std::uint32_t>(utc.tm_mday),
           static_cast<std::uint16_t>(utc.tm_hour), static_cast<std::uint16_t>(utc.tm_min),
           static_cast<std::uint16_t>(utc.tm_sec), 0, 0});
    } catch (const TQDXException&) {
      // The local time zone may skip that moment; the reason below fits that case, too.
    }
  }
  return TReadingOf<TCIMDateTime>::Missing("/proc/stat: btime is no valid date");
}

TReadingOf<TCIMDateTime> ReadLastBootUpTime(const THostFiles& files) {
  const std::string path = "/proc/stat";
  const TFields fields(path, files.Read(path, THostFiles::kMaxTableSize), ' ');
  const TNumber time = fields.GetNumber("btime");
  return time ? ToDateTime(*time.fValue) : TReadingOf<TCIMDateTime>::Missing(time.fReason);
}

/// Counts the folders in /proc whose names are numbers. The image of a disk has none.
TReadingOf<std::uint32_t> CountProcesses(const THostFiles& files) {
  const std::vector<std::string> names = files.List("/proc");
  const auto count = std::count_if(names.begin(), names.end(), [](const std::string& name) {
    return ParseNumber(name).has_value();
  });
  if (count == 0) return TReadingOf<std::uint32_t>::Missing("/proc: shows no processes");
  return TReadingOf<std::uint32_t>::Of(static_cast<std::uint32_t>(count));
}

/// Parses the first three numbers of "3.30 3.10 2.65 7/149 28102".
TAverages ReadLoadAverages(const THostFiles& files) {
  const std::string path = "/proc/loadavg";
  TAverages averages;
  const TReading line = files.ReadLine(path);
  averages.fill(
      TReadingOf<float>::Missing(line ? path + ": not three numbers in a row" : line.fReason));
  const std::string text = line.fValue.value_or(std::string());
  const char* position = text.data();
  const char* const end = position + text.size();
  for (auto& average : averages) {
    float value = 0;
    const auto [stop, error] = std::from_chars(position, end, value, std::chars_format::fixed);
    const bool delimited = stop == end || *stop == ' ';
    if (error != std::errc() || !delimited || !(value >= 0 && value < 1e9F)) break;
    average = TReadingOf<float>::Of(value);
    position = stop != end ? stop + 1 : end;
  }
  return averages;
}

/// An empty line in the file means that no processor is offline.
TReading ReadOfflineProcessors(const THostFiles& files) {
  const std::string path = "/sys/devices/system/cpu/offline";
  TReading list = files.Read(path);
  if (list) list.fValue->erase(std::min(list.fValue->find('\n'), list.fValue->size()));
  return list;
}

/// The state of the running system: memory, processes, load.
std::vector<TPropertySpec> SystemLoadProperties() {
  const char* const kilobytes = "byte * 2^10";
  const auto memory = TType::kCIMTypeUint64;
  const auto load = TType::kCIMTypeReal32;
  return {
      {"TotalVisibleMemorySize", memory, false, "The memory that the kernel has.", kilobytes},
      {"FreePhysicalMemory", memory, false, "The memory that nothing uses.", kilobytes},
      {"AvailablePhysicalMemory", memory, false,
       "The memory that programs can get without swapping: caches give way.", kilobytes},
      {"SizeStoredInPagingFiles", memory, false, "The swap space; 0 if there is none.", kilobytes},
      {"FreeSpaceInPagingFiles", memory, false, "The swap space that is not in use.", kilobytes},
      {"NumberOfProcesses", TType::kCIMTypeUint32, false, "The processes that are there just now."},
      {"LastBootUpTime", TType::kCIMTypeDateTime, false, "When the system was started."},
      {"LoadAverage1", load, false, "The processes that run or wait, over one minute."},
      {"LoadAverage5", load, false, "The same over five minutes."},
      {"LoadAverage15", load, false, "The same over fifteen minutes."},
      {"OfflineProcessors", TType::kCIMTypeString, false,
       "The numbers of the logical processors that are switched off; empty if none is."},
      {"KernelTaint", TType::kCIMTypeUint64, false,
       "What may make the kernel unreliable, bit by bit; 0 if nothing has."}};
}

std::vector<TPropertyValue> ReadSystemLoad(const THostFiles& files) {
  const std::string path = "/proc/meminfo";
  const TFields memory(path, files.Read(path), ':');
  const TAverages averages = ReadLoadAverages(files);
  return {{"TotalVisibleMemorySize", memory.GetNumber("MemTotal", " kB")},
          {"FreePhysicalMemory", memory.GetNumber("MemFree", " kB")},
          {"AvailablePhysicalMemory", memory.GetNumber("MemAvailable", " kB")},
          {"SizeStoredInPagingFiles", memory.GetNumber("SwapTotal", " kB")},
          {"FreeSpaceInPagingFiles", memory.GetNumber("SwapFree", " kB")},
          {"NumberOfProcesses", CountProcesses(files)},
          {"LastBootUpTime", ReadLastBootUpTime(files)},
          {"LoadAverage1", averages[0]},
          {"LoadAverage5", averages[1]},
          {"LoadAverage15", averages[2]},
          {"OfflineProcessors", ReadOfflineProcessors(files)},
          {"KernelTaint", ReadNumber(files, "/proc/sys/kernel/tainted")}};
}

void AddOperatingSystem(TNamespaceBuilder& builder, const THost& host, ICIMClass& system) {
  const auto release = ReadOSRelease(host.fFiles);
  std::vector<TPropertyValue> values = {
      {"CSCreationClassName", TCIMSchemaHelper::kSystemCreationClassName},
      TPropertyValue::Key("CSName", host.fName),
      {"CreationClassName", TCIMSchemaHelper::kOperatingSystemCreationClassName},
      TPropertyValue::Key("Name", Choose(release, "NAME", host.fKernelName)),
      {"Version", Choose(release, "VERSION_ID", host.fKernelRelease)},
      {"KernelRelease", host.fKernelRelease},
      OSType(host.fKernelName)};
  const std::vector<TPropertyValue> load = ReadSystemLoad(host.fFiles);
  std::copy(load.begin(), load.end(), std::back_inserter(values));
  builder.AddInstance(system, values);
}

}  // namespace

TClassDescription OperatingSystemClass() {
  TClassSpec spec{
      TCIMSchemaHelper::kOperatingSystemCreationClassName.c_str(),
      "The operating system that runs on the machine.",
      {{"CSCreationClassName", TType::kCIMTypeString, true, "The class of the machine."},
       {"CSName", TType::kCIMTypeString, true, "The name of the machine."},
       {"CreationClassName", TType::kCIMTypeString, true, "The name of this class."},
       {"Name", TType::kCIMTypeString, true, "The distribution, else the kernel."},
       {"Version", TType::kCIMTypeString, false,
        "The version of the distribution, else the release of the kernel."},
       {"KernelRelease", TType::kCIMTypeString, false, "The release of the kernel."},
       {"OSType", TType::kCIMTypeUint16, false, "The kind of system; 36 is LINUX."}}};
  const std::vector<TPropertySpec> load = SystemLoadProperties();
  std::copy(load.begin(), load.end(), std::back_inserter(spec.fProperties));
  return {spec, AddOperatingSystem};
}

}  // namespace NVORNQDX20
