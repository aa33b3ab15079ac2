// SPDX-License-Identifier: Apache-2.0
/// Reads from a descriptor.
#ifndef QDXSYSTEM_READ_H_
#define QDXSYSTEM_READ_H_

#include <cstddef>

#include <sys/types.h>

namespace NVORNQDX20 {

/// Reads up to `size` bytes and returns their number, 0 at the end, or -1 with errno set. Continues
/// after signals, and waits also if the descriptor does not block, a mode that another process may
/// have set for a shared pipe.
ssize_t ReadSome(int descriptor, void* buffer, std::size_t size);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_READ_H_
