// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/write.h>

#include <cerrno>
#include <cstddef>

#include <poll.h>
#include <unistd.h>

namespace NVORNQDX20 {

namespace {

/// Returns early after a signal.
void WaitForRoom(int descriptor) {
  pollfd room = {descriptor, POLLOUT, 0};
  ::poll(&room, 1, -1);
}

}  // namespace

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EAGAIN) WaitForRoom(descriptor);
    if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace NVORNQDX20
