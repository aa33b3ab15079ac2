// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/write.h>

#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace NVORNQDX20 {

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace NVORNQDX20
