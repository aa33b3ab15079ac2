// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/random.h>

#include <cerrno>

#include <sys/random.h>

namespace NVORNQDX20 {

bool FillRandomly(void* buffer, std::size_t size) {
  // Up to 256 bytes are never cut short by a signal, but waiting for them can be.
  for (;;) {
    const ssize_t filled = ::getrandom(buffer, size, 0);
    if (filled == static_cast<ssize_t>(size)) return true;
    if (filled >= 0) errno = EINVAL;
    if (errno != EINTR) return false;
  }
}

}  // namespace NVORNQDX20
