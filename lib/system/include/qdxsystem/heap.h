// SPDX-License-Identifier: Apache-2.0
/// The heap of this process.
#ifndef QDXSYSTEM_HEAP_H_
#define QDXSYSTEM_HEAP_H_

#include <cstddef>

namespace NVORNQDX20 {

/// For a process that is about to keep megabytes: lets its heap grow once by about so many bytes,
/// at most a gigabyte, instead of by each 132 KB. The kernel gives it memory when it is used, in
/// pages of 2 MB where it has them. Does nothing for the second time, if there is so much room
/// already, or if the address space is limited to less.
void PrepareHeap(std::size_t bytes);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_HEAP_H_
