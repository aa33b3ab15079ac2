// SPDX-License-Identifier: Apache-2.0
/// Runs a command line.
#ifndef TOOLS_QDX_VERBS_COMMAND_H_
#define TOOLS_QDX_VERBS_COMMAND_H_

#include <string>
#include <vector>

#include "cli/exit_code.h"

namespace NVORNQDX20 {

/// Runs the command line `words`, which excludes the program's name. Throws a TCommandFailure, or
/// another exception for an internal error. REQUIRES: the logger exists.
EExitCode RunCommand(const std::vector<std::string>& words);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_COMMAND_H_
