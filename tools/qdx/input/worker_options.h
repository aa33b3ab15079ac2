// SPDX-License-Identifier: Apache-2.0
/// The options with the limits of plug-ins, and the line that says who is being waited for.
#ifndef TOOLS_QDX_INPUT_WORKER_OPTIONS_H_
#define TOOLS_QDX_INPUT_WORKER_OPTIONS_H_

#include <qdxplugin_host/worker.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cli/arguments.h"

namespace NVORNQDX20 {

/// The options --timeout, --memory, --delivery and --user.
std::vector<TOptionSpec> WorkerOptions();

/// Returns the limits that they set. Throws a TCommandFailure for a bad value.
NPluginHost::TWorkerLimits LimitsOf(const TArguments& arguments);

/// Returns the value of an option in bytes. Throws a TCommandFailure unless it is a number of MiB
/// from 1 to 4294967295.
std::uint64_t BytesOf(const TArguments& arguments, const char* option);

/// Returns the value of an option. Throws a TCommandFailure unless it is a number of seconds from 1
/// to 65535.
std::chrono::seconds SecondsOf(const TArguments& arguments, const char* option,
                               const std::string& defaultValue);

/// Returns a function that shows on a terminal, after a second, who is being waited for.
NPluginHost::TWaitCallback ShowWaiting();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_WORKER_OPTIONS_H_
