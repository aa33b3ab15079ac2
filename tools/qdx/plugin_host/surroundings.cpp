// SPDX-License-Identifier: Apache-2.0
#include "surroundings.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {

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
    TDescriptor file(::open("/dev/null", O_RDONLY));
    number = file.Get();
    if (number <= STDERR_FILENO) (void)file.Release();
  }
}

}  // namespace NVORNQDX20
