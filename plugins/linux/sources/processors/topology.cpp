// SPDX-License-Identifier: Apache-2.0
#include "topology.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

namespace NVORNQDX20 {
namespace {

/// Removes from `free` those that are also in the group, and returns them.
TCPUs Take(const TCPUs& group, TCPUs& free) {
  TCPUs taken;
  for (const unsigned cpu : group) {
    if (free.erase(cpu) != 0) taken.insert(taken.end(), cpu);
  }
  return taken;
}

/// Returns the processors that have a folder.
TCPUs ListFolders(const TFiles& files) {
  TCPUs all;
  const auto names = files.List();
  for (const std::string& name : names ? *names : std::vector<std::string>()) {
    if (name.substr(0, 3) != "cpu") continue;
    const auto number = ParseNumber<unsigned>(std::string_view(name).substr(3));
    if (number && *number < kMaxCPUs) all.insert(*number);
  }
  return all;
}

/// Kernels before 2.6.26 have no list of what is online.
TCPUs ReadOnline(const THost& host, const TFiles& files, const TCPUs& folders) {
  if (const auto& listed = host.Shared<TCPULists>().fOnline) return *listed;
  TCPUs online;
  for (const unsigned cpu : folders) {
    if (files.ReadFlag("cpu" + std::to_string(cpu) + "/online").ValueOr(true)) online.insert(cpu);
  }
  return online;
}

/// The folder of one logical processor.
TFiles FolderOf(const TFiles& files, unsigned cpu) { return files.In("cpu" + std::to_string(cpu)); }

TReading<TCPUs> ReadCoreSiblings(const TFiles& topology) {
  if (auto siblings = ReadCPUSet(topology, "core_cpus_list", "core_cpus")) return siblings;
  return ReadCPUSet(topology, "thread_siblings_list", "thread_siblings");
}

TReading<TCPUs> ReadSocketSiblings(const TFiles& topology) {
  if (auto siblings = ReadCPUSet(topology, "package_cpus_list", "package_cpus")) return siblings;
  return ReadCPUSet(topology, "core_siblings_list", "core_siblings");
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

/// A socket whose ID is not final.
struct TRawSocket {
  std::optional<std::uint32_t> fNumber;
  TSocket fSocket;
};

void AddCores(const TFiles& files, TSocket& socket) {
  std::map<std::uint32_t, std::size_t> byNumber;  // those whose siblings are not known
  for (TCPUs free = socket.fThreads; !free.empty();) {
    const unsigned first = *free.begin();
    const TFiles topology = FolderOf(files, first).In("topology");
    const auto number = ReadID(topology, "core_id");
    const auto siblings = ReadCoreSiblings(topology);
    free.erase(first);
    if (!siblings && number) {
      const auto [same, isNew] = byNumber.try_emplace(*number, socket.fCores.size());
      if (!isNew) {
        socket.fCores[same->second].fThreads.insert(first);
        continue;
      }
    }
    TCore core;
    core.fThreads = Take(siblings.ValueOr({}), free);
    core.fThreads.insert(first);
    core.fNumber = number;
    core.fDie = ReadID(topology, "die_id");
    core.fCluster = ReadCluster(topology);
    socket.fCores.push_back(std::move(core));
  }
  socket.fCoreCount = static_cast<std::uint16_t>(socket.fCores.size());
}

/// Returns the sockets of those processors that have a topology in sysfs.
std::vector<TRawSocket> SocketsOfSysfs(const TFiles& files, TCPUs free) {
  std::vector<TRawSocket> sockets;
  std::map<std::uint32_t, std::size_t> byNumber;  // those whose siblings are not known
  while (!free.empty()) {
    const unsigned first = *free.begin();
    const TFiles topology = FolderOf(files, first).In("topology");
    const auto number = ReadID(topology, "physical_package_id");
    const auto siblings = ReadSocketSiblings(topology);
    free.erase(first);
    if (!siblings) {
      if (!number) continue;
      const auto [same, isNew] = byNumber.try_emplace(*number, sockets.size());
      if (!isNew) {
        sockets[same->second].fSocket.fThreads.insert(first);
        continue;
      }
    }
    TRawSocket raw;
    raw.fSocket.fThreads = Take(siblings.ValueOr({}), free);
    raw.fSocket.fThreads.insert(first);
    if (number) raw.fNumber = *number;
    sockets.push_back(std::move(raw));
  }
  for (TRawSocket& each : sockets) AddCores(files, each.fSocket);
  return sockets;
}

std::optional<std::uint32_t> OwnNumber(const TCPUFields& fields,
                                       std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (const auto number = fields.fOwn.GetNumber<std::uint32_t>(name)) return *number;
  }
  return std::nullopt;
}

/// Returns the sockets by the numbers in /proc/cpuinfo; one if that has none.
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

std::size_t CountOthers(TCPUs all, const TCPUs& some) {
  Take(some, all);
  return all.size();
}

std::size_t CountThreads(const std::vector<TRawSocket>& sockets) {
  std::size_t count = 0;
  for (const TRawSocket& each : sockets) count += each.fSocket.fThreads.size();
  return count;
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

/// Older kernels take the clusters of an ARM chip for sockets. Those of a chip with cores of
/// several kinds differ, and the sockets of one machine do not.
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

/// Names sockets and cores by their numbers, or by their order if two have the same.
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

/// Lists of the processors of each type, for machines with several.
struct TCoreTypes {
  explicit TCoreTypes(const TFiles& files)
      : fPerformance(ReadCPUSet(files, "/sys/devices/cpu_core/cpus", "")),
        fEfficiency(ReadCPUSet(files, "/sys/devices/cpu_atom/cpus", "")),
        fLowPower(ReadCPUSet(files, "/sys/devices/cpu_lowpower/cpus", "")) {}

  TText TypeOf(unsigned cpu) const {
    const auto has = [cpu](const TReading<TCPUs>& cpus) { return cpus && cpus->count(cpu) != 0; };
    if (has(fPerformance)) return "Performance";
    if (has(fEfficiency)) return "Efficiency";
    if (has(fLowPower)) return "Low power";
    for (const TReading<TCPUs>* cpus : {&fPerformance, &fEfficiency, &fLowPower}) {
      if (cpus->GetReason().IsError()) return Missing(cpus->GetReason());
    }
    return Missing("the processor has cores of one type only, as far as the kernel says");
  }

  TReading<TCPUs> fPerformance, fEfficiency, fLowPower;
};

TClockRange ReadClock(const TFiles& folder) {
  const TFiles scaling = folder.In("cpufreq");
  TMegahertz max = Scaled<std::uint32_t>(scaling.ReadNumber("cpuinfo_max_freq"), 1, 1000);
  // SPARC has a fixed clock, in Hz.
  if (!max && !folder.IsAbsent("clock_tick")) {
    max = Scaled<std::uint32_t>(folder.ReadNumber("clock_tick"), 1, 1000000);
  }
  return {max, Scaled<std::uint32_t>(scaling.ReadNumber("cpuinfo_min_freq"), 1, 1000)};
}

/// The compatible string of the device tree, for a processor without another name.
TText ReadCompatible(const TFiles& folder) {
  return folder.Read("of_node/compatible").and_then([&](const std::string& text) -> TText {
    std::string first = PrintableText(text.substr(0, text.find('\0')));
    if (first.empty()) return folder.MissingFrom("of_node/compatible", "is empty");
    return first;
  });
}

TCPUModel ReadModel(const TFiles& files, const TCPUInfo& info, unsigned cpu) {
  TCPUModel model = IdentifyCPU(info.FieldsOf(cpu));
  if (!model.fName) {
    if (TText compatible = ReadCompatible(FolderOf(files, cpu))) model.fName = compatible;
  }
  return model;
}

/// For cores of different models, such as those of ARM, the kernel has no lists by type.
void ExplainCoreTypes(TSocket& socket) {
  const auto isOfFirstModel = [&socket](const TCore& core) {
    return core.fModel.fName.ValueOr("") == socket.fCores.front().fModel.fName.ValueOr("");
  };
  if (std::all_of(socket.fCores.begin(), socket.fCores.end(), isOfFirstModel)) return;
  for (TCore& core : socket.fCores) {
    if (!core.fType) core.fType = Missing("the kernel tells models, which differ, but no types");
  }
}

void ReadCores(const TFiles& files, const TCPUInfo& info, const TCoreTypes& types,
               TSocket& socket) {
  for (TCore& core : socket.fCores) {
    const unsigned first = *core.fThreads.begin();
    core.fModel = ReadModel(files, info, first);
    core.fType = types.TypeOf(first);
    core.fClock = ReadClock(FolderOf(files, first));
    if (!core.fClock.fMax && core.fModel.fFixedClock) core.fClock.fMax = core.fModel.fFixedClock;
  }
  ExplainCoreTypes(socket);
}

/// Returns the names of all kinds of cores, each once, in their order.
std::string JoinNames(const TSocket& socket) {
  std::set<std::string> names;
  std::string all;
  for (const TCore& core : socket.fCores) {
    const std::string name = core.fModel.fName.ValueOr("");
    if (name.empty() || !names.insert(name).second) continue;
    all += (all.empty() ? "" : ", ") + name;
  }
  return all;
}

/// Describes the socket by its cores.
void Summarise(const TFiles& files, const TCPUInfo& info, TSocket& socket) {
  const unsigned first = *socket.fThreads.begin();
  if (socket.fCores.empty()) {
    socket.fModel = ReadModel(files, info, first);
    socket.fClock = ReadClock(FolderOf(files, first));
    if (!socket.fClock.fMax && socket.fModel.fFixedClock) {
      socket.fClock.fMax = socket.fModel.fFixedClock;
    }
    return;
  }
  socket.fModel = socket.fCores.front().fModel;
  socket.fClock = socket.fCores.front().fClock;
  for (const TCore& core : socket.fCores) {
    const TClockRange& clock = core.fClock;
    if (clock.fMax.ValueOr(0) > socket.fClock.fMax.ValueOr(0)) socket.fClock.fMax = clock.fMax;
    if (clock.fMin && *clock.fMin < socket.fClock.fMin.ValueOr(~0U)) {
      socket.fClock.fMin = clock.fMin;
    }
  }
  const std::string names = JoinNames(socket);
  if (!names.empty()) socket.fModel.fName = names;
  // Long, and the same in all cores.
  for (TCore& core : socket.fCores) core.fModel.fFlags = core.fModel.fBugs = TWords();
}

/// Describes a socket that only firmware knows.
TSocket SocketOfFirmware(const TSMBIOSStructure& structure, std::size_t number) {
  TSocket socket;
  socket.fID = "CPU" + std::to_string(number);
  socket.fCoreCount = TFirmwareSocket::ReadEnabledCores(structure);
  socket.fModel.fName = structure.ReadString(TFirmwareSocket::kVersion);
  socket.fModel.fVendor = structure.ReadString(TFirmwareSocket::kManufacturer);
  socket.fModel.fCurrentClock = TFirmwareSocket::ReadCurrentClock(structure);
  const TMissing unknown = Missing("only the kernel knows it, and its files are missing");
  socket.fModel.fDescription = socket.fModel.fVendorID = socket.fModel.fFamily = unknown;
  socket.fModel.fModel = socket.fModel.fStepping = socket.fModel.fMicrocode = unknown;
  socket.fModel.fFlags = socket.fModel.fBugs = unknown;
  socket.fModel.fPhysicalAddressBits = socket.fModel.fVirtualAddressBits = unknown;
  socket.fClock.fMin = unknown;
  return socket;
}

}  // namespace

TReading<TCPUs> ReadCPUSet(const TFiles& files, const std::string& list, const std::string& mask) {
  const TText text = files.Read(list);
  if (!text && !mask.empty() && files.IsAbsent(list)) {
    return files.Read(mask).and_then([&](const std::string& digits) -> TReading<TCPUs> {
      if (auto cpus = ParseCPUMask(digits.substr(0, digits.find('\n')))) return *cpus;
      return files.MissingFrom(mask, "no mask of processors");
    });
  }
  return text.and_then([&](const std::string& numbers) -> TReading<TCPUs> {
    if (auto cpus = ParseCPUList(numbers.substr(0, numbers.find('\n')))) return *cpus;
    return files.MissingFrom(list, "no list of processors");
  });
}

namespace {

/// A machine has a processor: an empty list says nothing.
TReading<TCPUs> ReadPresent(const TFiles& files) {
  const char* const file = "present";
  return ReadCPUSet(files, file, "").and_then([&](const TCPUs& cpus) -> TReading<TCPUs> {
    if (cpus.empty()) return files.MissingFrom(file, "no list of processors");
    return cpus;
  });
}

}  // namespace

TCPULists::TCPULists(const THost& host)
    : fPresent(ReadPresent(host.In(TTopology::kFolder))),
      fOnline(ReadCPUSet(host.In(TTopology::kFolder), "online", "")) {}

TTopology::TTopology(const THost& host) {
  const TFiles files = host.In(kFolder);
  const auto& info = host.Shared<TCPUInfo>();
  const TCPUs folders = ListFolders(files);
  TCPUs online = ReadOnline(host, files, folders);
  fOffline = host.Shared<TCPULists>().fPresent.ValueOr(folders);
  Take(online, fOffline);

  std::vector<TRawSocket> raw = SocketsOfSysfs(files, Take(folders, online));
  if (CountOthers(info.GetProcessors(), fOffline) > CountThreads(raw)) raw = SocketsOfCPUInfo(info);
  MergeClusters(raw, info);
  NameAll(raw);
  const TCoreTypes types(host);
  fSockets.reserve(raw.size());
  for (TRawSocket& each : raw) {
    TSocket& socket = each.fSocket;
    ReadCores(files, info, types, socket);
    Summarise(files, info, socket);
    for (const unsigned cpu : socket.fThreads) fSocketOf[cpu] = fSockets.size();
    for (std::size_t i = 0; i < socket.fCores.size(); ++i) {
      for (const unsigned cpu : socket.fCores[i].fThreads) fCoreOf[cpu] = i;
    }
    Take(socket.fThreads, fOffline);
    fSockets.push_back(std::move(socket));
  }
  AddFirmware(host);
  if (fSockets.empty()) fReason = info.GetReason();
}

void TTopology::AddFirmware(const THost& host) {
  const std::vector<TSMBIOSStructure> populated = ReadPopulatedSockets(host);
  if (fSockets.empty()) {
    for (const TSMBIOSStructure& each : populated) {
      fSockets.push_back(SocketOfFirmware(each, fSockets.size()));
    }
  }
  const bool isSame = populated.size() == fSockets.size();
  const TMissing missing =
      !host.GetSMBIOS() ? Missing(host.GetSMBIOS().GetReason())
                        : Missing("firmware knows " + std::to_string(populated.size()) +
                                  " processors, the kernel " + std::to_string(fSockets.size()));
  for (std::size_t i = 0; i < fSockets.size(); ++i) {
    TSocket& socket = fSockets[i];
    socket.fFirmware = isSame ? TReading<TSMBIOSStructure>(populated[i]) : missing;
    if (!isSame || socket.fClock.fMax) continue;
    if (const TMegahertz max = TFirmwareSocket::ReadMaxClock(populated[i])) {
      socket.fClock.fMax = max;
    }
  }
}

const TSocket* TTopology::FindSocket(unsigned processor) const {
  const auto found = fSocketOf.find(processor);
  return found == fSocketOf.end() ? nullptr : &fSockets[found->second];
}

const TCore* TTopology::FindCore(unsigned processor) const {
  const TSocket* const socket = FindSocket(processor);
  const auto found = fCoreOf.find(processor);
  return socket == nullptr || found == fCoreOf.end() ? nullptr : &socket->fCores[found->second];
}

}  // namespace NVORNQDX20
