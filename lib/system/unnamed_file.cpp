// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/unnamed_file.h>

#include <cerrno>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <sys/mman.h>

namespace NVORNQDX20 {

TDescriptor OpenUnnamedFile() {
  TDescriptor inMemory(::memfd_create("qdx", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (inMemory.GetError() != ENOSYS) return inMemory;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> onDisk(std::tmpfile(), std::fclose);
  if (!onDisk) return TDescriptor(-1);
  return TDescriptor(::fcntl(::fileno(onDisk.get()), F_DUPFD_CLOEXEC, 0));
}

}  // namespace NVORNQDX20
