// SPDX-License-Identifier: Apache-2.0
/// NUMA nodes.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_NUMA_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_NUMA_H_

#include <map>
#include <string>
#include <vector>

#include "sources/cpu_list.h"
#include "sources/fields.h"
#include "sources/host.h"

namespace NVORNQDX20 {

struct TNUMANode {
  std::uint32_t fNumber;
  TReading<TCPUs> fCPUs;
  TFields fMemory;  ///< "Node 0 MemTotal" and others.
  TReading<std::vector<std::uint32_t>> fDistances;
};

/// The nodes in sysfs, by their numbers.
struct TNUMANodes {
  explicit TNUMANodes(const THost& host);

  /// Returns the number of the node that has the logical processor.
  TReading<std::uint32_t> FindNode(unsigned cpu) const;

  std::vector<TNUMANode> fAll;
  TReason fReason;  ///< Why there are none.

 private:
  std::map<unsigned, std::uint32_t> fNodeOf;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_NUMA_H_
