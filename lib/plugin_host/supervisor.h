// SPDX-License-Identifier: Apache-2.0
/// The process between the command and a worker: it sees to it that nothing of a worker remains.
#ifndef LIB_PLUGIN_HOST_SUPERVISOR_H_
#define LIB_PLUGIN_HOST_SUPERVISOR_H_

#include <qdxplugin_host/worker.h>
#include <qdxsystem/descriptor.h>

#include <sys/resource.h>

namespace NVORNQDX20::NPluginHost {

/// Statuses of a worker that no plug-in is likely to use.
enum EWorkerStatus : int {
  kWorkReturned = 0,
  kCannotDeliver = 112,
  kCannotTakeOnUser = 113,
  kOutOfMemory = 114,
};

/// What a supervisor sends at its end, as bytes.
struct TReport {
  int fError = 0;             ///< Why the worker could not be started: an errno.
  int fStatus = -1;           ///< As of wait(); -1 if the worker has not ended.
  long fPeakMemory = 0;       ///< In kilobytes.
  char fRemaining[512] = {};  ///< A process that could not be killed.
};

/// The ends that a supervisor and its worker use; each was opened by the command.
struct TSupervisorEnds {
  TDescriptor fLifeline;  ///< Read end of a pipe that closes when the command ends or gives up.
  TDescriptor fReport;    ///< Write end of a pipe for a TReport.
  TDescriptor fSocket;    ///< For the messages of the worker.
  TDescriptor fOutput;    ///< Write end of a pipe: standard output and error of the worker.
};

/// Runs in a process that the command has forked: forks the worker, waits for it or for the end of
/// the lifeline, kills all that the worker has started, reports and ends.
///
/// An exception of the job ends the worker: it must not reach the objects of the command, such as a
/// file that their destructors would remove.
///
/// `addressSpace` is what the command has, to which the worker may add. A supervisor touches little
/// memory, since each page of the command that it writes to is copied.
[[noreturn]] void Supervise(TSupervisorEnds& ends, const TWorkerLimits& limits, rlim_t addressSpace,
                            const TWorkerJob& job) noexcept;

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_SUPERVISOR_H_
