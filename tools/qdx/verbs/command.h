// SPDX-License-Identifier: Apache-2.0
/// The command line as a whole.
#ifndef TOOLS_QDX_VERBS_COMMAND_H_
#define TOOLS_QDX_VERBS_COMMAND_H_

#include <string>
#include <vector>

#include "cli/exit_code.h"

namespace NVORNQDX20 {

/// Does what the words, without the program's name, ask for. Throws a TCommandFailure, or what a
/// fault of the program throws. The logger must exist.
EExitCode RunCommand(const std::vector<std::string>& words);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_COMMAND_H_
