// SPDX-License-Identifier: Apache-2.0
/// Sockets, cores and logical processors.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_TOPOLOGY_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_TOPOLOGY_H_

#include <cstddef>
#include <map>
#include <vector>

#include "cpu_sets.h"
#include "socket.h"

namespace NVORNQDX20 {

/// The processors of a machine of which at least a part is online.
///
/// The kernel's folder in sysfs counts, or /proc/cpuinfo if that has more logical processors that
/// are not offline in sysfs: the copy of a machine's files can be incomplete. Two of them are in
/// one socket, or in one core, if the kernel says that they are siblings: the numbers of sockets
/// and cores are not unique on all architectures. If there is neither, the sockets are those in
/// which firmware has processors. What cannot be read is a problem: a processor may be missing
/// then, or stand in a group of its own.
class TTopology {
 public:
  explicit TTopology(const THost& host);

  const std::vector<TSocket>& GetSockets() const { return fSockets; }
  /// Those that are present and not online; empty if that is not known.
  const TCPUs& GetOffline() const { return fOffline; }
  /// Returns null for a logical processor that is in none.
  const TSocket* FindSocket(unsigned processor) const;
  const TCore* FindCore(unsigned processor) const;
  /// Why there are no sockets, or what else could not be read.
  const TReason& GetReason() const { return fReason; }

 private:
  /// Adds what firmware says, if it has as many processors.
  void AddFirmware(const THost& host);

  std::vector<TSocket> fSockets;
  TCPUs fOffline;
  std::map<unsigned, std::size_t> fSocketOf;
  std::map<unsigned, std::size_t> fCoreOf;  // within its socket
  TReason fReason;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_TOPOLOGY_H_
