// SPDX-License-Identifier: Apache-2.0
/// Runs work that may hang or crash in a child process.
#ifndef TOOLS_QDX_PLUGIN_HOST_WORKER_H_
#define TOOLS_QDX_PLUGIN_HOST_WORKER_H_

#include <qdxsystem/descriptor.h>

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>

namespace NVORNQDX20 {

/// A forked child process that runs an action. The child has a process group of its own, which is
/// killed when the child ends or this object is destroyed, with all processes that it has started.
/// The action cannot change objects of this process.
class TWorker {
 public:
  /// Passes the write end of a pipe to the action, whose result is the exit status. GetText()
  /// returns what it writes there.
  explicit TWorker(const std::function<int(int)>& action);
  ~TWorker();
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  /// Returns false, with errno set, if the child could not be started.
  bool IsRunning() const { return fProcess > 0; }
  /// Waits, and returns whether the child has ended before the deadline.
  bool WaitUntil(std::chrono::steady_clock::time_point deadline);
  /// Returns the status from waitpid. REQUIRES: the child has ended.
  int GetStatus() const { return fStatus; }
  /// Returns the first 4096 bytes that the action has written to the pipe.
  const std::string& GetText() const { return fText; }
  /// Returns a text that changes with each byte that the child reads from or writes to a file;
  /// empty if the kernel does not count them.
  std::string BytesTransferred() const;

 private:
  bool HasEnded();
  void KillGroup();
  void ReadAvailable();

  pid_t fProcess = -1;
  bool fHasEnded = false;
  int fStatus = 0;
  TDescriptor fReadEnd;
  std::string fText;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_WORKER_H_
