// SPDX-License-Identifier: Apache-2.0
/// The exit status of the command.
#ifndef TOOLS_QDX_CLI_EXIT_CODE_H_
#define TOOLS_QDX_CLI_EXIT_CODE_H_

namespace NVORNQDX20 {

/// Scripts depend on the numbers.
enum EExitCode : int {
  kExitDone = 0,       ///< Also: compared and equal.
  kExitDifferent = 1,  ///< Only of diff, and for defects of validate.
  kExitUsage = 2,
  kExitPartlyDone = 3,  ///< A plug-in failed or warned, values or instances were lost, or the log
                        ///< could not be written; the rest was delivered. Instead of 0 and 1.
  kExitBadInput = 4,    ///< A folder or file that the operator named cannot be used, or
                        ///< standard output cannot be written.
  kExitNothingCollected = 5,
  kExitTransferFailed = 6
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_EXIT_CODE_H_
