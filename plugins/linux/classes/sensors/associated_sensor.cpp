// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_AssociatedSensor: ties sensors to what they watch.
#include <optional>

#include "classes/logical_device.h"
#include "firmware_probe.h"
#include "sources/processors/topology.h"
#include "sources/sensors/chips.h"
#include "sources/sensors/power.h"

namespace NVORNQDX20 {
namespace {

/// Returns the number after the prefix; null for another text.
std::optional<std::uint32_t> NumberAfter(const char* prefix, const std::string& text) {
  const std::size_t size = std::char_traits<char>::length(prefix);
  if (text.compare(0, size, prefix) != 0) return std::nullopt;
  return ParseNumber<std::uint32_t>(text.substr(size));
}

/// The sensors of processors. One of each chip has a label such as "Package id 0", which names its
/// socket. The number in the name of the device is that of the socket, too, unless a processor has
/// several dies.
class TProcessorSensors {
 public:
  static constexpr const char* kDriver = "coretemp.";

  TProcessorSensors(const THost& host, const std::vector<TChannel>& channels) : fHost(host) {
    for (const TChannel& channel : channels) {
      if (NameOf(channel).rfind(kDriver, 0) != 0) continue;
      const auto number =
          NumberAfter("Package id ", channel.fFolder.ReadLine(channel.PathOf("label")).ValueOr(""));
      if (number) fPackages[channel.fDevice] = *number;
    }
  }

  static std::string NameOf(const TChannel& channel) {
    return channel.fDevice.substr(channel.fDevice.rfind('/') + 1);
  }

  /// Returns the processor that a sensor is in; empty if it is not known.
  TReading<TInstanceName> ProcessorOf(const TChannel& channel) const {
    const auto told = fPackages.find(channel.fDevice);
    const auto package =
        told == fPackages.end() ? NumberAfter(kDriver, NameOf(channel)) : told->second;
    for (const TSocket& socket : fHost.Shared<TTopology>().GetSockets()) {
      if (socket.fThreads.empty()) continue;
      const auto number = fHost.ReadNumber<std::uint32_t>(
          kProcessorFolder + ("/cpu" + std::to_string(*socket.fThreads.begin())) +
          "/topology/physical_package_id");
      if (number.GetReason().IsError()) return Missing(number.GetReason());
      if (!number || !package || *number != *package) continue;
      return TInstanceName{"VORNSG_Processor", socket.fID};
    }
    return TInstanceName();
  }

 private:
  const THost& fHost;
  std::map<std::string, std::uint32_t> fPackages;  // by the device of the chip
};

/// Returns the disk that the chip is in; empty if it is in none.
TReading<TInstanceName> DiskOf(const TChannel& channel, const THost& host) {
  const auto disks = host.List("/sys/devices/" + channel.fDevice + "/block");
  if (disks.GetReason().IsError()) return Missing(disks.GetReason());
  const auto names = disks.ValueOr({});
  return names.empty() ? TInstanceName()
                       : TInstanceName{"VORNSG_MediaAccessDevice", "/dev/" + names.front()};
}

/// Returns the device that the chip is a part of, if it has an instance; empty if it has none.
TReading<TInstanceName> DeviceOf(const TChannel& channel, const THost& host) {
  const std::size_t slash = channel.fDevice.rfind('/');
  if (slash == std::string::npos) return TInstanceName();
  const std::string name = channel.fDevice.substr(slash + 1);
  const std::string folder = channel.fDevice.substr(0, slash);
  const std::string kind = folder.substr(folder.rfind('/') + 1);
  if (kind == "power_supply") {
    for (const TPowerSource& source : host.Shared<TPowerSources>().fAll) {
      if (source.fName != name) continue;
      return TInstanceName{source.fIsBattery ? "VORNSG_Battery" : "VORNSG_PowerSupply", name};
    }
    return TInstanceName();
  }
  if (kind == "nvme") {
    return host.Exists("/sys/class/nvme/" + name).map([&name](bool exists) {
      return exists ? TInstanceName{"VORNSG_NVMeController", "/dev/" + name} : TInstanceName();
    });
  }
  const TReading<bool> isPCI = host.Exists("/sys/bus/pci/devices/" + name);
  if (!isPCI) return Missing(isPCI.GetReason());
  return *isPCI ? TInstanceName{"VORNSG_PCIDevice", name} : DiskOf(channel, host);
}

TInstances<TTie> ListTies(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  const TProcessorSensors processors(host, chips.fChannels);
  TInstances<TTie> ties(ListFirmwareSensorTies(host), chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    const std::uint16_t type = channel.fQuantity->fSensorType;
    const bool isProcessor =
        TProcessorSensors::NameOf(channel).rfind(TProcessorSensors::kDriver, 0) == 0;
    const TReading<TInstanceName> device = type == kTachometer
                                               ? TInstanceName{"VORNSG_Fan", channel.fID}
                                           : isProcessor ? processors.ProcessorOf(channel)
                                                         : DeviceOf(channel, host);
    if (!device && ties.fReason.find(device.GetReason()) == std::string::npos) {
      ties.Miss(device.GetReason());
    }
    if (!device || device->fClass.empty()) continue;
    const char* const sensor = type == kIntrusion ? "VORNSG_Sensor" : "VORNSG_NumericSensor";
    ties.fAll.push_back({{sensor, channel.fID}, *device});
  }
  if (ties.fAll.empty() && ties.fReason.empty()) ties.Miss("no sensor is of a known device");
  if (!ties.fAll.empty() && !ties.fReason.IsError()) ties.fReason = {};
  return ties;
}

}  // namespace

TClass AssociatedSensorClass() {
  return THostTable<TTie>{
      "VORNSG_AssociatedSensor",
      "Ties a sensor to the device that it watches.",
      ListTies,
      {{"Antecedent", "The sensor.", &TTie::fFirst, kKey, TRefersTo{"VORNSG_Sensor"}},
       {"Dependent", "What it watches.", &TTie::fSecond, kKey, TRefersTo{"VORNSG_LogicalDevice"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
