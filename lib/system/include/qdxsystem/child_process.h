// SPDX-License-Identifier: Apache-2.0
/// What a child process does to itself after a fork, before it handles what is not trusted.
#ifndef QDXSYSTEM_CHILD_PROCESS_H_
#define QDXSYSTEM_CHILD_PROCESS_H_

#include <vector>

#include <sys/resource.h>

namespace NVORNQDX20 {

/// Closes all descriptors but the standard streams and these.
void CloseOthers(std::vector<int> kept);

/// Sets the soft and the hard limit, which stays lower if it is already.
void SetLimit(__rlimit_resource resource, rlim_t limit);

/// Returns the bytes of address space that this process has already, as a copy of its parent; 0 if
/// the kernel does not tell.
rlim_t AddressSpace();

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_CHILD_PROCESS_H_
