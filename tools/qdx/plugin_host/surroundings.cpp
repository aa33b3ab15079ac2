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
  for (int i = 0; i < 3; ++i) fDescriptors[i] = ::fcntl(i, F_DUPFD_CLOEXEC, 3);
  if (fDescriptors[STDOUT_FILENO] >= 0) ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

TKeptSurroundings::~TKeptSurroundings() {
  std::fflush(stdout);
  for (int i = 0; i < 3; ++i) {
    ::dup2(fDescriptors[i], i);
    ::close(fDescriptors[i]);
  }
  OccupyStandardDescriptors();
  if (fFolder >= 0) {
    (void)!::fchdir(fFolder);  // where the folder may no longer be entered, this one has to do
    ::close(fFolder);
  }
  ::umask(fMask);
}

void OccupyStandardDescriptors() {
  int descriptor = 0;
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
    descriptor = ::open("/dev/null", O_RDONLY);
  }
  if (descriptor > STDERR_FILENO) ::close(descriptor);
}

}  // namespace NVORNQDX20
