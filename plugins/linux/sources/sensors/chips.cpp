// SPDX-License-Identifier: Apache-2.0
#include "chips.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <tuple>
#include <utility>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kMicro = 1'000'000;
constexpr std::uint16_t kOther = 1;

/// Frequencies of more than 2 GHz do not fit in hertz.
constexpr TQuantity kQuantities[] = {{"temp", "", 1, -3, kDegreesCelsius, kTemperature},
                                     {"fan", "", 1, 0, 19, kTachometer},
                                     {"in", "", 1, -3, 5, 3},
                                     {"curr", "", 1, -3, 6, 4},
                                     {"power", "", 1000, -3, 7, 13},
                                     {"energy", "", kMicro, 0, 8, 6},
                                     {"humidity", "", 1, -3, 65, 9},
                                     {"freq", "Frequency", 1000, 3, 20, kOther},
                                     {"intrusion", "", 1, 0, 0, kIntrusion}};

const TQuantity* QuantityOf(std::string_view prefix) {
  const auto* const found =
      std::find_if(std::begin(kQuantities), std::end(kQuantities),
                   [prefix](const TQuantity& each) { return prefix == each.fPrefix; });
  return found == std::end(kQuantities) ? nullptr : found;
}

/// What makes a file's sensor one: a limit or a label alone can belong to something else.
bool IsState(const std::string& file) {
  for (const char* state : {"input", "average", "alarm", "fault"}) {
    if (file == state) return true;
  }
  return false;
}

/// The files of a folder by sensor, in the order of quantity and number.
using TKey = std::tuple<const TQuantity*, std::size_t, std::string>;
using TFilesBySensor = std::map<TKey, std::vector<std::string>>;

TReading<TFilesBySensor> FilesIn(const TFiles& folder) {
  TFilesBySensor sensors;
  const auto names = folder.List();
  if (!names) return Missing(names.GetReason());
  for (const std::string& name : *names) {
    const std::size_t digits = name.find_first_of("0123456789");
    const std::size_t line = name.find('_');
    if (line == std::string::npos || digits >= line) continue;
    const TQuantity* const quantity = QuantityOf(name.substr(0, digits));
    const auto number = ParseNumber<std::uint32_t>(name.substr(digits, line - digits));
    if (quantity == nullptr || !number || PrintableText(name) != name) continue;
    const TKey key(quantity, *number, name.substr(0, line));
    sensors[key].push_back(name.substr(line + 1));
  }
  for (auto& sensor : sensors) std::sort(sensor.second.begin(), sensor.second.end());
  for (auto sensor = sensors.begin(); sensor != sensors.end();) {
    const auto& files = sensor->second;
    const bool isSensor = std::any_of(files.begin(), files.end(), IsState);
    sensor = isSensor ? std::next(sensor) : sensors.erase(sensor);
  }
  return sensors;
}

/// Returns what follows "devices/" in a link.
std::string DeviceIn(const TText& link) {
  constexpr std::string_view kDevices = "devices/";
  const std::string path = PrintableText(link.ValueOr(""));
  const std::size_t found = path.find(kDevices);
  return found == std::string::npos ? "" : path.substr(found + kDevices.size());
}

void RemoveLast(std::string& path, const std::string& name) {
  const std::string end = "/" + name;
  if (path.size() < end.size() || path.substr(path.size() - end.size()) != end) return;
  path.erase(path.size() - end.size());
}

/// Returns the path of the device below /sys/devices; empty if no link shows it, missing if one
/// cannot be read. The number of "hwmon3" depends on the order in which drivers were loaded, and is
/// no part of it.
TText DeviceOf(const TFiles& chips, const std::string& name) {
  for (const std::string& path : {name, name + "/device"}) {
    const TText link = chips.ReadLink(path);
    if (link.GetReason().IsError()) return Missing(link.GetReason());
    std::string device = DeviceIn(link);
    RemoveLast(device, name);
    RemoveLast(device, "hwmon");
    if (!device.empty()) return device;
  }
  return std::string();
}

/// Reads the sensors of a chip. Missing if it cannot be told which ones, or which chip it is.
TReading<std::vector<TChannel>> ReadChip(const TFiles& chips, const std::string& name,
                                         std::map<std::string, int>& taken) {
  TFiles folder = chips.In(name);
  TReading<TFilesBySensor> sensors = FilesIn(folder);
  const TText device = DeviceOf(chips, name);
  const TText path = folder.FirstOf({"name", "device/name"});
  const TText chip = path.and_then([&](const std::string& file) { return folder.ReadLine(file); });
  // Older drivers have their files in the folder of the device.
  if (sensors && sensors->empty() && folder.Exists("device").ValueOr(true)) {
    folder = folder.In("device");
    sensors = FilesIn(folder);
  }
  if (!sensors) return Missing(sensors.GetReason());
  if (!device) return Missing(device.GetReason());
  if (chip.GetReason().IsError()) return Missing(chip.GetReason());
  const std::string id =
      TakeID(taken, (device->empty() ? name : *device) + "/" + chip.ValueOr("hwmon"));
  std::vector<TChannel> channels;
  channels.reserve(sensors->size());
  for (const auto& [key, files] : *sensors) {
    const auto& [quantity, number, sensor] = key;
    channels.push_back({id + "/" + sensor, sensor, *device, chip, folder, quantity, files});
  }
  return channels;
}

}  // namespace

bool TChannel::Has(const char* file) const {
  return std::binary_search(fFiles.begin(), fFiles.end(), file);
}

TReading<std::int32_t> TChannel::Read(const char* file) const {
  const std::string path = PathOf(file);
  return InUnitsOf(fQuantity->fKernelUnits, fFolder.ReadNumber<std::int64_t>(path),
                   fFolder.PathOf(path));
}

TReading<std::int32_t> TChannel::ReadValue() const {
  const TReading<bool> isFaulty = Has("fault") ? fFolder.ReadFlag(PathOf("fault")) : false;
  if (!isFaulty) return Missing(isFaulty.GetReason());
  if (*isFaulty) return fFolder.MissingFrom(PathOf("fault"), "the sensor is faulty");
  return Read(!Has("input") && Has("average") ? "average" : "input");
}

TChips::TChips(const THost& host) {
  const char* const folder = "/sys/class/hwmon";
  const TInstances<TDeviceFolder> chips = ListByNumber(host, folder);
  fReason = chips.fReason;
  std::map<std::string, int> taken;
  for (const TDeviceFolder& chip : chips.fAll) {
    const auto channels = ReadChip(host.In(folder), chip.fFileName, taken);
    if (!channels) fReason.Add(channels.GetReason());
    const auto all = channels.ValueOr({});
    fChannels.insert(fChannels.end(), all.begin(), all.end());
  }
  if (fChannels.empty() && fReason.empty()) {
    fReason = chips.fAll.empty() ? "no driver of the kernel watches the hardware"
                                 : "no chip in /sys/class/hwmon has a sensor";
  }
}

TInstances<TDeviceFolder> ListByNumber(const TFiles& files, const char* folder) {
  TInstances<TDeviceFolder> devices = ListDevices(files, folder);
  const auto number = [](const TDeviceFolder& device) {
    const std::string& name = device.fFileName;
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    return std::make_tuple(name.substr(0, digits),
                           ParseNumber<std::uint64_t>(name.substr(digits)).value_or(0), name);
  };
  std::sort(devices.fAll.begin(), devices.fAll.end(),
            [&](const auto& one, const auto& other) { return number(one) < number(other); });
  return devices;
}

TReading<std::int32_t> InUnitsOf(std::int64_t unit, const TReading<std::int64_t>& number,
                                 const std::string& source) {
  return number.and_then([&](std::int64_t count) -> TReading<std::int32_t> {
    const std::int64_t value = count / unit;
    using TLimits = std::numeric_limits<std::int32_t>;
    if (value >= TLimits::min() && value <= TLimits::max()) return static_cast<std::int32_t>(value);
    return Missing(source + ": " + std::to_string(count) + " is out of range");
  });
}

std::string TakeID(std::map<std::string, int>& taken, const std::string& text) {
  std::string id = text;
  for (int& count = taken[text]; ++count > 1;) {
    id = text + " " + std::to_string(count);
    if (taken.emplace(id, 1).second) break;
  }
  return id;
}

}  // namespace NVORNQDX20
