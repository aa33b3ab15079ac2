// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_CacheMemory: the caches of processors, and what ties them to their processors.
#include <utility>

#include "classes/logical_device.h"
#include "sources/processors/caches.h"

namespace NVORNQDX20 {
namespace {

const char* const kCacheClass = "VORNSG_CacheMemory";

constexpr TConstantEnumeration kLevels = {{1, "Other"},     {2, "Unknown"},  {3, "Primary"},
                                          {4, "Secondary"}, {5, "Tertiary"}, {6, "Not Applicable"}};
constexpr TConstantEnumeration kTypes = {
    {1, "Other"}, {2, "Unknown"}, {3, "Instruction"}, {4, "Data"}, {5, "Unified"}};
constexpr TConstantEnumeration kPolicies = {{1, "Other"},
                                            {2, "Unknown"},
                                            {3, "Write Back"},
                                            {4, "Write Through"},
                                            {5, "Varies with Address"},
                                            {6, "Determination Per I/O"}};

struct TCacheDevice : TDevice {
  TCache fCache;
};

TInstances<TCacheDevice> ListCaches(const THost& host) {
  const auto& caches = host.Shared<TCaches>();
  TInstances<TCacheDevice> devices({}, caches.fReason);
  devices.fAll.reserve(caches.fAll.size());
  for (const TCache& cache : caches.fAll) {
    const std::string name = CacheName(cache.fLevel, cache.fKind);
    devices.fAll.push_back({{cache.fID, name.empty() ? cache.fID : name}, cache});
  }
  return devices;
}

template <typename T>
auto Of(T TCache::*member) {
  return [member](const TCacheDevice& device) { return device.fCache.*member; };
}

TReading<std::uint16_t> Level(const TCacheDevice& device) {
  return device.fCache.fLevel.map([](std::uint16_t level) {
    constexpr std::uint16_t kOther = 1;
    return level >= 1 && level <= 3 ? static_cast<std::uint16_t>(level + 2) : kOther;
  });
}

/// Returns the number of the enumeration's text.
TReading<std::uint16_t> NumberOf(const TText& text, const char* first, const char* second) {
  return text.map([=](const std::string& name) {
    constexpr std::uint16_t kOther = 1;
    return name == first ? std::uint16_t{3} : name == second ? std::uint16_t{4} : kOther;
  });
}

TReading<std::uint16_t> Type(const TCacheDevice& device) {
  constexpr std::uint16_t kUnified = 5;
  if (device.fCache.fKind.ValueOr("") == "Unified") return kUnified;
  return NumberOf(device.fCache.fKind, "Instruction", "Data");
}

TReading<std::uint16_t> WritePolicy(const TCacheDevice& device) {
  constexpr std::uint16_t kVaries = 5;
  if (device.fCache.fWritePolicy.ValueOr("") == "Varies") return kVaries;
  return NumberOf(device.fCache.fWritePolicy, "WriteBack", "WriteThrough");
}

TText Users(const TCacheDevice& device) { return device.fCache.fUsers.map(FormatCPUList); }

TInstanceName SocketOf(const TCacheDevice& device) {
  return {"VORNSG_Processor", device.fCache.fSocket};
}

/// Those whose processors are known.
TInstances<TCacheDevice> ListCachesOfSockets(const THost& host) {
  TInstances<TCacheDevice> all = ListCaches(host);
  TInstances<TCacheDevice> some({}, all.fReason);
  for (TCacheDevice& each : all.fAll) {
    if (!each.fCache.fSocket.empty()) some.fAll.push_back(std::move(each));
  }
  return some;
}

}  // namespace

TClass CacheMemoryClass() {
  const TUnit bytes{"byte"};
  return THostTable<TCacheDevice>{
      kCacheClass,
      "A cache of a processor; one that cores share is one instance.",
      ListCaches,
      {{"Level", "How close it is to the core.", Level, kLevels},
       {"CacheLevel", "The same as a number: 1 is the closest.", Of(&TCache::fLevel)},
       {"CacheType", "What it holds.", Type, kTypes},
       {"BlockSize", "The unit of NumberOfBlocks.", Constant(std::uint64_t{1}), bytes},
       {"NumberOfBlocks", "Its size, in units of BlockSize.", Of(&TCache::fSize)},
       {"LineSize", "The size of a line.", Of(&TCache::fLineSize), bytes},
       {"Ways", "How many lines can hold the same address.", Of(&TCache::fWays)},
       {"Sets", "How many groups of such lines there are.", Of(&TCache::fSets)},
       {"WritePolicy", "When it writes to memory.", WritePolicy, kPolicies},
       {"LogicalProcessors", "The numbers of the logical processors that share it.", Users}}}
      .DerivedFrom(LogicalDeviceTable());
}

TClass AssociatedCacheMemoryClass() {
  return THostTable<TCacheDevice>{
      "VORNSG_AssociatedCacheMemory",
      "Ties a cache to its processor.",
      ListCachesOfSockets,
      {{"Antecedent", "The cache.",
        [](const TCacheDevice& cache) {
          return TInstanceName{kCacheClass, cache.fID};
        },
        kKey, TRefersTo{kCacheClass}},
       {"Dependent", "The processor.", SocketOf, kKey, TRefersTo{"VORNSG_Processor"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
