// SPDX-License-Identifier: Apache-2.0
#include "space.h"

#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace NVORNQDX20 {
namespace {

/// Returns whether a file system is mounted there; true if the kernel is too old to tell.
bool MayBeMountPoint(int file) {
  struct statx status {};
  const int flags = AT_EMPTY_PATH | AT_STATX_DONT_SYNC;
  if (::statx(file, "", flags, 0, &status) != 0) return true;
  return (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) == 0 ||
         (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

}  // namespace

TReading<TSpace> ReadSpace(const TFiles& files, const std::string& path) {
  if (!files.IsThisMachine()) return Missing("not asked: not mounted on this machine");
  const TDescriptor place(::open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!place.IsOpen()) return files.MissingFrom(path, ErrorText(place.GetError()));
  if (!MayBeMountPoint(place.Get())) return Missing("hidden below another mount");
  struct statvfs status {};
  if (::fstatvfs(place.Get(), &status) != 0) return files.MissingFrom(path, ErrorText(errno));
  const auto bytes = [&status](std::uint64_t blocks) { return blocks * status.f_frsize; };
  // Some network file systems report more free blocks than blocks.
  const std::uint64_t used = status.f_blocks - std::min(status.f_blocks, status.f_bfree);
  return TSpace{bytes(status.f_blocks), bytes(used), bytes(status.f_bavail), status.f_files,
                status.f_ffree};
}

}  // namespace NVORNQDX20
