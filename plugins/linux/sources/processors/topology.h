// SPDX-License-Identifier: Apache-2.0
/// Sockets, cores and logical processors.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_TOPOLOGY_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_TOPOLOGY_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "cpu_model.h"
#include "firmware_socket.h"

namespace NVORNQDX20 {

struct TClockRange {
  TMegahertz fMax;
  TMegahertz fMin;
};

struct TCore {
  std::string fID;      ///< "CPU0-4": of all cores of the machine.
  std::string fSocket;  ///< "CPU0"
  TCPUs fThreads;       ///< Its logical processors that are online.
  /// The kernel's numbers; those of different sockets can be the same.
  TReading<std::uint32_t> fNumber, fDie, fCluster;
  TText fType;  ///< "Performance" or "Efficiency", where a processor has cores of several kinds.
  TClockRange fClock;
  TCPUModel fModel;  ///< Without flags and bugs.
};

struct TSocket {
  std::string fID;  ///< "CPU0"
  TCPUs fThreads;   ///< Its logical processors that are online; empty if they are not known.
  std::vector<TCore> fCores;  ///< Empty if they are not known.
  TReading<std::uint16_t> fCoreCount;
  TClockRange fClock;  ///< Of its fastest and its slowest core.
  TCPUModel fModel;    ///< Of its first logical processor; the names of all kinds of cores.
  TReading<TSMBIOSStructure> fFirmware;  ///< What firmware says about it: type 4.
};

/// The kernel's lists of logical processors.
struct TCPULists {
  explicit TCPULists(const THost& host);

  TReading<TCPUs> fPresent;
  TReading<TCPUs> fOnline;
};

/// The processors of a machine of which at least a part is online.
///
/// The kernel's folder in sysfs counts, or /proc/cpuinfo if that has more logical processors that
/// are not offline in sysfs: the copy of a machine's files can be incomplete. Two of them are in
/// one socket, or in one core, if the kernel says that they are siblings: the numbers of sockets
/// and cores are not unique on all architectures. If there is neither, the sockets are those in
/// which firmware has processors.
class TTopology {
 public:
  static constexpr const char* kFolder = "/sys/devices/system/cpu";

  explicit TTopology(const THost& host);

  const std::vector<TSocket>& GetSockets() const { return fSockets; }
  /// Those that are present and not online; empty if that is not known.
  const TCPUs& GetOffline() const { return fOffline; }
  /// Returns null for a logical processor that is in none.
  const TSocket* FindSocket(unsigned processor) const;
  const TCore* FindCore(unsigned processor) const;
  /// Why there are no sockets.
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

/// Reads a list such as "0-3", or if there is none the mask, unless its name is empty.
TReading<TCPUs> ReadCPUSet(const TFiles& files, const std::string& list, const std::string& mask);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_TOPOLOGY_H_
