// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_HardwareThread: logical processors, and what ties them to their cores.
#include "classes/catalogue.h"
#include "sources/processors/numa.h"
#include "sources/processors/topology.h"

namespace NVORNQDX20 {
namespace {

const char* const kThreadClass = "VORNSG_HardwareThread";

// EnabledState of the DMTF's schema.
constexpr std::uint16_t kEnabled = 2;
constexpr std::uint16_t kDisabled = 3;

struct TThread {
  std::uint32_t fNumber;
  std::uint16_t fState;
  std::string fCore;  ///< Empty if it is not known.
};

std::string ThreadIDOf(const TThread& thread) {
  return "VORNSG:cpu" + std::to_string(thread.fNumber);
}

/// Those that are online, by their sockets, and then the others.
TInstances<TThread> ListThreads(const THost& host) {
  const auto& topology = host.Shared<TTopology>();
  TInstances<TThread> threads({}, topology.GetReason());
  for (const TSocket& socket : topology.GetSockets()) {
    for (const unsigned cpu : socket.fThreads) {
      const TCore* const core = topology.FindCore(cpu);
      threads.fAll.push_back({cpu, kEnabled, core == nullptr ? "" : "VORNSG:" + core->fID});
    }
  }
  for (const unsigned cpu : topology.GetOffline()) threads.fAll.push_back({cpu, kDisabled, ""});
  return threads;
}

TInstances<TThread> ListThreadsOfCores(const THost& host) {
  TInstances<TThread> all = ListThreads(host);
  TInstances<TThread> some({}, all.fReason);
  for (TThread& each : all.fAll) {
    if (!each.fCore.empty()) some.fAll.push_back(std::move(each));
  }
  return some;
}

TReading<std::uint32_t> NodeOf(const TThread& thread, const THost& host) {
  return host.Shared<TNUMANodes>().FindNode(thread.fNumber);
}

}  // namespace

TClass HardwareThreadClass() {
  return THostTable<TThread>{
      kThreadClass,
      "A logical processor: one thread of a core.",
      ListThreads,
      {{"InstanceID", "Tells the logical processor from all others.", ThreadIDOf, kKey},
       {"Number", "The kernel's number.", &TThread::fNumber},
       {"EnabledState", "Whether it is online.", &TThread::fState,
        TEnumeration{{kEnabled, "Enabled"}, {kDisabled, "Disabled"}}},
       {"NUMANode", "The number of the NUMA node that it belongs to.", NodeOf}}};
}

TClass HardwareThreadComponentClass() {
  return THostTable<TThread>{"VORNSG_ProcessorCoreComponent",
                             "Ties a logical processor to the core that it is a thread of.",
                             ListThreadsOfCores,
                             {{"GroupComponent", "The core.",
                               [](const TThread& thread) {
                                 return TInstanceName{"VORNSG_ProcessorCore", thread.fCore};
                               },
                               kKey, TRefersTo{"VORNSG_ProcessorCore"}},
                              {"PartComponent", "The logical processor.",
                               [](const TThread& thread) {
                                 return TInstanceName{kThreadClass, ThreadIDOf(thread)};
                               },
                               kKey, TRefersTo{kThreadClass}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
