// SPDX-License-Identifier: Apache-2.0
/// Sets of logical processors in files of sysfs.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_CPU_SETS_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_CPU_SETS_H_

#include <string>

#include "sources/cpu_list.h"
#include "sources/host.h"

namespace NVORNQDX20 {

inline constexpr const char* kProcessorFolder = "/sys/devices/system/cpu";

/// Reads a list such as "0-3", or if there is none the mask, unless its name is empty.
TReading<TCPUs> ReadCPUSet(const TFiles& files, const std::string& list, const std::string& mask);

/// The kernel's lists of logical processors.
struct TCPULists {
  explicit TCPULists(const THost& host);

  TReading<TCPUs> fPresent;
  TReading<TCPUs> fOnline;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_CPU_SETS_H_
