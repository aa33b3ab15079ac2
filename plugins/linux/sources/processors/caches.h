// SPDX-License-Identifier: Apache-2.0
/// The caches of processors.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_CACHES_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_CACHES_H_

#include <optional>
#include <string>
#include <vector>

#include "sources/cpu_list.h"
#include "sources/host.h"

namespace NVORNQDX20 {

struct TCache {
  std::string fID;  ///< "L1d-0": the kind, and the first logical processor that has it.
  TReading<std::uint16_t> fLevel;
  TText fKind;                        ///< "Data", "Instruction" or "Unified"
  TNumber fSize;                      ///< In bytes.
  TReading<std::uint32_t> fLineSize;  ///< In bytes.
  TReading<std::uint32_t> fWays;
  TReading<std::uint32_t> fSets;
  TText fWritePolicy;      ///< "WriteBack" or "WriteThrough"
  TReading<TCPUs> fUsers;  ///< The logical processors that share it.
  std::string fSocket;     ///< "CPU0"; empty if it is not known.
};

/// Every cache once: from the folder of each processor in sysfs (on SPARC its files), else from
/// /proc/cpuinfo (IBM Z), else from firmware.
struct TCaches {
  explicit TCaches(const THost& host);

  std::vector<TCache> fAll;
  TReason fReason;  ///< Why there are none.
};

/// Returns "L1d" for level 1 and "Data"; empty if the level is not known.
std::string CacheName(const TReading<std::uint16_t>& level, const TText& kind);

/// Parses a size such as "32K", in bytes.
TNumber ParseCacheSize(const TText& size, const std::string& source);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_CACHES_H_
