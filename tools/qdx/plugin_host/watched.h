// SPDX-License-Identifier: Apache-2.0
/// Work that may hang, without the command hanging with it.
#ifndef TOOLS_QDX_PLUGIN_HOST_WATCHED_H_
#define TOOLS_QDX_PLUGIN_HOST_WATCHED_H_

#include <chrono>
#include <functional>
#include <string>

namespace NVORNQDX20 {

/// Runs the work in a process of its own until it is done. That process dies with this one, and
/// is ended when for so long it has neither read nor written a file. Only files and standard error
/// show what it did: objects here stay as they are.
///
/// Throws a TCommandFailure: without a line if the work threw one, which is reported by then,
/// else with "ACTION: reason".
void RunWatched(const std::string& action, std::chrono::seconds patience,
                const std::function<void()>& work);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_WATCHED_H_
