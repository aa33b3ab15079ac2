// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Memory: the memory of the machine as a whole.
#include <charconv>

#include "classes/logical_device.h"
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

const char* const kFolder = "/sys/devices/system/memory";

/// The kernel divides the memory into blocks of equal size, which can be taken out of use.
struct TMemory : TDevice {
  TNumber fBlockSize;
  TNumber fBlocks;
  TNumber fOnlineBlocks;
  TNumber fInstalled;
};

/// The file has hexadecimal digits only.
TNumber ReadBlockSize(const TFiles& folder) {
  return folder.ReadLine("block_size_bytes").and_then([&folder](const std::string& digits) {
    return ToNumber("0x" + digits, folder.PathOf("block_size_bytes"));
  });
}

void CountBlocks(const TFiles& folder, TMemory& memory) {
  const auto names = folder.List();
  if (!names) {
    memory.fBlocks = memory.fOnlineBlocks = Missing(names.GetReason());
    return;
  }
  std::uint64_t blocks = 0;
  std::uint64_t online = 0;
  TText unread = std::string();
  for (const std::string& name : *names) {
    if (name.size() < 7 || name.compare(0, 6, "memory") != 0 || !ParseNumber(name.substr(6))) {
      continue;
    }
    ++blocks;
    const TText state = folder.ReadLine(name + "/state");
    if (!state) unread = state;
    if (state && *state == "online") ++online;
  }
  if (blocks == 0) {
    memory.fBlocks = memory.fOnlineBlocks = folder.MissingFrom("", "has no blocks");
    return;
  }
  memory.fBlocks = blocks;
  memory.fOnlineBlocks = unread.map([online](const std::string&) { return online; });
}

/// The sum of all modules of the machine's own memory.
TNumber SumModules(const TMemoryDevices& devices) {
  std::uint64_t sum = 0;
  for (const TMemoryDevice& device : devices.GetAll()) {
    if (!device.fIsSystem) continue;
    if (!device.fCapacity) return Missing(device.fCapacity.GetReason());
    sum += *device.fCapacity;
  }
  if (sum != 0) return sum;
  return Missing(devices.GetReason().empty() ? "no socket has a module" : devices.GetReason());
}

TInstances<TMemory> ListMemory(const THost& host) {
  const TFiles folder = host.In(kFolder);
  TMemory memory{{"Memory", TText("Memory")}, ReadBlockSize(folder), {}, {}, {}};
  CountBlocks(folder, memory);
  memory.fInstalled = SumModules(host.Shared<TMemoryDevices>());
  TInstances<TMemory> all;
  if (memory.fBlocks || memory.fInstalled) {
    all.fAll.push_back(memory);
  } else {
    all.Miss(memory.fBlocks.GetReason());
    all.Miss(memory.fInstalled.GetReason());
  }
  return all;
}

TNumber ReadOnlineSize(const TMemory& memory) {
  return memory.fBlockSize.and_then(
      [&memory](std::uint64_t size) { return Scaled(memory.fOnlineBlocks, size); });
}

}  // namespace

TClass MemoryClass() {
  return THostTable<TMemory>{
      "VORNSG_Memory",
      "The memory of the machine as a whole.",
      ListMemory,
      {{"BlockSize", "The parts that the kernel takes into use or out of it.", &TMemory::fBlockSize,
        TUnit{"byte"}},
       {"NumberOfBlocks", "All of these parts.", &TMemory::fBlocks},
       {"ConsumableBlocks", "The parts that are in use.", &TMemory::fOnlineBlocks},
       {"OnlineSize", "The size of the parts that are in use.", ReadOnlineSize, TUnit{"byte"}},
       {"InstalledSize", "The sum of the modules.", &TMemory::fInstalled, TUnit{"byte"}},
       {"Volatile", "Whether the contents are lost without power.", Constant(true)}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
