// SPDX-License-Identifier: Apache-2.0
#include "reading_worker.h"

#include <qdxcore/status.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/unnamed_file.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20::NStore {
namespace {

using TClock = std::chrono::steady_clock;

}  // namespace

TReadingWorker::TReadingWorker(const TDescriptor& document, const TInputLimits& limits,
                               TWorkerLauncher& launcher)
    : fLimits(limits), fDeadline(TClock::now() + limits.fTime), fResult(OpenUnnamedFile()) {
  TPipe lifeline = OpenPipe();
  if (fResult.IsOpen() && lifeline.fReadEnd.IsOpen()) {
    fProcess = launcher.Start({document.Get(), fResult.Get(), lifeline.fWriteEnd.Get()});
  }
  if (fProcess < 0) {
    throw TExplainedException(kQDXStatusFileSystemError,
                              "no worker can be started: " + ErrorText(errno));
  }
  fLifeline = std::move(lifeline.fReadEnd);
}

TReadingWorker::~TReadingWorker() {
  if (fProcess <= 0) return;
  ::kill(fProcess, SIGKILL);
  ::waitpid(fProcess, nullptr, 0);
}

/// Returns the status; none if it takes too long.
std::optional<int> TReadingWorker::WaitForEnd() {
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(fDeadline - TClock::now()).count();
    pollfd end = {fLifeline.Get(), POLLIN, 0};
    const bool isClosed =
        ::poll(&end, 1, static_cast<int>(std::clamp<std::int64_t>(left, 0, 1000))) > 0;
    int status = 0;
    if (isClosed && ::waitpid(fProcess, &status, WNOHANG) == fProcess) return status;
    if (left <= 0) return std::nullopt;
    if (isClosed) ::usleep(100);  // it is about to end, or has closed the pipe itself
  }
}

std::string TReadingWorker::ExplainEnd(std::optional<int> ended) const {
  const auto tooLong = [this] {
    return "it takes longer than " + std::to_string(fLimits.fTime.count()) + " s to read";
  };
  std::string tooMuch =
      "it needs more than " + std::to_string(fLimits.fMemory >> 20U) + " MiB of memory";
  if (!ended) return tooLong();
  const int status = *ended;
  if (WIFEXITED(status) && WEXITSTATUS(status) == kWorkerOutOfMemory) return tooMuch;
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU) return tooLong();
  if (WIFSIGNALED(status)) {
    const char* const name = ::sigabbrev_np(WTERMSIG(status));
    return std::string("its reader crashed (") +
           (name == nullptr ? std::to_string(WTERMSIG(status)) : name) + ")";
  }
  return "its reader ended with status " + std::to_string(WEXITSTATUS(status));
}

std::optional<TFactsMessage> TReadingWorker::ReadResult() const {
  struct stat status {};
  if (::fstat(fResult.Get(), &status) != 0 || status.st_size < 0) return std::nullopt;
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size > kMostResultBytes) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count =
        ::pread(fResult.Get(), &bytes[done], bytes.size() - done, static_cast<off_t>(done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return std::nullopt;
    done += static_cast<std::size_t>(count);
  }
  return DecodeFacts(bytes, fLimits.fFacts);
}

TFactsMessage TReadingWorker::Finish() {
  const std::optional<int> status = WaitForEnd();
  if (status) fProcess = -1;
  const bool isDone = status && WIFEXITED(*status) && WEXITSTATUS(*status) == kWorkerHasWritten;
  if (!isDone) return {std::nullopt, ExplainEnd(status)};
  auto message = ReadResult();
  return message ? std::move(*message)
                 : TFactsMessage{std::nullopt, "its reader delivers what are no facts"};
}

}  // namespace NVORNQDX20::NStore
