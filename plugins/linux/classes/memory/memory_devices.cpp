// SPDX-License-Identifier: Apache-2.0
#include "memory_devices.h"

#include <algorithm>
#include <map>
#include <set>

namespace NVORNQDX20 {
namespace {

const char* const kControllers = "/sys/devices/system/edac/mc";
constexpr std::uint16_t kUnknownSize = 0xFFFF;
constexpr std::uint16_t kExtendedSize = 0x7FFF;
constexpr std::uint8_t kUseOfSystem = 3;
constexpr unsigned int kMiB = 20;

/// Returns the size in bytes, 0 for an empty socket. It is in MiB, in KiB with the highest bit, or
/// too large for the field, and in another one.
TNumber ReadSize(const TSMBIOSStructure& socket) {
  return socket.ReadNumber<std::uint16_t>(0x0C).and_then([&socket](std::uint16_t size) -> TNumber {
    if (size == kUnknownSize) return socket.MissingFrom("the size is unknown");
    if (size == kExtendedSize) {
      return socket.ReadNumber<std::uint32_t>(0x1C).map([](std::uint32_t extended) {
        return static_cast<std::uint64_t>(extended & 0x7FFFFFFFU) << kMiB;
      });
    }
    return static_cast<std::uint64_t>(size & 0x7FFFU) << ((size & 0x8000U) != 0 ? 10U : kMiB);
  });
}

/// Returns texts that are all different: the first ones that are, for example the place, or bank
/// and place, or either with a number.
void MakeTags(std::vector<TMemoryDevice>& devices, const std::vector<std::string>& fuller) {
  std::map<std::string, int> places;
  std::map<std::string, int> fullPlaces;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    ++places[devices[i].fName.ValueOr("")];
    ++fullPlaces[fuller[i]];
  }
  std::set<std::string> taken;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const std::string place = devices[i].fName.ValueOr("");
    std::string tag = place;
    if (place.empty() || places[place] > 1) {
      tag = !fuller[i].empty() && fullPlaces[fuller[i]] == 1 ? fuller[i]
                                                             : "Memory " + std::to_string(i + 1);
    }
    // A place may look like the tag of another one.
    while (!taken.insert(tag).second) tag += "'";
    devices[i].fTag = tag;
  }
}

TMemoryErrors ErrorsIn(const TFiles& controllers, const std::string& controller,
                       const std::string& name) {
  const TFiles folder = controllers.In(controller).In(name);
  const bool isRow = name.compare(0, 5, "csrow") == 0;
  const TNumber size = folder.ReadNumber(isRow ? "size_mb" : "size");
  return {controller + "/" + name,
          folder.ReadLine(isRow ? "ch0_dimm_label" : "dimm_label"),
          Scaled(size, std::uint64_t{1} << kMiB),
          folder,
          controllers.In(controller).ReadLine("mc_name"),
          isRow ? "" : "dimm_"};
}

bool BeginsWith(const std::string& text, const char* prefix) { return text.rfind(prefix, 0) == 0; }

}  // namespace

TMemoryDevices::TMemoryDevices(const THost& host)
    : fArrays(ListFirmware(host, 16, "Memory Array", {})) {
  AddSockets(host);
  ReadErrors(host);
  if (fAll.empty()) AddModulesOfErrors();
}

void TMemoryDevices::AddSockets(const THost& host) {
  TInstances<TPhysicalElement> sockets = ListFirmware(host, 17, "Memory", {});
  fReason = sockets.fReason;
  if (sockets.fAll.empty()) return;
  std::map<std::uint16_t, const TPhysicalElement*> arrays;
  for (const TPhysicalElement& array : fArrays.fAll) {
    arrays.emplace(array.fStructure->GetHandle(), &array);
  }
  std::map<std::uint16_t, TSMBIOSStructure> mappings;
  for (const TSMBIOSStructure& mapping : host.GetSMBIOS()->OfType(20)) {
    const auto device = mapping.ReadNumber<std::uint16_t>(0x0C);
    if (device) mappings.emplace(*device, mapping);
  }
  std::vector<std::string> fuller;
  fuller.reserve(sockets.fAll.size());
  fAll.reserve(sockets.fAll.size());
  for (const TPhysicalElement& socket : sockets.fAll) {
    TMemoryDevice device{socket, {}, false, true, {}, {}, {}};
    const TSMBIOSStructure& structure = *socket.fStructure;
    device.fName = structure.ReadString(0x10);
    device.fCapacity = ReadSize(structure);
    device.fIsInstalled = device.fCapacity.ValueOr(1) != 0;
    const auto array = arrays.find(structure.ReadNumber<std::uint16_t>(0x04).ValueOr(0));
    if (array != arrays.end()) {
      device.fArray = {"VORNSG_MemoryArray", array->second->fTag};
      const auto use = array->second->fStructure->ReadNumber<std::uint8_t>(0x05);
      device.fIsSystem = use.ValueOr(kUseOfSystem) == kUseOfSystem;
    }
    const auto mapping = mappings.find(structure.GetHandle());
    device.fMapping = mapping == mappings.end()
                          ? TReading<TSMBIOSStructure>(structure.MissingFrom(
                                "the table has no mapped address (type 20) for it"))
                          : TReading<TSMBIOSStructure>(mapping->second);
    const std::string bank = structure.ReadString(0x11).ValueOr("");
    fuller.push_back(bank.empty() ? "" : bank + " " + device.fName.ValueOr(""));
    fAll.push_back(std::move(device));
  }
  MakeTags(fAll, fuller);
}

void TMemoryDevices::ReadErrors(const THost& host) {
  const TFiles folder = host.In(kControllers);
  const auto controllers = folder.List();
  fErrorsReason = controllers.GetReason();
  for (const std::string& controller : controllers.ValueOr({})) {
    if (!BeginsWith(controller, "mc")) continue;
    const auto listed = folder.List(controller);
    if (listed.GetReason().IsError()) fErrorsReason.Add(listed.GetReason());
    const std::vector<std::string> names = listed.ValueOr({});
    // A kernel with both has the same chips in rows.
    const bool hasModules = std::any_of(names.begin(), names.end(), [](const std::string& name) {
      return BeginsWith(name, "dimm") || BeginsWith(name, "rank");
    });
    for (const std::string& name : names) {
      const bool isModule = BeginsWith(name, "dimm") || BeginsWith(name, "rank");
      if (PrintableText(name) != name || (hasModules ? !isModule : !BeginsWith(name, "csrow"))) {
        continue;
      }
      fErrors.push_back(ErrorsIn(folder, controller, name));
    }
  }
}

/// Without the firmware's table, what EDAC knows is better than nothing.
void TMemoryDevices::AddModulesOfErrors() {
  const TMissing missing = Missing(fReason);
  std::vector<std::string> fuller;
  fuller.reserve(fErrors.size());
  for (const TMemoryErrors& each : fErrors) {
    if (each.fSize.ValueOr(1) == 0) continue;
    TMemoryDevice module{{each.fID, each.fLabel, missing}, each.fSize, true, true, {}, {}, missing};
    module.fMemoryType = each.fFolder.ReadLine(std::string(each.fPrefix) + "mem_type");
    fAll.push_back(std::move(module));
    fuller.push_back(each.fID);
  }
  MakeTags(fAll, fuller);
}

TInstances<TMemoryDevice> MemoryDevicesWhere(const THost& host,
                                             bool (*isWanted)(const TMemoryDevice&),
                                             const char* none) {
  const auto& devices = host.Shared<TMemoryDevices>();
  TInstances<TMemoryDevice> wanted({}, devices.GetReason());
  std::copy_if(devices.GetAll().begin(), devices.GetAll().end(), std::back_inserter(wanted.fAll),
               isWanted);
  if (wanted.fAll.empty() && wanted.fReason.empty()) wanted.fReason = none;
  return wanted;
}

}  // namespace NVORNQDX20
