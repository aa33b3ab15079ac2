// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/read.h>

#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace NVORNQDX20 {

ssize_t ReadSome(int descriptor, void* buffer, std::size_t size) {
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer, size);
    if (count >= 0 || (errno != EINTR && errno != EAGAIN)) return count;
    pollfd data = {descriptor, POLLIN, 0};
    if (errno == EAGAIN) ::poll(&data, 1, -1);
  }
}

}  // namespace NVORNQDX20
