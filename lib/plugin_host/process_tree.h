// SPDX-License-Identifier: Apache-2.0
/// The processes that descend from this one.
#ifndef LIB_PLUGIN_HOST_PROCESS_TREE_H_
#define LIB_PLUGIN_HOST_PROCESS_TREE_H_

#include <sys/types.h>

#include <string>
#include <vector>

namespace NVORNQDX20::NPluginHost {

/// Returns the descendants of this process that have not ended. Empty without /proc.
std::vector<pid_t> Descendants();

/// Returns whether the process waits for a device, so that no signal ends it.
bool IsUninterruptible(pid_t process);

/// Returns what is known about a process that does not end, for example "process 4711 (cat), which
/// waits in the kernel (fuse_request_wait)".
std::string DescribeStuck(pid_t process);

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_PROCESS_TREE_H_
