// SPDX-License-Identifier: Apache-2.0
#include "grouping.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "cpu_sets.h"

namespace NVORNQDX20 {
namespace {

/// Two names of a file with siblings: newer kernels have the first.
struct TSiblingFiles {
  const char* fList;
  const char* fMask;
  const char* fOldList;
  const char* fOldMask;
};

TReading<TCPUs> ReadSiblings(const TFiles& topology, const TSiblingFiles& names) {
  auto siblings = ReadCPUSet(topology, names.fList, names.fMask);
  if (siblings) return siblings;
  auto old = ReadCPUSet(topology, names.fOldList, names.fOldMask);
  return old || !siblings.GetReason().IsError() ? old : siblings;
}

/// The numbers that Linux has for sockets and cores; -1 means none.
TReading<std::uint32_t> ReadID(const TFiles& topology, const char* name) {
  const auto number = topology.ReadNumber<int>(name);
  if (!number) return Missing(number.GetReason());
  if (*number < 0) return topology.MissingFrom(name, "the kernel knows none");
  return static_cast<std::uint32_t>(*number);
}

/// On x86, a processor without clusters has the number that its chip uses for none.
TReading<std::uint32_t> ReadCluster(const TFiles& topology) {
  constexpr const char* kName = "cluster_id";
  constexpr std::uint32_t kNone = 0xffff;
  TReading<std::uint32_t> number = ReadID(topology, kName);
  if (number && *number == kNone) return topology.MissingFrom(kName, "the kernel knows none");
  return number;
}

TFiles TopologyOf(const TFiles& files, unsigned cpu) {
  return files.In("cpu" + std::to_string(cpu) + "/topology");
}

/// Processors that are siblings.
struct TGroup {
  TCPUs fCPUs;
  TReading<std::uint32_t> fNumber;
  bool fIsKnown;  ///< Else it is one processor of which the kernel says nothing.
};

/// Those whose siblings are not known are with those that have the same number, or that name them.
std::vector<TGroup> GroupSiblings(const TFiles& files, TCPUs free, const char* numberFile,
                                  const TSiblingFiles& names, TReason& problem) {
  std::vector<TGroup> groups;
  std::map<std::uint32_t, std::size_t> byNumber;  // those whose siblings are not known
  std::map<unsigned, std::size_t> unsure;         // the same, by the processor
  while (!free.empty()) {
    const unsigned first = *free.begin();
    const TFiles topology = TopologyOf(files, first);
    const auto number = ReadID(topology, numberFile);
    const auto siblings = ReadSiblings(topology, names);
    NoteError(problem, siblings.GetReason());
    free.erase(first);
    TCPUs taken = Take(siblings.ValueOr({}), free);
    taken.insert(first);
    std::size_t group = groups.size();
    if (!siblings && number) group = byNumber.try_emplace(*number, group).first->second;
    for (const unsigned cpu : siblings.ValueOr({})) {
      const auto other = unsure.find(cpu);
      if (other != unsure.end()) group = other->second;
    }
    if (!siblings) unsure[first] = group;
    if (group == groups.size()) groups.push_back({{}, number, false});
    groups[group].fCPUs.insert(taken.begin(), taken.end());
    groups[group].fIsKnown |= siblings || number;
  }
  return groups;
}

void AddCores(const TFiles& files, TSocket& socket, TReason& problem) {
  constexpr TSiblingFiles kSiblings = {"core_cpus_list", "core_cpus", "thread_siblings_list",
                                       "thread_siblings"};
  for (TGroup& group : GroupSiblings(files, socket.fThreads, "core_id", kSiblings, problem)) {
    const TFiles topology = TopologyOf(files, *group.fCPUs.begin());
    TCore core;
    core.fThreads = std::move(group.fCPUs);
    core.fNumber = std::move(group.fNumber);
    core.fDie = ReadID(topology, "die_id");
    core.fCluster = ReadCluster(topology);
    socket.fCores.push_back(std::move(core));
  }
  socket.fCoreCount = static_cast<std::uint16_t>(socket.fCores.size());
}

std::optional<std::uint32_t> OwnNumber(const TCPUFields& fields,
                                       std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (const auto number = fields.fOwn.GetNumber<std::uint32_t>(name)) return *number;
  }
  return std::nullopt;
}

/// Returns which ARM parts the socket's cores are; empty for other architectures.
std::set<std::string> PartsOf(const TSocket& socket, const TCPUInfo& info) {
  std::set<std::string> parts;
  for (const unsigned cpu : socket.fThreads) {
    const TCPUFields fields = info.FieldsOf(cpu);
    if (!fields.Get({"CPU implementer"})) return {};
    parts.insert(fields.Get({"CPU part"}).ValueOr(""));
  }
  return parts;
}

}  // namespace

TCPUs Take(const TCPUs& group, TCPUs& free) {
  TCPUs taken;
  for (const unsigned cpu : group) {
    if (free.erase(cpu) != 0) taken.insert(taken.end(), cpu);
  }
  return taken;
}

std::vector<TRawSocket> SocketsOfSysfs(const TFiles& files, const TCPUs& processors,
                                       TReason& problem) {
  constexpr TSiblingFiles kSiblings = {"package_cpus_list", "package_cpus", "core_siblings_list",
                                       "core_siblings"};
  std::vector<TRawSocket> sockets;
  for (TGroup& group :
       GroupSiblings(files, processors, "physical_package_id", kSiblings, problem)) {
    if (!group.fIsKnown) continue;
    TRawSocket raw;
    raw.fSocket.fThreads = std::move(group.fCPUs);
    if (group.fNumber) raw.fNumber = *group.fNumber;
    AddCores(files, raw.fSocket, problem);
    sockets.push_back(std::move(raw));
  }
  return sockets;
}

std::vector<TRawSocket> SocketsOfCPUInfo(const TCPUInfo& info) {
  std::map<std::uint32_t, TRawSocket> sockets;
  std::map<std::uint32_t, std::map<std::uint32_t, TCore>> cores;
  std::set<std::uint32_t> incomplete;  // sockets with processors that name no core
  for (const unsigned cpu : info.GetProcessors()) {
    const TCPUFields fields = info.FieldsOf(cpu);
    const auto number = OwnNumber(fields, {"physical id", "package"});
    const auto coreNumber = OwnNumber(fields, {"core id", "core"});
    const std::uint32_t key = number.value_or(0);
    TRawSocket& raw = sockets[key];
    if (raw.fSocket.fThreads.empty()) {
      raw.fNumber = number;
      raw.fSocket.fCoreCount = fields.fOwn.GetNumber<std::uint16_t>("cpu cores");
    }
    raw.fSocket.fThreads.insert(cpu);
    if (!coreNumber) incomplete.insert(key);
    TCore& core = cores[key][coreNumber.value_or(0)];
    core.fThreads.insert(cpu);
    if (coreNumber) core.fNumber = *coreNumber;
    core.fDie = core.fCluster = Missing(std::string(TCPUInfo::kPath) + ": has none");
  }
  std::vector<TRawSocket> all;
  all.reserve(sockets.size());
  for (auto& [key, raw] : sockets) {
    TSocket& socket = raw.fSocket;
    if (incomplete.count(key) == 0 || socket.fThreads.size() == 1) {
      for (auto& core : cores[key]) socket.fCores.push_back(std::move(core.second));
      socket.fCoreCount = static_cast<std::uint16_t>(socket.fCores.size());
    }
    all.push_back(std::move(raw));
  }
  return all;
}

void MergeClusters(std::vector<TRawSocket>& sockets, const TCPUInfo& info) {
  if (sockets.size() < 2) return;
  const std::set<std::string> parts = PartsOf(sockets.front().fSocket, info);
  if (parts.empty()) return;
  const bool isSame = std::all_of(sockets.begin() + 1, sockets.end(), [&](const TRawSocket& each) {
    return PartsOf(each.fSocket, info) == parts;
  });
  if (isSame) return;
  TSocket& chip = sockets.front().fSocket;
  for (std::size_t i = 1; i < sockets.size(); ++i) {
    TSocket& cluster = sockets[i].fSocket;
    chip.fThreads.insert(cluster.fThreads.begin(), cluster.fThreads.end());
    std::move(cluster.fCores.begin(), cluster.fCores.end(), std::back_inserter(chip.fCores));
  }
  chip.fCoreCount = static_cast<std::uint16_t>(chip.fCores.size());
  sockets.resize(1);
}

void NameAll(std::vector<TRawSocket>& sockets) {
  std::set<std::uint32_t> numbers;
  bool areUnique = true;
  for (const TRawSocket& each : sockets) {
    areUnique = areUnique && numbers.insert(each.fNumber.value_or(0)).second;
  }
  for (std::size_t i = 0; i < sockets.size(); ++i) {
    TSocket& socket = sockets[i].fSocket;
    socket.fID =
        "CPU" + std::to_string(areUnique ? std::size_t{sockets[i].fNumber.value_or(0)} : i);
    std::set<std::string> taken;
    for (TCore& core : socket.fCores) {
      core.fSocket = socket.fID;
      const unsigned first = *core.fThreads.begin();
      core.fID = socket.fID + "-" + std::to_string(core.fNumber.ValueOr(first));
      if (!taken.insert(core.fID).second) core.fID += "." + std::to_string(first);
    }
  }
}

}  // namespace NVORNQDX20
