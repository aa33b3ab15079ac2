// SPDX-License-Identifier: Apache-2.0
/// Loading a plug-in where it can do no harm.
#ifndef TOOLS_QDX_PLUGIN_HOST_PLUGIN_TRIAL_H_
#define TOOLS_QDX_PLUGIN_HOST_PLUGIN_TRIAL_H_

#include <chrono>
#include <functional>
#include <string>

#include "worker.h"

namespace NVORNQDX20 {

/// Loads a plug-in in a process of its own first: what an initialiser of the library throws, breaks
/// or ends would end this one. What `load` throws does not count, since it can be caught.
class TPluginTrial {
 public:
  explicit TPluginTrial(const std::function<void()>& load);

  /// Throws kQDXStatusInvalidPlugin, and how "it" ended as the reason, if that process died, or is
  /// not back ten seconds after it was made. Where no process could be made, all is well: a plug-in
  /// that cannot be tried may be the only one that tells what this machine suffers from.
  void RequireSuccess();

 private:
  const std::chrono::steady_clock::time_point fDeadline;
  TWorker fWorker;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_PLUGIN_TRIAL_H_
