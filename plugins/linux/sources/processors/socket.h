// SPDX-License-Identifier: Apache-2.0
/// A processor in its socket, with its cores.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_SOCKET_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_SOCKET_H_

#include <cstdint>
#include <string>
#include <vector>

#include "cpu_model.h"
#include "firmware_socket.h"
#include "sources/cpu_list.h"

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

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_SOCKET_H_
