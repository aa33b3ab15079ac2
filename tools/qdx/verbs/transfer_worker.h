// SPDX-License-Identifier: Apache-2.0
/// Runs a transfer, which has no deadline as long as bytes move, in a worker.
#ifndef TOOLS_QDX_VERBS_TRANSFER_WORKER_H_
#define TOOLS_QDX_VERBS_TRANSFER_WORKER_H_

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace NVORNQDX20 {

/// Runs the work in a worker and waits for it. The worker is killed if it has neither read nor
/// written a file for the time `timeout`, or if this process ends. Of the open files of this
/// process it has `descriptors`. The work cannot change objects of this process: its only results
/// are files and a TCommandFailure.
///
/// Throws a TCommandFailure on failure: that of the work, or "ACTION: reason".
void RunTransfer(const std::string& action, std::chrono::seconds timeout,
                 const std::vector<int>& descriptors, const std::function<void()>& work);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_TRANSFER_WORKER_H_
