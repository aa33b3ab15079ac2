// SPDX-License-Identifier: Apache-2.0
/// Loads plug-ins as a trial, in a child process.
#ifndef TOOLS_QDX_PLUGIN_HOST_PLUGIN_TRIAL_H_
#define TOOLS_QDX_PLUGIN_HOST_PLUGIN_TRIAL_H_

#include <chrono>
#include <functional>
#include <string>

#include "worker.h"

namespace NVORNQDX20 {

/// Loads a plug-in in a child process: an initialiser of a library that throws, crashes or exits
/// ends the process. Exceptions of `load` are ignored, since the caller can catch them when it
/// loads the plug-in itself.
class TPluginTrial {
 public:
  explicit TPluginTrial(const std::function<void()>& load);

  /// Throws kQDXStatusInvalidPlugin if the child ended before it had loaded the plug-in, or did not
  /// finish within ten seconds; the reason says how it ended. Does nothing if no child could be
  /// started: on a machine without free processes, the plug-in may be needed to find out why.
  void RequireSuccess();

 private:
  const std::chrono::steady_clock::time_point fDeadline;
  TWorker fWorker;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_PLUGIN_TRIAL_H_
