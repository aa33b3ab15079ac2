// SPDX-License-Identifier: Apache-2.0
#include "control_group.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace NVORNQDX20 {
namespace {

const char* const kMountPoint = "/sys/fs/cgroup";
const char* const kFirstProcess = "/proc/1/cgroup";

/// Returns the group of the first process in the hierarchy of that controller; in that of version
/// 2, which has no name, for an empty text. A path from outside of the own namespace is no use.
std::string GroupPath(const std::string& table, const std::string& controller) {
  for (std::string_view lines = table; !lines.empty();) {
    std::string_view line = TakeLine(lines);
    line.remove_prefix(std::min(line.find(':') + 1, line.size()));
    const std::size_t end = line.find(':');
    if (end == std::string_view::npos) continue;
    const std::string names = "," + std::string(line.substr(0, end)) + ",";
    if (names.find("," + controller + ",") == std::string::npos) continue;
    if (controller.empty() && names != ",,") continue;
    std::string path(line.substr(end + 1));
    return path.find("/..") == std::string::npos ? path : std::string();
  }
  return {};
}

/// Returns the group and the groups around it, those of the mount point first: their limits apply,
/// too. A container often sees its own group at the mount point.
std::vector<TFiles> GroupsOn(const TFiles& hierarchy, const std::string& path) {
  constexpr std::size_t kDeepest = 32;
  std::vector<TFiles> groups = {hierarchy};
  for (std::size_t end = 0; end < path.size() && groups.size() < kDeepest;) {
    const std::size_t begin = end + 1;
    end = std::min(path.find('/', begin), path.size());
    if (end <= begin) continue;
    TFiles group = groups.back().In(path.substr(begin, end - begin));
    if (group.IsAbsent("")) break;
    groups.push_back(std::move(group));
  }
  return groups;
}

/// The folders of a controller.
struct THierarchy {
  THierarchy(const TFiles& files, const TText& table, const char* controller, bool isUnified) {
    const TFiles mounts = files.In(kMountPoint);
    const std::string name = controller;
    TFiles top = isUnified ? mounts : mounts.In(name);
    // Both controllers of processor time are often mounted together.
    if (name == "cpu" && !isUnified && top.IsAbsent("")) top = mounts.In("cpu,cpuacct");
    fGroups = GroupsOn(top, GroupPath(table.ValueOr(""), isUnified ? "" : name));
  }

  /// Returns the smallest limit of all groups, each read by the function, which returns nothing for
  /// a group without limit. A group that has no such file has no limit.
  template <typename T>
  TReading<T> Smallest(const std::function<TReading<std::optional<T>>(const TFiles&)>& read) const {
    std::optional<T> smallest;
    TReason reason;
    for (const TFiles& group : fGroups) {
      const TReading<std::optional<T>> limit = read(group);
      if (!limit) {
        reason.Add(limit.GetReason());
      } else if (*limit && (!smallest || **limit < *smallest)) {
        smallest = **limit;
      }
    }
    // A limit that cannot be read could be smaller.
    if (reason.IsError() || (!smallest && !reason.empty())) return Missing(reason);
    if (smallest) return *smallest;
    return Missing("not limited: " + fGroups.back().PathOf(""));
  }

  std::vector<TFiles> fGroups;
};

/// Nothing for a file that does not exist, as in the group of all processes.
TReading<std::optional<std::string>> ReadIfThere(const TFiles& group, const char* file) {
  const TText line = group.ReadLine(file);
  if (line) return std::optional<std::string>(*line);
  if (group.IsAbsent(file)) return std::optional<std::string>();
  return Missing(line.GetReason());
}

/// Above any memory: version 1 writes the largest number of pages.
constexpr std::uint64_t kUnlimited = std::uint64_t{1} << 62U;

auto NumberIn(const char* file) {
  return [file](const TFiles& group) -> TReading<std::optional<std::uint64_t>> {
    using TLimit = std::optional<std::uint64_t>;
    return ReadIfThere(group, file)
        .and_then([&](const std::optional<std::string>& line) -> TReading<TLimit> {
          if (!line || *line == "max") return TLimit();
          return ToNumber(*line, group.PathOf(file)).map([](std::uint64_t number) {
            return number < kUnlimited ? TLimit(number) : TLimit();
          });
        });
  };
}

/// Nothing if the quota is none: "max", or negative.
TReading<std::optional<float>> Share(const std::string& quota, const TNumber& period,
                                     const std::string& source) {
  if (quota == "max" || quota.front() == '-') return std::optional<float>();
  const TNumber time = ToNumber(quota, source);
  if (!time) return Missing(time.GetReason());
  if (!period || *period == 0) return Missing(source + ": no valid period");
  return std::optional<float>(
      static_cast<float>(static_cast<double>(*time) / static_cast<double>(*period)));
}

/// Reads "150000 100000".
TReading<std::optional<float>> UnifiedQuota(const TFiles& group) {
  return ReadIfThere(group, "cpu.max")
      .and_then([&group](const std::optional<std::string>& line) -> TReading<std::optional<float>> {
        if (!line) return std::optional<float>();
        const std::size_t blank = std::min(line->find(' '), line->size());
        const std::string period = line->substr(std::min(blank + 1, line->size()));
        const std::string source = group.PathOf("cpu.max");
        return Share(line->substr(0, blank), ToNumber(period, source), source);
      });
}

TReading<std::optional<float>> Quota(const TFiles& group) {
  const char* const file = "cpu.cfs_quota_us";
  return ReadIfThere(group, file)
      .and_then([&](const std::optional<std::string>& quota) -> TReading<std::optional<float>> {
        if (!quota) return std::optional<float>();
        return Share(*quota, group.ReadNumber("cpu.cfs_period_us"), group.PathOf(file));
      });
}

/// Returns the processors of the innermost group that names some.
TText ReadProcessorSet(const THierarchy& groups, bool isUnified) {
  const char* const file = isUnified ? "cpuset.cpus.effective" : "cpuset.effective_cpus";
  for (auto group = groups.fGroups.rbegin(); group != groups.fGroups.rend(); ++group) {
    TText line = group->ReadLine(file);
    if (line || line.GetReason().IsError()) return line;
  }
  return groups.fGroups.back().ReadLine(file);
}

}  // namespace

TControlGroup ReadControlGroup(const TFiles& files) {
  const TFiles mounts = files.In(kMountPoint);
  const TText table = files.Read(kFirstProcess);
  TText sign = mounts.MissingFrom("", "no control groups");
  for (const std::string file : {"cgroup.controllers", "memory", "cpu", "pids"}) {
    const TReading<bool> exists = mounts.Exists(file);
    if (!exists) sign = Missing(exists.GetReason());
    if (exists && *exists) sign = file;
    if (!exists || *exists) break;
  }
  if (!sign) {
    const TMissing none = Missing(sign.GetReason());
    return {none, none, none, none, none};
  }
  const bool isUnified = *sign == "cgroup.controllers";
  const std::uint16_t version = isUnified ? 2 : 1;
  if (table.GetReason().IsError()) {  // which group it is, is not known
    const TMissing unknown = Missing(table.GetReason());
    return {version, unknown, unknown, unknown, unknown};
  }
  const auto of = [&](const char* controller) {
    return THierarchy(files, table, controller, isUnified);
  };
  return {version,
          of("memory").Smallest<std::uint64_t>(
              NumberIn(isUnified ? "memory.max" : "memory.limit_in_bytes")),
          of("cpu").Smallest<float>(isUnified ? UnifiedQuota : Quota),
          of("pids").Smallest<std::uint64_t>(NumberIn("pids.max")),
          ReadProcessorSet(of("cpuset"), isUnified)};
}

}  // namespace NVORNQDX20
