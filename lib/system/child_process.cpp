// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/child_process.h>
#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace NVORNQDX20 {

void CloseOthers(std::vector<int> kept) {
  std::sort(kept.begin(), kept.end());
  int next = STDERR_FILENO + 1;
  for (const int number : kept) {
    if (number < next) continue;
    for (; next < number; ++next) ::close(next);
    ++next;
  }
  ::closefrom(next);
}

void SetLimit(__rlimit_resource resource, rlim_t limit) {
  rlimit current{};
  ::getrlimit(resource, &current);
  const rlim_t lower = std::min(limit, current.rlim_max);
  current = {lower, lower};
  ::setrlimit(resource, &current);
}

rlim_t AddressSpace() {
  const TDescriptor file(::open("/proc/self/statm", O_RDONLY | O_CLOEXEC));
  char text[32] = {};
  if (::read(file.Get(), text, sizeof text - 1) <= 0) return 0;
  return std::strtoul(text, nullptr, 10) * static_cast<unsigned long>(::sysconf(_SC_PAGESIZE));
}

}  // namespace NVORNQDX20
