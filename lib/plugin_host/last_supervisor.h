// SPDX-License-Identifier: Apache-2.0
/// The end of a supervisor that has no more to tell.
#ifndef LIB_PLUGIN_HOST_LAST_SUPERVISOR_H_
#define LIB_PLUGIN_HOST_LAST_SUPERVISOR_H_

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20::NPluginHost {

/// The supervisor that was killed last. It takes a tenth of a millisecond to end, in which this
/// process goes on: it waits for it before it kills the next one, and at its own end.
class TLastSupervisor {
 public:
  constexpr TLastSupervisor() = default;
  ~TLastSupervisor() { Await(); }
  TLastSupervisor(const TLastSupervisor&) = delete;
  TLastSupervisor& operator=(const TLastSupervisor&) = delete;

  void Await() {
    // A worker, which has a copy of this object, may have a child of the same number.
    if (fSupervisor > 0 && fParent == ::getpid()) ::waitpid(fSupervisor, nullptr, 0);
    fSupervisor = -1;
  }
  void Kill(pid_t supervisor) {
    ::kill(supervisor, SIGKILL);
    Await();
    fSupervisor = supervisor;
    fParent = ::getpid();
  }

 private:
  pid_t fSupervisor = -1;
  pid_t fParent = -1;
};

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_LAST_SUPERVISOR_H_
