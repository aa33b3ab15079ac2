// SPDX-License-Identifier: Apache-2.0
/// Reads one document in a process of its own, which may crash, hang or end as it likes.
#ifndef TOOLS_QDX_STORE_INPUT_READING_WORKER_H_
#define TOOLS_QDX_STORE_INPUT_READING_WORKER_H_

#include <qdxsystem/descriptor.h>

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "document_pool.h"
#include "facts_message.h"
#include "worker_launcher.h"

namespace NVORNQDX20::NStore {

/// The worker has no other descriptors than the document, the file for its result and the end of a
/// pipe. It is killed at its time limit, and when this process ends in whatever way.
class TReadingWorker {
 public:
  /// Starts it. `document` is at its start. Throws a TExplainedException if that fails.
  TReadingWorker(const TDescriptor& document, const TInputLimits& limits,
                 TWorkerLauncher& launcher);
  /// Kills the process if it still runs.
  ~TReadingWorker();
  TReadingWorker(const TReadingWorker&) = delete;
  TReadingWorker& operator=(const TReadingWorker&) = delete;

  /// Waits for the result. To be called once.
  TFactsMessage Finish();

 private:
  std::optional<int> WaitForEnd();
  std::string ExplainEnd(std::optional<int> ended) const;
  std::optional<TFactsMessage> ReadResult() const;

  const TInputLimits fLimits;
  const std::chrono::steady_clock::time_point fDeadline;
  TDescriptor fResult;
  TDescriptor fLifeline;  // the read end of a pipe whose write end only the worker has
  pid_t fProcess = -1;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_READING_WORKER_H_
