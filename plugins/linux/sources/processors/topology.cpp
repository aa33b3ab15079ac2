// SPDX-License-Identifier: Apache-2.0
#include "topology.h"

#include <algorithm>
#include <set>
#include <utility>

#include "grouping.h"

namespace NVORNQDX20 {
namespace {

/// Returns the processors that have a folder.
TCPUs ListFolders(const TFiles& files, TReason& problem) {
  TCPUs all;
  const auto names = files.List();
  NoteError(problem, names.GetReason());
  for (const std::string& name : names ? *names : std::vector<std::string>()) {
    if (name.substr(0, 3) != "cpu") continue;
    const auto number = ParseNumber<unsigned>(std::string_view(name).substr(3));
    if (number && *number < kMaxCPUs) all.insert(*number);
  }
  return all;
}

/// Kernels before 2.6.26 have no list of what is online.
TCPUs ReadOnline(const TCPULists& lists, const TFiles& files, TCPUs folders, TReason& problem) {
  if (lists.fOnline) return *lists.fOnline;
  NoteError(problem, lists.fOnline.GetReason());
  TCPUs online;
  // Without the list, what is not even present would count as online.
  for (const unsigned cpu : Take(lists.fPresent.ValueOr(folders), folders)) {
    if (files.ReadFlag("cpu" + std::to_string(cpu) + "/online").ValueOr(true)) online.insert(cpu);
  }
  return online;
}

/// The folder of one logical processor.
TFiles FolderOf(const TFiles& files, unsigned cpu) { return files.In("cpu" + std::to_string(cpu)); }

std::size_t CountOthers(TCPUs all, const TCPUs& some) {
  Take(some, all);
  return all.size();
}

std::size_t CountThreads(const std::vector<TRawSocket>& sockets) {
  std::size_t count = 0;
  for (const TRawSocket& each : sockets) count += each.fSocket.fThreads.size();
  return count;
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

TTopology::TTopology(const THost& host) {
  const TFiles files = host.In(kProcessorFolder);
  const auto& info = host.Shared<TCPUInfo>();
  const auto& lists = host.Shared<TCPULists>();
  const TCPUs folders = ListFolders(files, fReason);
  TCPUs online = ReadOnline(lists, files, folders, fReason);
  NoteError(fReason, lists.fPresent.GetReason());
  // Folders also stand for processors that a machine has room for.
  const bool mayBeAny = lists.fPresent.GetReason().IsError();
  fOffline = mayBeAny ? TCPUs() : lists.fPresent.ValueOr(folders);
  Take(online, fOffline);

  std::vector<TRawSocket> raw = SocketsOfSysfs(files, Take(folders, online), fReason);
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
  if (fSockets.empty() && fReason.empty()) fReason = info.GetReason();
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
