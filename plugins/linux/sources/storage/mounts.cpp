// SPDX-License-Identifier: Apache-2.0
#include "mounts.h"

#include <string>
#include <utility>
#include <vector>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

const char* const kFstab = "/etc/fstab";

const char* const kOfFirstProcess = "/proc/1/mountinfo";

/// Best first. Of the running machine these describe this process.
std::vector<const char*> TablesOf(const THost& host) {
  if (host.IsThisMachine()) return {"/proc/self/mountinfo", "/proc/self/mounts"};
  return {"/proc/self/mountinfo", kOfFirstProcess, "/proc/mounts",
          "/proc/1/mounts",       "/etc/mtab",     kFstab};
}

bool IsSame(const TMount& a, const TMount& b) {
  return a.fNumber == b.fNumber && a.fFolder == b.fFolder;
}

/// Returns whether both are mounts of a table with the same file system as root.
bool HaveSameRoot(const std::map<std::string, TMount>& a, const std::map<std::string, TMount>& b) {
  const auto inA = a.find("/");
  const auto inB = b.find("/");
  return inA != a.end() && inB != b.end() && IsSame(inA->second, inB->second);
}

/// A service manager gives a process mounts of its own: with less rights, or over others. The
/// machine has those of its first process. A container has another root, and its own mounts.
void TakeThoseOfMachine(const THost& host, const std::string& ownTable,
                        std::map<std::string, TMount>& mounts) {
  const TText table = host.Read(kOfFirstProcess, kMaxMountTableSize);
  if (!table || *table == ownTable) return;
  std::map<std::string, TMount> first = ParseMountInfo(*table);
  if (!HaveSameRoot(mounts, first)) return;
  for (auto& [name, mount] : first) {
    const auto own = mounts.find(name);
    mount.fIsHidden = own == mounts.end() || !IsSame(own->second, mount);
  }
  mounts = std::move(first);
}

}  // namespace

TMounts::TMounts(const THost& host) {
  for (const std::string path : TablesOf(host)) {
    const TText table = host.Read(path, kMaxMountTableSize);
    fReason = table.GetReason();
    if (fReason.IsError()) return;  // the next may differ
    if (!table || (table->empty() && path != kFstab)) continue;
    const bool isInfo = boost::algorithm::ends_with(path, "mountinfo");
    fAll = isInfo ? ParseMountInfo(*table) : ParseMounts(*table);
    if (isInfo && host.IsThisMachine()) TakeThoseOfMachine(host, *table, fAll);
    fIsConfigured = path == kFstab;
    return;
  }
}

}  // namespace NVORNQDX20
