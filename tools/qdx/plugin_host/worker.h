// SPDX-License-Identifier: Apache-2.0
/// A process of its own for what may hang or crash.
#ifndef TOOLS_QDX_PLUGIN_HOST_WORKER_H_
#define TOOLS_QDX_PLUGIN_HOST_WORKER_H_

#include <qdxsystem/descriptor.h>

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>

namespace NVORNQDX20 {

/// A copy of this process that runs an action. Its process group, it and what it has started, ends
/// with it or with this object. Objects here stay as they are, whatever it does.
class TWorker {
 public:
  /// The action gets a descriptor whose other end is read here, and answers the exit status.
  explicit TWorker(const std::function<int(int)>& action);
  ~TWorker();
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  /// False if it could not be started; errno says why.
  bool IsRunning() const { return fProcess > 0; }
  bool EndsBy(std::chrono::steady_clock::time_point deadline);
  /// What waitpid said, once it has ended.
  int Status() const { return fStatus; }
  /// What it has written so far to the descriptor, up to a few kilobytes.
  const std::string& Text() const { return fText; }
  /// Changes with every byte that it reads from or writes to a file; empty if the system does not
  /// tell.
  std::string CountOfBytes() const;

 private:
  bool HasEnded();
  void EndGroup();
  void ReadWhatIsThere();

  pid_t fProcess = -1;
  bool fEnded = false;
  int fStatus = 0;
  TDescriptor fEnd;
  std::string fText;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_WORKER_H_
