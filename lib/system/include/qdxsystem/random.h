// SPDX-License-Identifier: Apache-2.0
/// Random bytes that nobody can guess.
#ifndef QDXSYSTEM_RANDOM_H_
#define QDXSYSTEM_RANDOM_H_

#include <cstddef>

namespace NVORNQDX20 {

/// Fills the buffer, of at most 256 bytes. Returns false, with errno set, if the kernel has none.
bool FillRandomly(void* buffer, std::size_t size);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_RANDOM_H_
