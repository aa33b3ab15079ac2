// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/worker.h>

#include <qdxsystem/child_process.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <set>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "last_supervisor.h"
#include "process_tree.h"
#include "supervisor.h"

namespace NVORNQDX20::NPluginHost {
namespace {

using TClock = std::chrono::steady_clock;

constexpr std::size_t kMaxWorkers = 32;
constexpr std::size_t kKeptOutput = 4096;
constexpr std::size_t kShownOutput = 300;
/// Far more than any machine has namespaces.
constexpr std::size_t kMaxMessages = 100'000;
constexpr std::uint64_t kMaxMessageBytes = std::uint64_t{64} << 20U;
constexpr const char* kDeliveryHint = "; --delivery allows more";
constexpr std::chrono::milliseconds kPollInterval{200};
/// For a supervisor to end its worker, and to report: longer than it waits itself.
constexpr std::chrono::seconds kGrace{6};

std::string OnOneLine(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  if (text.size() > kShownOutput) text.replace(0, text.size() - kShownOutput, "...");
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string SignalName(int signal) {
  const char* const name = ::sigabbrev_np(signal);  // real-time signals have none
  return name == nullptr ? std::to_string(signal) : name;
}

bool IsCrash(int signal) {
  constexpr int crashes[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS, SIGTRAP};
  return std::find(std::begin(crashes), std::end(crashes), signal) != std::end(crashes);
}

std::string Megabytes(std::uint64_t bytes) { return std::to_string(bytes >> 20U) + " MiB"; }

/// What all workers have delivered, in bytes.
struct TDeliveries {
  const std::size_t fJobs;
  std::uint64_t fSum = 0;
};

TLastSupervisor gLastSupervisor;

/// A running worker.
class TWorker {
 public:
  TWorker(const TWorkerJob& job, const TWorkerLimits& limits, rlim_t addressSpace,
          TDeliveries& deliveries)
      : fJob(job),
        fLimits(limits),
        fDeliveries(deliveries),
        fStart(TClock::now()),
        fDeadline(fStart + limits.fTime) {
    TPipe lifeline = OpenPipe();
    TPipe report = OpenPipe();
    TPipe output = OpenPipe();
    int sockets[2] = {-1, -1};
    (void)::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets);
    fSocket = TDescriptor(sockets[0]);
    TDescriptor sending(sockets[1]);
    if (!lifeline.fReadEnd.IsOpen() || !report.fReadEnd.IsOpen() || !output.fReadEnd.IsOpen() ||
        !sending.IsOpen()) {
      fStartError = errno;
      return;
    }
    fLifeline = std::move(lifeline.fWriteEnd);
    fReport = std::move(report.fReadEnd);
    fOutput = std::move(output.fReadEnd);
    ::fcntl(fOutput.Get(), F_SETFL, O_NONBLOCK);
    std::fflush(nullptr);  // so that the worker does not write what is left to be written here
    fSupervisor = ::fork();
    if (fSupervisor == 0) {
      TSupervisorEnds ends{std::move(lifeline.fReadEnd), std::move(report.fWriteEnd),
                           std::move(sending), std::move(output.fWriteEnd)};
      Supervise(ends, limits, addressSpace, job);
    }
    if (fSupervisor < 0) fStartError = errno;
  }

  ~TWorker() {
    if (fSupervisor <= 0) return;
    GiveUp("");
    pollfd report = {fReport.Get(), POLLIN, 0};
    (void)::poll(&report, 1, static_cast<int>(std::chrono::milliseconds(kGrace).count()));
    EndSupervisor();
  }
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  const std::string& GetName() const { return fJob.fName; }
  TClock::time_point GetStart() const { return fStart; }
  TClock::time_point GetDeadline() const { return fDeadline; }
  /// Gives back time in which this process did not listen.
  void AddTime(TClock::duration time) { fDeadline += time; }
  /// Whether it could be started later, when another worker has ended.
  bool LacksResources() const {
    return fStartError == EMFILE || fStartError == ENFILE || fStartError == EAGAIN ||
           fStartError == ENOMEM;
  }
  pid_t GetSupervisor() const { return fSupervisor; }
  /// Whether the supervisor was killed, so that nobody has killed what the worker has started.
  bool HasLostSupervisor() const { return fHasLostSupervisor; }
  /// Lets the supervisor kill the worker, without waiting for it.
  void Abandon() { GiveUp(""); }

  std::array<pollfd, 3> PollEnds() const {
    // A socket without a sender is always readable.
    return {{{fSocketIsAtEnd ? -1 : fSocket.Get(), POLLIN, 0},
             {fOutputIsAtEnd ? -1 : fOutput.Get(), POLLIN, 0},
             {fReport.Get(), POLLIN, 0}}};
  }

  /// Handles what has happened. Returns whether the worker has ended, after calling its callback.
  bool Handle(const pollfd* ends) {
    if (fStartError != 0) return End({false, "it cannot be started: " + ErrorText(fStartError)});
    if (ends[0].revents != 0) ReceiveMessages();
    if (ends[1].revents != 0) ReadOutput();
    if (ends[2].revents != 0) return Finish();
    if (!fIsGivenUp && GetsOn()) fDeadline = TClock::now() + fLimits.fTime;
    if (TClock::now() < fDeadline) return false;
    if (!fIsGivenUp) {
      fHint = "; --timeout allows more";
      GiveUp((fJob.fProgress ? "it made no progress for " : "it did not come back within ") +
             std::to_string(fLimits.fTime.count()) + " s");
      return false;
    }
    return Finish();
  }

 private:
  bool GetsOn() {
    if (!fJob.fProgress) return false;
    std::string progress = fJob.fProgress();
    const bool getsOn = progress != fProgress;
    fProgress = std::move(progress);
    return getsOn;
  }

  /// The supervisor kills the worker.
  void GiveUp(const std::string& reason) {
    if (!fIsGivenUp) fWhyGivenUp = reason;
    fIsGivenUp = true;
    (void)fLifeline.Close();
    fDeadline = TClock::now() + kGrace;
  }

  void ReceiveMessages() {
    constexpr int atOnce = 64;  // the other workers have their turns
    for (int i = 0; i < atOnce && Receive(); ++i) {
    }
  }

  /// Returns false if nothing is there.
  bool Receive() {
    TReceived received = ReceiveMessage(fSocket.Get());
    fSocketIsAtEnd = received.fKind == TReceived::kEnd;
    if (received.fKind != TReceived::kPacket) return false;
    if (!fIsGivenUp) Take(received);
    return true;
  }

  void Take(TReceived& received) {
    if (!received.fMessage || ++fMessages > kMaxMessages) {
      return GiveUp(received.fMessage ? "it sends messages without end"
                                      : "it sends what is no message");
    }
    const int file = received.fMessage->fFile.Get();
    struct stat status {};
    if (file >= 0 && (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode))) {
      return GiveUp("it delivers what is no file");
    }
    fDelivered += static_cast<std::uint64_t>(status.st_size);
    fDeliveries.fSum += static_cast<std::uint64_t>(status.st_size);
    for (const std::string& text : received.fMessage->fTexts) fMessageBytes += text.size();
    if (fDelivered > fLimits.fDelivery) {
      fHint = kDeliveryHint;
      return GiveUp("it delivers more than " + Megabytes(fLimits.fDelivery));
    }
    const std::uint64_t share = fLimits.fDelivery / fDeliveries.fJobs;
    if (fDeliveries.fSum > fLimits.fDelivery && fDelivered > share) {
      fHint = kDeliveryHint;
      return GiveUp("all plug-ins deliver more than " + Megabytes(fLimits.fDelivery) +
                    ", and it more than its share, " + std::to_string(share >> 10U) + " KiB");
    }
    if (fMessageBytes > kMaxMessageBytes) return GiveUp("it sends messages without end");
    fJob.fReceive(std::move(*received.fMessage));
  }

  void ReadOutput() {
    char buffer[16384];
    const ssize_t size = ::read(fOutput.Get(), buffer, sizeof buffer);
    if (size > 0) {
      fText.append(buffer, static_cast<std::size_t>(size));
      if (fText.size() > kKeptOutput) fText.erase(0, fText.size() - kKeptOutput);
    }
    fOutputIsAtEnd = size == 0;
    fHasMoreOutput = size > 0;
  }

  bool Finish() {
    TReport report;
    ::fcntl(fReport.Get(), F_SETFL, O_NONBLOCK);
    fHasLostSupervisor = ::read(fReport.Get(), &report, sizeof report) != sizeof report;
    EndSupervisor();
    while (!fIsGivenUp && Receive()) {
    }
    constexpr int mostReads = 16;  // a process that cannot be killed may still write
    for (int i = 0; i < mostReads && (i == 0 || fHasMoreOutput); ++i) ReadOutput();
    return End(fHasLostSupervisor ? ExplainEnd({}) : ExplainEnd(report));
  }

  bool End(TWorkerEnd end) {
    end.fTime = std::chrono::duration_cast<std::chrono::microseconds>(TClock::now() - fStart);
    fJob.fEnd(end);
    return true;
  }

  void EndSupervisor() {
    (void)fLifeline.Close();
    gLastSupervisor.Kill(fSupervisor);  // it has reported, or never will
    fSupervisor = -1;
  }

  TWorkerEnd ExplainEnd(const TReport& report) const {
    if (report.fError != 0) return {false, "it cannot be started: " + ErrorText(report.fError)};
    if (!fIsGivenUp && report.fStatus == 0) return {true, {}};
    std::string reason = fWhyGivenUp;
    if (reason.empty()) reason = ExplainStatus(report.fStatus) + " after " + Seconds();
    if (report.fPeakMemory > 0) {
      const auto kilobytes = static_cast<std::uint64_t>(report.fPeakMemory);
      reason += ", with " + Megabytes(kilobytes << 10U) + " of memory";
    }
    if (fHasLostSupervisor) reason += "; its supervisor did not answer";
    const std::string remaining(report.fRemaining,
                                ::strnlen(report.fRemaining, sizeof report.fRemaining));
    if (!remaining.empty()) {
      reason += "; it cannot be killed and was left behind: " + remaining;
    }
    reason += fHint;
    const std::string said = OnOneLine(fText);
    return {false, said.empty() ? reason : reason + ": " + said};
  }

  std::string ExplainStatus(int status) const {
    if (status < 0) return "it was lost";
    if (WIFEXITED(status)) {
      switch (WEXITSTATUS(status)) {
        case kCannotDeliver:
          return "it closed the socket through which it delivers";
        case kCannotTakeOnUser:
          return "it cannot take on the privileges of the user";
        case kOutOfMemory:
          return "it ran out of memory";
        default:
          return "it ended with status " + std::to_string(WEXITSTATUS(status));
      }
    }
    const int signal = WTERMSIG(status);
    if (signal == SIGXFSZ) return "it wrote a file larger than its limit, " + FileSizeLimit();
    return (IsCrash(signal) ? "it crashed (" : "it was ended by a signal (") + SignalName(signal) +
           ")";
  }

  std::string FileSizeLimit() const {
    rlimit ofCommand{};
    ::getrlimit(RLIMIT_FSIZE, &ofCommand);
    const std::uint64_t limit = std::min<std::uint64_t>(ofCommand.rlim_cur, fLimits.fDelivery);
    return std::to_string(limit >> 10U) + " KiB";
  }

  std::string Seconds() const {
    const std::chrono::duration<double> time = TClock::now() - fStart;
    char text[32];
    (void)std::snprintf(text, sizeof text, "%.1f s", time.count());
    return text;
  }

  const TWorkerJob& fJob;
  const TWorkerLimits& fLimits;
  TDeliveries& fDeliveries;
  const TClock::time_point fStart;
  TClock::time_point fDeadline;
  bool fIsGivenUp = false;
  std::string fWhyGivenUp;
  std::string fHint;
  int fStartError = 0;
  pid_t fSupervisor = -1;
  bool fHasLostSupervisor = false;
  TDescriptor fLifeline;
  TDescriptor fReport;
  TDescriptor fSocket;
  TDescriptor fOutput;
  bool fSocketIsAtEnd = false;
  bool fOutputIsAtEnd = false;
  bool fHasMoreOutput = false;
  std::size_t fMessages = 0;
  std::uint64_t fDelivered = 0;
  std::uint64_t fMessageBytes = 0;
  std::string fProgress;
  std::string fText;
};

void Wait(const std::list<TWorker>& workers, std::vector<pollfd>& ends) {
  ends.clear();
  auto wake = TClock::now() + kPollInterval;
  for (const TWorker& worker : workers) {
    const auto each = worker.PollEnds();
    ends.insert(ends.end(), each.begin(), each.end());
    wake = std::min(wake, worker.GetDeadline());
  }
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(wake - TClock::now());
  if (::poll(ends.data(), ends.size(), std::max(0, static_cast<int>(left.count()))) < 0) {
    for (pollfd& end : ends) end.revents = 0;  // a signal
  }
}

void Tell(const TWaitCallback& wait, const std::list<TWorker>& workers) {
  if (!wait || workers.empty()) return;
  std::vector<std::string> names;
  names.reserve(workers.size());
  for (const TWorker& worker : workers) names.push_back(worker.GetName());
  wait(names, std::chrono::duration_cast<std::chrono::seconds>(TClock::now() -
                                                               workers.front().GetStart()));
}

class TPool {
 public:
  TPool(const std::vector<TWorkerJob>& jobs, const TWorkerLimits& limits)
      : fLimits(limits), fDeliveries{jobs.size()}, fNext(jobs.begin()), fEnd(jobs.end()) {}
  /// After an exception: all are killed side by side.
  ~TPool() {
    for (TWorker& worker : fWorkers) worker.Abandon();
  }
  TPool(const TPool&) = delete;
  TPool& operator=(const TPool&) = delete;

  bool IsDone() const { return fNext == fEnd && fWorkers.empty(); }
  const std::list<TWorker>& GetWorkers() const { return fWorkers; }

  void Start() {
    if (!CanStart()) return;
    // Asked for once, not by each worker.
    const rlim_t addressSpace = fLimits.fMemory != 0 ? AddressSpace() : 0;
    while (CanStart()) {
      fWorkers.emplace_back(*fNext, fLimits, addressSpace, fDeliveries);
      if (fWorkers.size() > 1 && fWorkers.back().LacksResources()) {
        fWorkers.pop_back();  // until another one ends
        return;
      }
      ++fNext;
    }
  }

  void Step(std::vector<pollfd>& ends) {
    const auto before = TClock::now();
    Wait(fWorkers, ends);
    // This process may have been stopped.
    const auto woken = TClock::now();
    const auto slept = woken - before;
    const pollfd* end = ends.data();
    bool leavesStrays = false;
    for (auto worker = fWorkers.begin(); worker != fWorkers.end(); end += 3) {
      const bool hasEnded = worker->Handle(end);
      leavesStrays = leavesStrays || worker->HasLostSupervisor();
      worker = hasEnded ? fWorkers.erase(worker) : std::next(worker);
    }
    if (leavesStrays) {
      gLastSupervisor.Await();  // it is no orphan, and what it leaves behind is to be found
      fSubreaper.KillOrphans(GetSupervisors());
    }
    auto lost = TClock::now() - woken;
    if (slept > 2 * kPollInterval) lost += slept - kPollInterval;
    for (TWorker& worker : fWorkers) worker.AddTime(lost);
  }

 private:
  bool CanStart() const { return fNext != fEnd && fWorkers.size() < kMaxWorkers; }

  std::set<pid_t> GetSupervisors() const {
    std::set<pid_t> all;
    for (const TWorker& worker : fWorkers) all.insert(worker.GetSupervisor());
    return all;
  }

  const TSubreaper fSubreaper;
  const TWorkerLimits& fLimits;
  TDeliveries fDeliveries;
  std::vector<TWorkerJob>::const_iterator fNext;
  const std::vector<TWorkerJob>::const_iterator fEnd;
  std::list<TWorker> fWorkers;
};

}  // namespace

void RunWorkers(const std::vector<TWorkerJob>& jobs, const TWorkerLimits& limits,
                const TWaitCallback& wait) {
  std::signal(SIGCHLD, SIG_DFL);  // if it is ignored, waitpid cannot wait
  gLastSupervisor.Await();
  TPool pool(jobs, limits);
  std::vector<pollfd> ends;
  auto told = TClock::now();
  while (!pool.IsDone()) {
    pool.Start();
    pool.Step(ends);
    if (TClock::now() - told < kPollInterval) continue;
    told = TClock::now();
    Tell(wait, pool.GetWorkers());
  }
}

}  // namespace NVORNQDX20::NPluginHost
