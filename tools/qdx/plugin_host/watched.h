// SPDX-License-Identifier: Apache-2.0
/// Runs work that may hang, with a timeout.
#ifndef TOOLS_QDX_PLUGIN_HOST_WATCHED_H_
#define TOOLS_QDX_PLUGIN_HOST_WATCHED_H_

#include <chrono>
#include <functional>
#include <string>

namespace NVORNQDX20 {

/// Runs the work in a child process and waits for it. The child is killed if it has neither read
/// nor written a file for the time `timeout`, or if this process ends. The work cannot change
/// objects of this process: its only results are files and standard error.
///
/// Throws a TCommandFailure on failure: without a line if the child has printed one already, else
/// with "ACTION: reason".
void RunWatched(const std::string& action, std::chrono::seconds timeout,
                const std::function<void()>& work);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_WATCHED_H_
