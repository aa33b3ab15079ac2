// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_ProcessorCore: the cores of processors, and what ties them to their sockets.
#include "classes/catalogue.h"
#include "sources/processors/topology.h"

namespace NVORNQDX20 {
namespace {

const char* const kCoreClass = "VORNSG_ProcessorCore";

std::string CoreIDOf(const TCore& core) { return "VORNSG:" + core.fID; }

TInstances<TCore> ListCores(const THost& host) {
  const auto& topology = host.Shared<TTopology>();
  TInstances<TCore> cores({}, topology.GetReason());
  for (const TSocket& socket : topology.GetSockets()) {
    cores.fAll.insert(cores.fAll.end(), socket.fCores.begin(), socket.fCores.end());
    if (!socket.fCores.empty()) continue;
    const TReason unknown = socket.fCoreCount.GetReason();
    cores.Miss(
        socket.fID + ": " +
        (unknown.empty() ? "only the kernel lists cores, and its files are missing" : unknown));
  }
  return cores;
}

template <typename T>
auto CoreModel(T TCPUModel::*member) {
  return [member](const TCore& core) { return core.fModel.*member; };
}

template <typename T>
auto CoreClock(T TClockRange::*member) {
  return [member](const TCore& core) { return core.fClock.*member; };
}

}  // namespace

TClass ProcessorCoreClass() {
  const TUnit megahertz{"hertz * 10^6"};
  constexpr std::uint16_t kEnabled = 2;
  return THostTable<TCore>{
      kCoreClass,
      "A core of a processor of which at least one thread is online.",
      ListCores,
      {{"InstanceID", "Tells the core from all others.", CoreIDOf, kKey},
       {"Name", "The model of the core.", CoreModel(&TCPUModel::fName)},
       {"CoreEnabledState", "Whether it is in use; others are not seen.", Constant(kEnabled),
        TEnumeration{{kEnabled, "Core Enabled"}}},
       {"CoreType", "Its kind, if the processor has several.", &TCore::fType},
       {"CoreNumber", "The kernel's number of the core within its socket.", &TCore::fNumber},
       {"DieNumber", "The kernel's number of the die within its socket.", &TCore::fDie},
       {"ClusterNumber", "The kernel's number of the cluster within its socket.", &TCore::fCluster},
       {"Stepping", "The revision within its model.", CoreModel(&TCPUModel::fStepping)},
       {"MaxClockSpeed", "The highest clock speed.", CoreClock(&TClockRange::fMax), megahertz},
       {"MinClockSpeed", "The lowest clock speed.", CoreClock(&TClockRange::fMin), megahertz},
       {"LogicalProcessors", "The numbers of its threads that are online.",
        [](const TCore& core) { return FormatCPUList(core.fThreads); }}}};
}

TClass ProcessorCoreComponentClass() {
  return THostTable<TCore>{"VORNSG_ProcessorComponent",
                           "Ties a core to the processor that it is part of.",
                           ListCores,
                           {{"GroupComponent", "The processor.",
                             [](const TCore& core) {
                               return TInstanceName{"VORNSG_Processor", core.fSocket};
                             },
                             kKey, TRefersTo{"VORNSG_Processor"}},
                            {"PartComponent", "The core.",
                             [](const TCore& core) {
                               return TInstanceName{kCoreClass, CoreIDOf(core)};
                             },
                             kKey, TRefersTo{kCoreClass}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
