// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_OperatingSystem: distribution and kernel, memory, processes and load.
#include <qdxcore/schema_helper.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <iterator>
#include <sstream>

#include "classes/catalogue.h"
#include "sources/fields.h"
#include "sources/os_release.h"
#include "sources/processors/hypervisor.h"
#include "sources/processors/topology.h"
#include "sources/software/architecture.h"
#include "sources/software/boot_time.h"
#include "sources/software/container.h"
#include "sources/software/control_group.h"
#include "sources/software/time_zone.h"

namespace NVORNQDX20 {
namespace {

/// The kernel takes a tab between parameters for a blank.
TText ReadCommandLine(const TFiles& host) {
  const char* const path = "/proc/cmdline";
  return host.Read(path).and_then([&](std::string text) -> TText {
    std::replace(text.begin(), text.end(), '\t', ' ');
    const std::string line = PrintableText(text.substr(0, text.find('\n')));
    if (line.empty()) return host.MissingFrom(path, "empty");
    return line;
  });
}

using TAverages = std::array<TReading<float>, 3>;

/// LINUX in the value map of CIM_OperatingSystem.OSType.
constexpr std::uint16_t kLinux = 36;

/// The files that several rows need.
struct TSystem {
  TFields fMemory;
  TAverages fLoadAverages;
  TText fContainer;
  TControlGroup fGroup;
};

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
  return {TFields(path, host.Read(path), ':'), ReadLoadAverages(host), ReadContainer(host),
          ReadControlGroup(host)};
}

auto ReleaseText(const char* variable) {
  return [variable](const THost& host) { return host.Shared<TOSRelease>().Get(variable); };
}

/// Returns the first word that begins with a digit: "7.9.2009" of "CentOS Linux release 7.9.2009".
TText NumberIn(const std::string& text, const std::string& source) {
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (word.front() >= '0' && word.front() <= '9') return word;
  }
  return Missing(source + ": no number in '" + text + "'");
}

/// Some distributions have only the major release in os-release.
TText ReadPointRelease(const THost& host) {
  const auto& release = host.Shared<TOSRelease>();
  const std::string distribution = release.Get("ID").ValueOr("");
  const std::string file = distribution == "debian"   ? "/etc/debian_version"
                           : distribution == "centos" ? "/etc/centos-release"
                                                      : "";
  const TText line = file.empty() ? release.Get("VERSION") : host.ReadLine(file);
  const TText number = line.and_then(
      [&](const std::string& text) { return NumberIn(text, file.empty() ? "VERSION" : file); });
  return number || !file.empty() ? number : release.Get("VERSION_ID");
}

TReading<std::int16_t> ReadCurrentTimeZone(const THost& host) {
  return ReadTimeZoneOffset(host, std::time(nullptr));
}

/// A new image has the word "uninitialized", until it is started for the first time.
TText ReadMachineID(const THost& host) {
  const char* const path = "/etc/machine-id";
  TText id = host.ReadLine(path);
  if (id && *id == "uninitialized") return host.MissingFrom(path, "is not set yet");
  return id;
}

/// Container managers limit the group of the container, and nothing limits that of a machine.
TText LimitScope(const TSystem& system) {
  return system.fContainer.map([](const std::string& kind) -> std::string {
    return kind == kNone ? "machine" : "container";
  });
}

/// Returns whether something is there that would tell of a hypervisor: of processors, only those of
/// x86 do.
bool MayTellOfHypervisor(const THost& host) {
  for (const TSocket& socket : host.Shared<TTopology>().GetSockets()) {
    if (HasFlag(socket.fModel.fFlags, "cx8")) return true;
  }
  for (const char* const path : {"/sys/class/dmi/id", "/proc/device-tree", "/proc/sysinfo"}) {
    if (host.Exists(path).ValueOr(false)) return true;
  }
  return bool(host.GetSMBIOS());
}

/// Processors tell of a hypervisor; without them, nothing has been asked.
TText ReadVirtualMachine(const THost& host) {
  const auto& found = host.Shared<TFoundHypervisor>().fHypervisor;
  const TReason reason = found ? found->fName.GetReason() : found.GetReason();
  if (reason.IsError()) return Missing(reason);
  if (found) return found->fName.ValueOr("other");
  const auto& topology = host.Shared<TTopology>();
  if (topology.GetSockets().empty()) return Missing(topology.GetReason());
  if (!MayTellOfHypervisor(host)) {
    return Missing("nothing is there that would tell of a hypervisor");
  }
  return kNone;
}

template <typename T>
auto Group(T TControlGroup::*field) {
  return [field](const TSystem& system) { return system.fGroup.*field; };
}

/// Reads the distribution's name for itself, else the kernel's.
auto Release(const char* variable, TText THost::*ofKernel) {
  return [=](const THost& host) { return ReadReleaseOrKernel(host, variable, ofKernel); };
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

TReading<TCIMDateTime> ReadLastBootUpTime(const THost& host) {
  return host.Shared<TBootTime>().fSeconds.and_then(
      [](std::uint64_t seconds) { return ToDateTime(seconds, "/proc/stat: btime"); });
}

/// Takes the whole seconds of "350735.47 234388.90"; the second number is the time of idle
/// processors.
TNumber ReadUpTime(const THost& host) {
  const char* const path = "/proc/uptime";
  return host.ReadLine(path).and_then([&](const std::string& line) -> TNumber {
    const auto seconds = ParseNumber(line.substr(0, line.find_first_of(". ")));
    if (!seconds) return host.MissingFrom(path, "no number of seconds");
    return *seconds;
  });
}

/// Counts the folders in /proc whose names are numbers. The image of a disk has none.
TReading<std::uint32_t> CountProcesses(const THost& host) {
  const auto isNumber = [](const std::string& name) { return ParseNumber(name).has_value(); };
  return host.List("/proc").and_then(
      [&](const std::vector<std::string>& names) -> TReading<std::uint32_t> {
        const auto count = std::count_if(names.begin(), names.end(), isNumber);
        if (count == 0) return Missing("/proc: shows no processes");
        // The option "hidepid" of /proc hides those of other users; a copy may have a few only.
        if (std::find(names.begin(), names.end(), "1") == names.end()) {
          return Missing("/proc: shows no process 1, so that others may be hidden");
        }
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
       {"Caption", "The name and the version, as the distribution writes them.",
        ReleaseText("PRETTY_NAME")},
       {"DistributionID", "The short name of the distribution, as in \"debian\".",
        ReleaseText("ID")},
       {"PointRelease", "The version with all its parts, as in \"12.11\".", ReadPointRelease},
       {"KernelVersion", "How and when the kernel was built.", &THost::fKernelVersion},
       {"KernelCommandLine", "What the boot loader told the kernel.", ReadCommandLine,
        ESecret::kCommandLine},
       {"Architecture",
        "The processors of the running kernel, in the words of uname; of an image, those that its "
        "programs are built for.",
        ReadArchitecture},
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
       {"SystemUpTime", "How long ago that was.", ReadUpTime, TUnit{"second"}, kCounter, kVolatile},
       {"TimeZone", "The name of the time zone, as in \"Europe/Berlin\".", ReadTimeZoneName},
       {"CurrentTimeZone", "How far its time is ahead of UTC at present.", ReadCurrentTimeZone,
        TUnit{"minute"}, kVolatile},
       {"MachineID", "The ID that the installation made up for itself.", ReadMachineID,
        ESecret::kSerial},
       {"BootID", "The ID that the kernel made up when it started.",
        FileLine("/proc/sys/kernel/random/boot_id"), ESecret::kSerial},
       {"Container",
        "The kind of container that the system runs in, as in \"docker\"; \"none\" if it runs in "
        "none, \"other\" if the kind is not known.",
        &TSystem::fContainer},
       {"VirtualMachine",
        "The hypervisor that the system runs on, as in \"KVM\"; \"none\" if nothing speaks for "
        "one, \"other\" if its name is not known.",
        ReadVirtualMachine},
       {"LimitScope",
        "What the limits belong to: the \"container\" that the system runs in, or the \"machine\". "
        "All other values are those that the kernel has for the whole machine.",
        LimitScope},
       {"MemoryLimit", "The memory that all processes together may use.",
        Group(&TControlGroup::fMemory), TUnit{"byte"}},
       {"ProcessorLimit", "The processors' time that they may use, as a number of processors.",
        Group(&TControlGroup::fProcessors)},
       {"ProcessLimit", "How many processes there may be.", Group(&TControlGroup::fProcesses)},
       {"ProcessorSet", "The numbers of the logical processors that they may use.",
        Group(&TControlGroup::fProcessorSet)},
       {"ControlGroupVersion", "Which of the kernel's two forms of control groups sets the limits.",
        Group(&TControlGroup::fVersion)},
       {"MaxNumberOfProcesses", "How many processes the kernel can number.",
        FileNumber<std::uint32_t>("/proc/sys/kernel/pid_max")},
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
