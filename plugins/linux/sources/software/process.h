// SPDX-License-Identifier: Apache-2.0
/// Reads the processes of a running system (proc(5)).
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_PROCESS_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_PROCESS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// What the file "stat" of a process says. Times are in hundredths of a second.
struct TProcessState {
  std::string fName;
  char fState = '?';
  std::string fParent;
  std::uint64_t fGroup = 0;
  std::uint64_t fSession = 0;
  std::uint64_t fUserTime = 0;
  std::uint64_t fKernelTime = 0;
  std::int32_t fNice = 0;
  std::uint64_t fThreads = 0;
  std::uint64_t fStartTime = 0;  ///< After the start of the system.
};

/// Null for a text in another format.
std::optional<TProcessState> ParseProcessState(std::string_view text);

struct TProcess : TProcessState {
  std::string fID;
  TNumber fUser;
  TNumber fMemory;  ///< In bytes; 0 for a part of the kernel.
  TReading<std::vector<std::string>> fParameters;
};

/// Processes that end meanwhile are left out. If there are none, or some cannot be read, says why.
struct TProcesses {
  std::vector<TProcess> fAll;
  TReason fReason;
};
TProcesses ReadProcesses(const TFiles& files);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_PROCESS_H_
