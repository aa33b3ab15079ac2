// SPDX-License-Identifier: Apache-2.0
#include "partitions.h"

#include <unordered_set>

#include "sources/fields.h"

namespace NVORNQDX20 {
namespace {

bool EndsWithDigit(const std::string& name) {
  return !name.empty() && name.back() >= '0' && name.back() <= '9';
}

/// "sda1" is of "sda"; of a disk whose name ends with a digit, a "p" is between.
std::string DiskOf(const std::string& name, const std::unordered_set<std::string>& disks) {
  const std::size_t last = name.find_last_not_of("0123456789");
  if (last == std::string::npos || last + 1 == name.size()) return {};
  std::string disk = name.substr(0, last + 1);
  if (disks.count(disk) != 0) return disk;
  if (disk.back() != 'p') return {};
  disk.pop_back();
  return EndsWithDigit(disk) && disks.count(disk) != 0 ? disk : std::string();
}

}  // namespace

std::vector<TListedDevice> ParsePartitions(std::string_view list) {
  std::vector<TListedDevice> devices;
  std::unordered_set<std::string> names;
  while (!list.empty()) {
    // Major and minor number, size in KiB, name. The first line has their names.
    const std::vector<std::string_view> words = WordsOf(TakeLine(list));
    if (words.size() != 4 || !ParseNumber(words[0]) || !ParseNumber(words[1])) continue;
    const TNumber size = Scaled(ToNumber(TText(std::string(words[2])), ""), 1024);
    std::string name(words[3]);
    if (!size || PrintableText(name) != name || !names.insert(name).second) continue;
    std::string disk = DiskOf(name, names);
    devices.push_back({std::move(name), std::string(words[0]) + ":" + std::string(words[1]), *size,
                       std::move(disk)});
  }
  return devices;
}

}  // namespace NVORNQDX20
