// SPDX-License-Identifier: Apache-2.0
#include "container.h"

#include <algorithm>
#include <string_view>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

constexpr const char* kOther = "other";

struct TSign {
  const char* fText;
  const char* fKind;
};

/// Parts of the control group of the first process, by which managers name what they run. The group
/// of a container in a pod has the names of both: the inner manager comes first.
constexpr TSign kGroups[] = {{"/docker", "docker"},
                             {"docker-", "docker"},
                             {"libpod", "podman"},
                             {"kubepods", "kubernetes"},
                             {"lxc", "lxc"},
                             {"machine.slice/machine-", "systemd-nspawn"},
                             {"containerd", "containerd"}};

/// Variables that managers set for the first process.
constexpr TSign kVariables[] = {{"KUBERNETES_SERVICE_HOST=", "kubernetes"}};

std::string_view TakeVariable(std::string_view& block) {
  const std::size_t end = std::min(block.find('\0'), block.size());
  const std::string_view variable = block.substr(0, end);
  block.remove_prefix(std::min(end + 1, block.size()));
  return variable;
}

/// Returns what the environment of the first process says; empty if nothing.
std::string KindInEnvironment(const THost& host) {
  const TText block = host.Read("/proc/1/environ");
  std::string kind;
  for (std::string_view rest = block ? *block : std::string_view(); !rest.empty();) {
    const std::string_view variable = TakeVariable(rest);
    constexpr std::string_view kContainer = "container=";
    if (variable.substr(0, kContainer.size()) == kContainer) {
      return PrintableText(variable.substr(kContainer.size()));
    }
    for (const TSign& sign : kVariables) {
      if (boost::algorithm::starts_with(variable, sign.fText)) kind = sign.fKind;
    }
  }
  return kind;
}

/// Returns what files say that a container's manager makes; empty if there is none.
TText KindInFiles(const THost& host) {
  for (const char* path : {"/run/systemd/container", "/run/host/container-manager"}) {
    TText kind = host.ReadLine(path);
    if (kind || kind.GetReason().IsError()) return kind;
  }
  constexpr std::pair<const char*, const char*> kFiles[] = {
      {"/run/.containerenv", "podman"},
      {"/.dockerenv", "docker"},
      {"/var/run/secrets/kubernetes.io", "kubernetes"},
      {"/proc/vz", "openvz"}};
  for (const auto& [file, name] : kFiles) {
    const TReading<bool> exists = host.Exists(file);
    if (!exists) return Missing(exists.GetReason());
    if (*exists && (std::string_view(name) != "openvz" || host.IsAbsent("/proc/bc"))) return name;
  }
  // The subsystem for Linux has a kernel whose release says so.
  const std::string release = host.fKernelRelease.ValueOr("");
  return boost::algorithm::icontains(release, "microsoft") ? "wsl" : "";
}

TText KindInGroup(const THost& host) {
  return host.Read("/proc/1/cgroup").and_then([&host](const std::string& groups) -> TText {
    for (const TSign& sign : kGroups) {
      if (groups.find(sign.fText) != std::string::npos) return sign.fKind;
    }
    // The group of all processes of the kernel has no type.
    return host.Exists("/sys/fs/cgroup/cgroup.type").map([](bool exists) -> std::string {
      return exists ? kOther : kNone;
    });
  });
}

}  // namespace

TText ReadContainer(const THost& host) {
  TText kind = KindInFiles(host);
  if (kind && kind->empty()) kind = KindInEnvironment(host);
  return kind && kind->empty() ? KindInGroup(host) : kind;
}

}  // namespace NVORNQDX20
