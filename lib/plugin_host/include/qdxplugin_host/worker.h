// SPDX-License-Identifier: Apache-2.0
/// Runs work of plug-ins in processes of their own, which may crash, hang or end as they like.
#ifndef QDXPLUGIN_HOST_WORKER_H_
#define QDXPLUGIN_HOST_WORKER_H_

#include <qdxplugin_host/message.h>

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace NVORNQDX20::NPluginHost {

/// A user and the user's groups.
struct TUser {
  uid_t fID;
  gid_t fGroup;
  std::vector<gid_t> fGroups;
};

struct TWorkerLimits {
  std::chrono::seconds fTime{30};
  /// Of address space that it adds to that of this process, in bytes; 0 for none, as for builds
  /// with sanitizers, which need more than any limit.
  std::uint64_t fMemory = std::uint64_t{1} << 30U;
  /// Of what it delivers in files, and of each other file that it writes, in bytes. If all workers
  /// together deliver more, each may deliver an equal part of this.
  std::uint64_t fDelivery = std::uint64_t{1} << 30U;
  std::optional<TUser> fUser;  ///< Whose privileges it takes on before it starts.
};

/// How a worker ended.
struct TWorkerEnd {
  bool fIsNormal = false;  ///< The work returned, and the process ended by itself with status 0.
  /// Otherwise why, for example "it crashed (ABRT) after 0.1 s, with 12 MB of memory: double free",
  /// where the last part is the end of what it printed.
  std::string fReason;
  std::chrono::microseconds fTime{0};
};

/// Work for a worker. All callbacks but fWork are called in the caller's process.
struct TWorkerJob {
  std::string fName;  ///< For people: who is being waited for.
  /// Runs in the worker. Cannot change anything in the caller's process: its results are messages.
  /// REQUIRES: it throws nothing.
  std::function<void(TSender&)> fWork;
  std::function<void(TMessage&&)> fReceive;
  std::function<void(const TWorkerEnd&)> fEnd;
  /// Returns a text that changes as long as the worker gets on: then its time starts again. Without
  /// it the time counts from the start; an empty text is no progress.
  std::function<std::string()> fProgress = nullptr;
  std::vector<int> fDescriptors = {};  ///< Of this process, which stay open in the worker.
};

/// Called about five times a second while workers run: their names, and for how long the first of
/// them has been running.
using TWaitCallback =
    std::function<void(const std::vector<std::string>& names, std::chrono::seconds time)>;

/// Runs all jobs side by side, at most 32 at a time, and returns when all have ended.
///
/// Time in which this process is stopped, or busy with a callback, does not count. A job waits if
/// there are too few processes or descriptors for another worker.
///
/// A worker has default signal handling, /dev/null as standard input, pipes as standard output and
/// error, and of the other descriptors
/// of this process only those that the job names. At its time limit, or when this process ends in
/// whatever way, it is killed with all processes that it has started. A process that cannot be
/// killed, because the kernel waits for a dead disk, is named in the reason and left behind.
///
/// Passes on what the callbacks throw, after killing all workers.
void RunWorkers(const std::vector<TWorkerJob>& jobs, const TWorkerLimits& limits,
                const TWaitCallback& wait);

}  // namespace NVORNQDX20::NPluginHost

#endif  // QDXPLUGIN_HOST_WORKER_H_
