// SPDX-License-Identifier: Apache-2.0
/// Starts the processes that read documents.
#ifndef TOOLS_QDX_STORE_INPUT_WORKER_LAUNCHER_H_
#define TOOLS_QDX_STORE_INPUT_WORKER_LAUNCHER_H_

#include <qdxsystem/descriptor.h>

#include <sys/types.h>

#include <cstdint>

#include "document_pool.h"

namespace NVORNQDX20::NStore {

/// How a worker ends.
inline constexpr int kWorkerHasWritten = 0;
inline constexpr int kWorkerOutOfMemory = 81;
inline constexpr int kWorkerCannotWrite = 82;
/// Of what a worker delivers: it is larger than the document only for one that is made for it.
inline constexpr std::uint64_t kMostResultBytes = std::uint64_t{512} << 20U;

/// A small process of its own starts them, since a fork costs what the forked process has in
/// memory: with a database that costs as much as reading the document. So this object is made
/// before a database is opened. Should the small process end, workers are forked from this one.
class TWorkerLauncher {
 public:
  explicit TWorkerLauncher(const TInputLimits& limits);
  /// Ends the small process; workers continue.
  ~TWorkerLauncher();
  TWorkerLauncher(const TWorkerLauncher&) = delete;
  TWorkerLauncher& operator=(const TWorkerLauncher&) = delete;

  /// Descriptors of this process. The worker has copies of these, and no others.
  struct TFiles {
    int fDocument;  ///< At its start.
    int fResult;    ///< Where the message of the worker goes.
    int fLifeline;  ///< Closed when the worker ends.
  };
  /// Returns the ID of a child process of this one, which writes a message, and is killed when this
  /// process ends in whatever way. Negative, with errno set, if none can be started.
  pid_t Start(const TFiles& files);

 private:
  pid_t StartFromHelper(const TFiles& files);
  void EndHelper();

  const TInputLimits fLimits;
  TDescriptor fSocket;  // to the small process
  pid_t fHelper = -1;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_WORKER_LAUNCHER_H_
