// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_UnixProcess: the processes that run just now.
#include <qdxcore/schema_helper.h>

#include <algorithm>

#include "classes/catalogue.h"
#include "sources/os_release.h"
#include "sources/software/boot_time.h"
#include "sources/software/process.h"

namespace NVORNQDX20 {
namespace {

TInstances<TProcess> ListProcesses(const THost& host) {
  TProcesses processes = ReadProcesses(host);
  const bool hasFirst = std::any_of(processes.fAll.begin(), processes.fAll.end(),
                                    [](const TProcess& process) { return process.fID == "1"; });
  // The option "hidepid" of /proc hides those of other users.
  if (host.IsThisMachine() && !hasFirst && !processes.fAll.empty()) {
    processes.fReason.Add(
        {"/proc: shows no process 1, so that others may be hidden", TReason::kError});
  }
  return {std::move(processes.fAll), std::move(processes.fReason)};
}

/// The states of the kernel as those of the value map of CIM_Process.ExecutionState.
TReading<std::uint16_t> ExecutionState(const TProcess& process) {
  switch (process.fState) {
    case 'R':
      return std::uint16_t{3};
    case 'S':
    case 'D':
    case 'I':
      return std::uint16_t{4};
    case 'Z':
    case 'X':
      return std::uint16_t{7};
    case 'T':
    case 't':
      return std::uint16_t{8};
    default:
      return std::uint16_t{0};
  }
}

/// The kernel shows times to programs in units of a hundredth of a second.
constexpr std::uint64_t kTicksPerSecond = 100;

auto Milliseconds(std::uint64_t TProcess::*ticks) {
  return [ticks](const TProcess& process) {
    return Scaled(TNumber(process.*ticks), 1000, kTicksPerSecond);
  };
}

TReading<TCIMDateTime> CreationDate(const TProcess& process, const THost& host) {
  return host.Shared<TBootTime>().fSeconds.and_then([&process](std::uint64_t boot) {
    return ToDateTime(boot + process.fStartTime / kTicksPerSecond, "starttime");
  });
}

}  // namespace

TClass UnixProcessClass() {
  return THostTable<TProcess>{
      "VORNSG_UnixProcess",
      "A process of the running system.",
      ListProcesses,
      {{"CSCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"CSName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"OSCreationClassName", "The class of the operating system.",
        Constant(TCIMSchemaHelper::kOperatingSystemCreationClassName), kKey},
       {"OSName", "The name of the operating system.", OSNameAsKey, kKey},
       {"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Handle", "The number of the process.", &TProcess::fID, kKey},
       {"Name", "The name of the program, which the process can change.", &TProcess::fName},
       {"Parameters", "The words that the program was called with; none for a part of the kernel.",
        &TProcess::fParameters, ESecret::kCommandLine},
       {"ParentProcessID", "The number of the process that started it.", &TProcess::fParent},
       {"RealUserID", "The number of the user to whom it belongs.", &TProcess::fUser},
       {"ProcessGroupID", "The number of its group of processes.", &TProcess::fGroup},
       {"ProcessSessionID", "The number of its session.", &TProcess::fSession},
       {"ExecutionState", "What it does.", ExecutionState, kVolatile,
        TEnumeration{
            {0, "Unknown"}, {3, "Running"}, {4, "Blocked"}, {7, "Terminated"}, {8, "Stopped"}}},
       {"CreationDate", "When it was started.", CreationDate},
       {"KernelModeTime", "The processors' time that the kernel used for it.",
        Milliseconds(&TProcess::fKernelTime), TUnit{"second * 10^-3"}, kCounter, kVolatile},
       {"UserModeTime", "The processors' time that its program used.",
        Milliseconds(&TProcess::fUserTime), TUnit{"second * 10^-3"}, kCounter, kVolatile},
       {"WorkingSetSize", "The memory that it has just now.", &TProcess::fMemory, TUnit{"byte"},
        kGauge, kVolatile},
       {"NiceValue", "How much it gives way to others, from -20 to 19.", &TProcess::fNice},
       {"NumberOfThreads", "How many threads it has.", &TProcess::fThreads, kGauge, kVolatile}}};
}

}  // namespace NVORNQDX20
