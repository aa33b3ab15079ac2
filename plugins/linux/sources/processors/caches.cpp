// SPDX-License-Identifier: Apache-2.0
#include "caches.h"

#include <initializer_list>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "topology.h"

namespace NVORNQDX20 {
namespace {

/// A number of which 0 means that the kernel does not know it.
TReading<std::uint32_t> ReadKnown(const TFiles& files, const char* name) {
  auto number = files.ReadNumber<std::uint32_t>(name);
  if (number && *number == 0) return files.MissingFrom(name, "not known");
  return number;
}

TCache ReadCache(const TFiles& folder) {
  TCache cache;
  cache.fLevel = folder.ReadNumber<std::uint16_t>("level");
  cache.fKind = folder.ReadLine("type");
  cache.fSize = ParseCacheSize(folder.ReadLine("size"), folder.PathOf("size"));
  cache.fLineSize = ReadKnown(folder, "coherency_line_size");
  cache.fWays = ReadKnown(folder, "ways_of_associativity");
  cache.fSets = ReadKnown(folder, "number_of_sets");
  cache.fWritePolicy = folder.ReadLine("write_policy");
  cache.fUsers = ReadCPUSet(folder, "shared_cpu_list", "shared_cpu_map");
  return cache;
}

/// Collects caches, each once.
class TCollector {
 public:
  explicit TCollector(std::vector<TCache>& all) : fAll(all) {}

  void EnterSocket(const std::string& id) { fSocket = id; }
  /// Why the caches of a processor could not be listed; empty if all could.
  const TReason& GetFailure() const { return fFailure; }

  void AddFolders(const TFiles& folder, unsigned cpu) {
    const auto names = folder.List();
    if (!names) {
      fFailure = names.GetReason();
      return;
    }
    for (const std::string& name : *names) {
      if (name.substr(0, 5) != "index") continue;
      // A shared cache is in the folder of each processor that has it, under the same name.
      TCPUs& known = fKnown[name];
      if (known.count(cpu) != 0) continue;
      TCache cache = ReadCache(folder.In(name));
      if (!cache.fUsers) cache.fUsers = TCPUs{cpu};
      known.insert(cache.fUsers->begin(), cache.fUsers->end());
      Add(std::move(cache));
    }
  }

  /// Adds the caches of SPARC: "l1_dcache_size", in bytes.
  void AddFiles(const TFiles& folder, unsigned cpu) {
    struct TKind {
      const char* fPrefix;
      std::uint16_t fLevel;
      const char* fKind;
    };
    constexpr TKind kKinds[] = {{"l1_dcache", 1, "Data"},
                                {"l1_icache", 1, "Instruction"},
                                {"l2_cache", 2, "Unified"},
                                {"l3_cache", 3, "Unified"}};
    for (const TKind& kind : kKinds) {
      const std::string prefix = kind.fPrefix;
      const TReading<bool> exists = folder.Exists(prefix + "_size");
      if (!exists) fFailure = exists.GetReason();
      if (!exists.ValueOr(false)) continue;
      TCache cache;
      cache.fLevel = kind.fLevel;
      cache.fKind = kind.fKind;
      cache.fSize = folder.ReadNumber(prefix + "_size");
      cache.fLineSize = ReadKnown(folder, (prefix + "_line_size").c_str());
      const TMissing unknown =
          folder.MissingFrom(prefix + "_size", "of SPARC, which tells no more");
      cache.fWays = cache.fSets = unknown;
      cache.fWritePolicy = unknown;
      cache.fUsers = TCPUs{cpu};
      Add(std::move(cache));
    }
  }

 private:
  void Add(TCache cache) {
    const std::string name = CacheName(cache.fLevel, cache.fKind);
    if (name.empty() || cache.fUsers->empty()) return;
    cache.fID = name + "-" + std::to_string(*cache.fUsers->begin());
    cache.fSocket = fSocket;
    if (fIDs.insert(cache.fID).second) fAll.push_back(std::move(cache));
  }

  std::vector<TCache>& fAll;
  std::string fSocket;
  TReason fFailure;
  std::map<std::string, TCPUs> fKnown;
  std::set<std::string> fIDs;
};

/// Returns the text after "name=", up to a blank.
TText TakeField(const std::string& line, const std::string& name) {
  const std::string padded = " " + line + " ";
  const std::size_t at = padded.find(" " + name + "=");
  if (at == std::string::npos) return Missing("/proc/cpuinfo: no '" + name + "'");
  const std::size_t begin = at + name.size() + 2;
  return padded.substr(begin, padded.find(' ', begin) - begin);
}

/// Parses lines of IBM Z: "cache0 : level=1 type=Data scope=Private size=96K line_size=256 ...".
/// How many there are of those that are not shared is not known.
std::vector<TCache> CachesOfZ(const TCPUFields& fields) {
  std::vector<TCache> all;
  for (int i = 0; i < 16; ++i) {
    const std::string name = "cache" + std::to_string(i);
    const TText line = fields.Get({name.c_str()});
    if (!line) break;
    const std::string source = "/proc/cpuinfo: " + name;
    TCache cache;
    cache.fLevel = ToNumber<std::uint16_t>(TakeField(*line, "level"), source);
    cache.fKind = TakeField(*line, "type");
    cache.fSize = ParseCacheSize(TakeField(*line, "size"), source);
    cache.fLineSize = ToNumber<std::uint32_t>(TakeField(*line, "line_size"), source);
    cache.fWays = ToNumber<std::uint32_t>(TakeField(*line, "associativity"), source);
    cache.fSets = Missing(source + ": no number of sets");
    cache.fWritePolicy = Missing(source + ": no policy of writes");
    cache.fUsers = Missing(source + ": does not say which processors share it");
    cache.fID = CacheName(cache.fLevel, cache.fKind);
    if (!cache.fID.empty()) all.push_back(std::move(cache));
  }
  return all;
}

/// Returns a size in KiB, or in units of 64 KiB if the highest bit says so.
TNumber FirmwareSize(const TSMBIOSStructure& structure) {
  constexpr std::size_t kSize = 0x09, kLongSize = 0x17;
  constexpr std::uint64_t kIsCoarse = 0x8000, kLongIsCoarse = 0x80000000;
  const auto size = structure.ReadNumber<std::uint16_t>(kSize);
  if (!size) return Missing(size.GetReason());
  if (*size == 0) return structure.MissingFrom("the cache is not there");
  const std::uint64_t unit = 1024;
  if (*size == 0xffff) {
    const auto longSize = structure.ReadNumber<std::uint32_t>(kLongSize);
    if (!longSize) return Missing(longSize.GetReason());
    return (*longSize & ~kLongIsCoarse) * unit * ((*longSize & kLongIsCoarse) != 0 ? 64 : 1);
  }
  return (*size & ~kIsCoarse) * unit * ((*size & kIsCoarse) != 0 ? 64 : 1);
}

/// Returns the name of an enumeration's value: types and policies of DSP0134.
TText NameOf(const TReading<unsigned>& number, std::initializer_list<const char*> names) {
  if (!number) return Missing(number.GetReason());
  if (*number < names.size() && *std::next(names.begin(), *number) != nullptr) {
    return *std::next(names.begin(), *number);
  }
  return Missing("firmware does not know it");
}

/// Returns how many lines can hold the same address: the associativity of DSP0134.
TReading<std::uint32_t> WaysOfFirmware(const TSMBIOSStructure& structure) {
  constexpr std::size_t kAssociativity = 0x12;
  constexpr std::uint32_t kWays[] = {0, 0, 0, 1, 2, 4, 0, 8, 16, 12, 24, 32, 48, 64, 20};
  return structure.ReadNumber<std::uint8_t>(kAssociativity)
      .and_then([&](std::uint8_t number) -> TReading<std::uint32_t> {
        if (number < std::size(kWays) && kWays[number] != 0) return kWays[number];
        constexpr std::uint8_t kFully = 6;
        return structure.MissingFrom(number == kFully ? "fully associative"
                                                      : "firmware does not know it");
      });
}

TCache CacheOfFirmware(const TSMBIOSStructure& structure) {
  constexpr std::size_t kConfiguration = 0x05, kType = 0x11;
  const auto configuration = structure.ReadNumber<std::uint16_t>(kConfiguration);
  const auto widen = [](auto number) { return unsigned{number}; };
  TCache cache;
  cache.fLevel = configuration.map(
      [](std::uint16_t bits) { return static_cast<std::uint16_t>((bits & 7U) + 1U); });
  cache.fKind = NameOf(structure.ReadNumber<std::uint8_t>(kType).map(widen),
                       {nullptr, "Other", nullptr, "Instruction", "Data", "Unified"});
  cache.fWritePolicy =
      NameOf(configuration.map([](std::uint16_t bits) { return (bits >> 8U) & 3U; }),
             {"WriteThrough", "WriteBack", "Varies"});
  cache.fSize = FirmwareSize(structure);
  cache.fWays = WaysOfFirmware(structure);
  const TMissing unknown = structure.MissingFrom("firmware does not say it");
  cache.fLineSize = cache.fSets = unknown;
  cache.fUsers = unknown;
  return cache;
}

/// The caches of each processor: structures of type 7 (DMTF DSP0134), each of which is the sum of
/// those of all cores.
std::vector<TCache> CachesOfFirmware(const THost& host, const std::vector<TSocket>& sockets) {
  std::vector<TCache> all;
  for (const TSocket& socket : sockets) {
    for (std::size_t i = 0; socket.fFirmware && i < 3; ++i) {
      const auto handle =
          socket.fFirmware->ReadNumber<std::uint16_t>(TFirmwareSocket::kFirstCache + 2 * i);
      const TSMBIOSStructure* const structure = handle ? host.GetSMBIOS()->Find(*handle) : nullptr;
      if (structure == nullptr || structure->GetType() != 7) continue;
      TCache cache = CacheOfFirmware(*structure);
      if (!cache.fSize) continue;
      cache.fSocket = socket.fID;
      cache.fID = socket.fID + "-L" + std::to_string(i + 1);
      all.push_back(std::move(cache));
    }
  }
  return all;
}

}  // namespace

TCaches::TCaches(const THost& host) {
  const auto& topology = host.Shared<TTopology>();
  const TFiles files = host.In(kProcessorFolder);
  TCollector collector(fAll);
  for (const TSocket& socket : topology.GetSockets()) {
    collector.EnterSocket(socket.fID);
    for (const unsigned cpu : socket.fThreads) {
      const TFiles folder = files.In("cpu" + std::to_string(cpu));
      if (folder.IsAbsent("cache")) {
        collector.AddFiles(folder, cpu);
      } else {
        collector.AddFolders(folder.In("cache"), cpu);
      }
    }
  }
  if (fAll.empty()) fAll = CachesOfZ(host.Shared<TCPUInfo>().FieldsOf(0));
  if (fAll.empty()) fAll = CachesOfFirmware(host, topology.GetSockets());
  fReason = collector.GetFailure();
  if (!fAll.empty()) return;
  if (fReason.empty()) fReason = topology.GetReason();
  if (fReason.empty()) {
    fReason = std::string("no processor in ") + kProcessorFolder + " has caches";
  }
}

std::string CacheName(const TReading<std::uint16_t>& level, const TText& kind) {
  if (!level) return {};
  const std::string known = kind.ValueOr("");
  const char* const suffix = known == "Data" ? "d" : known == "Instruction" ? "i" : "";
  return "L" + std::to_string(*level) + suffix;
}

TNumber ParseCacheSize(const TText& size, const std::string& source) {
  return size.and_then([&source](const std::string& text) -> TNumber {
    const char unit = text.empty() ? '\0' : text.back();
    const std::uint64_t factor = unit == 'K' ? 1U << 10U : unit == 'M' ? 1U << 20U : 1;
    const std::string digits = factor == 1 ? text : text.substr(0, text.size() - 1);
    TNumber bytes = Scaled(ToNumber(digits, source), factor);
    if (bytes && *bytes == 0) return Missing(source + ": not known");
    return bytes;
  });
}

}  // namespace NVORNQDX20
