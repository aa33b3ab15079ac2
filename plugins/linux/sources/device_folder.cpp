// SPDX-License-Identifier: Apache-2.0
#include "device_folder.h"

#include <cmath>
#include <vector>

#include "fields.h"

namespace NVORNQDX20 {

TReason ObstacleToDevice(const TFiles& folder, const std::string& name) {
  const bool isPrintable = PrintableText(name) == name;  // a key must be
  if (isPrintable && !(folder.IsAbsent("") && folder.ReadLink(""))) return {};
  const char* const obstacle =
      isPrintable ? ": a link that leads nowhere" : ": the name is not printable";
  return {PrintableText(folder.PathOf("")) + obstacle, TReason::kError};
}

TInstances<TDeviceFolder> ListDevices(const TFiles& files, const char* folder) {
  const TReading<std::vector<std::string>> names = files.List(folder);
  if (!names) return Missing(names.GetReason());
  TInstances<TDeviceFolder> devices;
  devices.fAll.reserve(names->size());
  for (const std::string& name : *names) {
    const TFiles device = files.In(folder).In(name);
    const TReason obstacle = ObstacleToDevice(device, name);
    if (obstacle.empty()) {
      devices.fAll.push_back({device, name});
    } else {
      devices.Miss(obstacle);
    }
  }
  return devices;
}

TText ReadLinkedName(const TFiles& folder, const std::string& link) {
  return folder.ReadLink(link).map([](const std::string& target) {
    return PrintableText(target.substr(target.rfind('/') + 1));
  });
}

TText ReadDriverOf(const TFiles& folder) {
  TText linked = ReadLinkedName(folder, "driver");
  if (linked || linked.GetReason().IsError()) return linked;
  const TText file = folder.Read("uevent");
  const TText driver = TFields(folder.PathOf("uevent"), file, '=').Get("DRIVER");
  return driver || !file ? driver : TText(Missing("no driver is bound to it"));
}

TNumber ReadRate(const TFiles& folder, const char* file, double multiplier) {
  return folder.ReadLine(file).and_then([&](const std::string& line) -> TNumber {
    constexpr double kLargest = 1e15;  // far from where a number loses its last digits
    const auto number = ParseNumber<double>(line.substr(0, line.find(' ')));
    if (number && *number >= 0 && *number * multiplier <= kLargest) {
      return static_cast<std::uint64_t>(std::llround(*number * multiplier));
    }
    const bool isUnknown = line.substr(1, 6) == "nknown";
    return folder.MissingFrom(file, isUnknown ? "not known" : "'" + line + "' is no valid number");
  });
}

}  // namespace NVORNQDX20
