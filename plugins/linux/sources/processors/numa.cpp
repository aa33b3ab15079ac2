// SPDX-License-Identifier: Apache-2.0
#include "numa.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "topology.h"

namespace NVORNQDX20 {
namespace {

const char* const kFolder = "/sys/devices/system/node";

/// Parses "10 21".
TReading<std::vector<std::uint32_t>> ReadDistances(const TFiles& folder) {
  using TDistances = std::vector<std::uint32_t>;
  return folder.ReadLine("distance").and_then([&](const std::string& line) -> TReading<TDistances> {
    TDistances distances;
    for (std::string_view rest = line; !rest.empty();) {
      const std::size_t end = std::min(rest.find(' '), rest.size());
      const auto number = ParseNumber<std::uint32_t>(rest.substr(0, end));
      if (!number) return folder.MissingFrom("distance", "no list of numbers");
      distances.push_back(*number);
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return distances;
  });
}

}  // namespace

TNUMANodes::TNUMANodes(const THost& host) {
  const TFiles files = host.In(kFolder);
  const auto names = files.List();
  if (!names) {
    fReason = names.GetReason();
    return;
  }
  for (const std::string& name : *names) {
    if (name.substr(0, 4) != "node") continue;
    const auto number = ParseNumber<std::uint32_t>(std::string_view(name).substr(4));
    if (!number) continue;
    const TFiles folder = files.In(name);
    TNUMANode node{*number, ReadCPUSet(folder, "cpulist", "cpumap"),
                   TFields(folder.PathOf("meminfo"), folder.Read("meminfo"), ':'),
                   ReadDistances(folder)};
    for (const unsigned cpu : node.fCPUs.ValueOr({})) fNodeOf.emplace(cpu, *number);
    fAll.push_back(std::move(node));
  }
  std::sort(fAll.begin(), fAll.end(), [](const TNUMANode& one, const TNUMANode& other) {
    return one.fNumber < other.fNumber;
  });
  if (fAll.empty()) fReason = std::string(kFolder) + ": has no nodes";
}

TReading<std::uint32_t> TNUMANodes::FindNode(unsigned cpu) const {
  const auto found = fNodeOf.find(cpu);
  if (found != fNodeOf.end()) return found->second;
  if (!fReason.empty()) return Missing(fReason);
  for (const TNUMANode& node : fAll) {
    if (!node.fCPUs) return Missing(node.fCPUs.GetReason());
  }
  return Missing(std::string(kFolder) + ": no node has it");
}

}  // namespace NVORNQDX20
