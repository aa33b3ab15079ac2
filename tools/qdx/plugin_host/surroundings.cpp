// SPDX-License-Identifier: Apache-2.0
#include "surroundings.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

/// Returns a descriptor that cannot be written, and that children inherit. Without /dev/null, as in
/// a bare chroot, an empty pipe.
TDescriptor OpenNothing() {
  TDescriptor null(::open("/dev/null", O_RDONLY));
  if (null.IsOpen()) return null;
  int ends[2] = {-1, -1};
  if (::pipe(ends) == 0) ::close(ends[1]);
  return TDescriptor(ends[0]);
}

}  // namespace

TKeptSurroundings::TKeptSurroundings()
    : fFolder(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)), fMask(::umask(0)) {
  ::umask(fMask);
  std::fflush(stdout);
  for (int i = 0; i < 3; ++i) fDescriptors[i] = TDescriptor(::fcntl(i, F_DUPFD_CLOEXEC, 3));
  if (fDescriptors[STDOUT_FILENO].IsOpen()) ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

TKeptSurroundings::~TKeptSurroundings() {
  std::fflush(stdout);
  for (int i = 0; i < 3; ++i) ::dup2(fDescriptors[i].Get(), i);
  OccupyStandardDescriptors();
  (void)!::fchdir(fFolder.Get());  // fails if the permissions have changed
  ::umask(fMask);
}

void OccupyStandardDescriptors() {
  int number = STDIN_FILENO;
  while (number >= 0 && number <= STDERR_FILENO) {
    TDescriptor file = OpenNothing();
    number = file.Get();
    if (number <= STDERR_FILENO) (void)file.Release();
  }
}

}  // namespace NVORNQDX20
