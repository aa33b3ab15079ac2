// SPDX-License-Identifier: Apache-2.0
// How names of servers and users are found in what is mounted.
#include <algorithm>
#include <array>
#include <cstddef>

#include "secrets.h"
#include "spelling.h"

namespace NVORNQDX20::NRedact {
namespace {

template <std::size_t kSize>
bool IsOneOf(std::string_view name, const std::array<std::string_view, kSize>& names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// Returns whether it is a network of Lustre, as after the "@" of "10.0.0.1@o2ib1".
bool IsLustreNetwork(std::string_view text) {
  static constexpr std::array<std::string_view, 7> kNetworks = {"tcp",  "o2ib", "gni", "kfi",
                                                                "ptlf", "elan", "lo"};
  return IsOneOf(text.substr(0, text.find_last_not_of(kDigits) + 1), kNetworks) ||
         StartsWith(text, "o2ib");
}

/// Returns whether what comes before the colon is no server, as in "ubi0:rootfs".
bool IsOnFlash(std::string_view source) {
  return StartsWith(source, "ubi") || StartsWith(source, "mtd");
}

}  // namespace

/// Learns the host of "host", "host:port", "user@host", "user:password@host", "host@network".
void TSecrets::LearnServer(const std::string& server) {
  std::string host = server;
  const std::size_t at = server.rfind('@');
  if (at != std::string::npos) {
    const std::string before = server.substr(0, at);
    host = IsLustreNetwork(server.substr(at + 1)) ? before : server.substr(at + 1);
    if (host != before) {
      for (const std::string& each : Split(before, ":;\\")) {
        if (each.size() > 1 && each.front() != '[') LearnUser(each);
      }
    }
  }
  if (host.find(':') == host.rfind(':')) host.resize(std::min(host.find(':'), host.size()));
  if (host.size() > 1 && IsMadeOf(host, kWord) && !IsMadeOf(host, kDigits)) LearnHost(host);
}

/// Learns the servers of "host:/path", "//host/share", "host:6789,host:6789:/path",
/// "host@tcp:host@tcp:/path", "scheme://host/path", "host:" and "host:volume".
void TSecrets::LearnServersOf(const std::string& source) {
  const std::size_t scheme = source.find("://");
  const std::size_t path = source.find(":/");
  const std::size_t first = source.find_first_of("/=");
  if (StartsWith(source, "//")) {
    LearnServer(source.substr(2, source.find('/', 2) - 2));
  } else if (scheme != std::string::npos && first == scheme + 1) {
    LearnServer(source.substr(scheme + 3, source.find('/', scheme + 3) - scheme - 3));
  } else if (path != std::string::npos && first == path + 1) {
    const std::string servers = source.substr(0, path);
    const std::size_t at = servers.find('@');
    const bool areOfLustre =
        at != std::string::npos &&
        IsLustreNetwork(servers.substr(at + 1, servers.find_first_of(":,", at) - at - 1));
    for (const std::string& each : Split(servers, areOfLustre ? ",:" : ",;")) LearnServer(each);
  } else if (const std::size_t colon = source.find(':');
             colon < first && colon != std::string::npos && !IsOnFlash(source)) {
    const std::size_t at = source.find('@');
    LearnServer(
        source.substr(0, at != std::string::npos && at < first ? source.find(':', at) : colon));
  }
}

void TSecrets::LearnMountOption(const std::string& option) {
  static constexpr std::array<std::string_view, 17> kHosts = {"addr",
                                                              "mountaddr",
                                                              "clientaddr",
                                                              "ip",
                                                              "dom",
                                                              "domain",
                                                              "workgroup",
                                                              "netbiosname",
                                                              "mon_addr",
                                                              "host",
                                                              "servern",
                                                              "volfile-server",
                                                              "server",
                                                              "mds",
                                                              "backup-volfile-servers",
                                                              "servernetbiosname",
                                                              "backupvolfile-server"};
  static constexpr std::array<std::string_view, 3> kUsers = {"user", "username", "cred"};
  static constexpr std::array<std::string_view, 4> kPasswords = {"pass", "passwd", "password",
                                                                 "secret"};
  const std::size_t equals = option.find('=');
  if (equals == std::string::npos || equals + 2 >= option.size()) return;
  const std::string_view name = std::string_view(option).substr(0, equals);
  const std::string value = option.substr(equals + 1);
  if (value.front() == '[') return;  // an address of IPv6, or what was removed
  if (IsOneOf(name, kUsers)) return LearnUser(value);
  if (IsOneOf(name, kPasswords)) {
    return LearnWhole(ESecret::kCommandLine, value, Word(ESecret::kCommandLine, value));
  }
  if (!IsOneOf(name, kHosts)) return;
  const bool isList = name == "backup-volfile-servers";
  for (const std::string& each : Split(value, isList ? ":/" : "/")) LearnServer(each);
}

/// Learns what a source or the options of a mount have of names.
void TSecrets::LearnMountSource(const std::string& source) {
  LearnServersOf(source);
  if (!Contains(source, "=")) return;
  const std::vector<std::string> options = Split(source, ", ");
  for (const std::string& each : options) LearnMountOption(each);
  // Of Ceph it is a user; of others, for example the name of a control group.
  const bool isOfCeph = std::any_of(options.begin(), options.end(), [](const std::string& each) {
    return StartsWith(each, "mon_addr=") || StartsWith(each, "secret=") ||
           StartsWith(each, "fsid=");
  });
  for (const std::string& each : options) {
    if (isOfCeph && StartsWith(each, "name=") && each.size() > 6) LearnUser(each.substr(5));
  }
}

/// Learns the qualified names of iSCSI and NVMe, which have the name of their owner.
void TSecrets::LearnStorageNamesIn(std::string_view text) {
  if (IsKept(ESecret::kSerial)) return;
  for (const std::string_view start : {"iqn.", "nqn."}) {
    for (std::size_t at = text.find(start); at != std::string_view::npos;
         at = text.find(start, at + 1)) {
      std::string_view name = text.substr(at, text.find_first_of(" ,;\"'/()[]", at) - at);
      name = name.substr(0, name.find("-lun-"));  // in links of udev
      if (name.size() < 12 || !IsMadeOf(name.substr(4, 4), kDigits)) continue;
      LearnWhole(ESecret::kSerial, std::string(name), Word(ESecret::kSerial, std::string(name)));
    }
  }
}

}  // namespace NVORNQDX20::NRedact
