// SPDX-License-Identifier: Apache-2.0
/// How the command ends.
#ifndef QDX_EXIT_CODE_H_
#define QDX_EXIT_CODE_H_

namespace NVORNQDX20 {

/// Scripts depend on the numbers. 1 is left to verbs that compare.
enum EExitCode : int {
  kExitDone = 0,
  kExitUsage = 2,
  kExitPartlyDone = 3,  ///< A plug-in failed, the rest was delivered.
  kExitBadInput = 4,    ///< A folder or file that the operator named cannot be used, or
                        ///< standard output cannot be written.
  kExitNothingCollected = 5,
  kExitTransferFailed = 6
};

}  // namespace NVORNQDX20

#endif  // QDX_EXIT_CODE_H_
