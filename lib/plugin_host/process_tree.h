// SPDX-License-Identifier: Apache-2.0
/// The processes that descend from this one.
#ifndef LIB_PLUGIN_HOST_PROCESS_TREE_H_
#define LIB_PLUGIN_HOST_PROCESS_TREE_H_

#include <sys/types.h>

#include <set>
#include <string>
#include <vector>

namespace NVORNQDX20::NPluginHost {

/// Returns the descendants of this process, except for these processes and their descendants. One
/// that has ended counts until its parent has waited for it: it may have started another one after
/// the processes were listed. Empty without /proc.
std::vector<pid_t> Descendants(const std::set<pid_t>& excepted = {});

/// During its lifetime this process is the parent of orphans: of what a worker has started if its
/// supervisor is killed. Has no effect in a process with children, which could leave orphans, too.
class TSubreaper {
 public:
  TSubreaper();
  ~TSubreaper();
  TSubreaper(const TSubreaper&) = delete;
  TSubreaper& operator=(const TSubreaper&) = delete;

  /// Kills all descendants of this process except for these children and their descendants.
  void KillOrphans(const std::set<pid_t>& children) const;

 private:
  bool fIsActive;
};

/// Returns whether the process waits for a device, so that no signal ends it.
bool IsUninterruptible(pid_t process);

/// Returns what is known about a process that does not end, for example "process 4711 (cat), which
/// waits in the kernel (fuse_request_wait)".
std::string DescribeStuck(pid_t process);

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_PROCESS_TREE_H_
