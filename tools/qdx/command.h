// SPDX-License-Identifier: Apache-2.0
/// The command line as a whole.
#ifndef QDX_COMMAND_H_
#define QDX_COMMAND_H_

#include <string>
#include <vector>

#include "exit_code.h"

namespace NVORNQDX20 {

/// Does what the words, without the program's name, ask for. Throws a TCommandFailure, or what a
/// fault of the program throws. The logger must exist.
EExitCode RunCommand(const std::vector<std::string>& words);

}  // namespace NVORNQDX20

#endif  // QDX_COMMAND_H_
