// SPDX-License-Identifier: Apache-2.0
#include "mounts.h"

#include <string_view>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

const char* const kFstab = "/etc/fstab";

/// Best first. Of the running machine only those that describe this process are read.
std::vector<const char*> TablesOf(const THost& host) {
  if (host.IsThisMachine()) return {"/proc/self/mountinfo", "/proc/self/mounts"};
  return {"/proc/self/mountinfo", "/proc/1/mountinfo", "/proc/mounts",
          "/proc/1/mounts",       "/etc/mtab",         kFstab};
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
    fIsConfigured = path == kFstab;
    return;
  }
}

}  // namespace NVORNQDX20
