// SPDX-License-Identifier: Apache-2.0
/// Which logical processors are in one socket, and in one core.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_GROUPING_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_GROUPING_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "socket.h"

namespace NVORNQDX20 {

/// A socket whose ID is not final.
struct TRawSocket {
  std::optional<std::uint32_t> fNumber;
  TSocket fSocket;
};

/// Keeps the first error of several readings.
inline void NoteError(TReason& first, const TReason& reason) {
  if (first.empty() && reason.IsError()) first = reason;
}

/// Removes from `free` those that are also in the group, and returns them.
TCPUs Take(const TCPUs& group, TCPUs& free);

/// Returns the sockets of those processors that have a topology in sysfs. Notes in `problem` what
/// cannot be read.
std::vector<TRawSocket> SocketsOfSysfs(const TFiles& files, const TCPUs& processors,
                                       TReason& problem);
/// Returns the sockets by the numbers in /proc/cpuinfo; one if that has none.
std::vector<TRawSocket> SocketsOfCPUInfo(const TCPUInfo& info);
/// Older kernels take the clusters of an ARM chip for sockets. Those of a chip with cores of
/// several kinds differ, and the sockets of one machine do not.
void MergeClusters(std::vector<TRawSocket>& sockets, const TCPUInfo& info);
/// Names sockets and cores by their numbers, or by their order if two have the same.
void NameAll(std::vector<TRawSocket>& sockets);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_GROUPING_H_
