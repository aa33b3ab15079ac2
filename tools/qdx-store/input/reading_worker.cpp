// SPDX-License-Identifier: Apache-2.0
#include "reading_worker.h"

#include <qdxcimxml/document_reader.h>
#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxmodel/attempt.h>
#include <qdxsystem/child_process.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/unnamed_file.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "facts_reader.h"

namespace NVORNQDX20::NStore {
namespace {

using TClock = std::chrono::steady_clock;

constexpr int kResultWritten = 0;
constexpr int kOutOfMemory = 81;
constexpr int kCannotWrite = 82;
/// Of what a worker delivers: it is larger than the document only for one that is made for it.
constexpr std::uint64_t kMostResultBytes = std::uint64_t{512} << 20U;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;  // needs more address space than any limit
#else
constexpr bool kIsSanitized = false;
#endif

void RestoreSignals() {
  for (int signal = 1; signal <= SIGRTMAX; ++signal) std::signal(signal, SIG_DFL);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void Confine(const TInputLimits& limits) {
  SetLimit(RLIMIT_CORE, 0);
  SetLimit(RLIMIT_FSIZE, kMostResultBytes);
  SetLimit(RLIMIT_CPU, static_cast<rlim_t>(limits.fTime.count()) + 1);
  if (!kIsSanitized) SetLimit(RLIMIT_AS, AddressSpace() + limits.fMemory);
}

TDocumentFacts ReadDocument(const std::string& name, int document, const TInputLimits& limits,
                            std::optional<std::int64_t> timeOfOthers) {
  TLogger::Initialize();  // without a logger there are no warnings to listen to
  TLogger::GetInstance()->SetLogThreshold(ILogger::kLogWarning);
  TFactsSource source{{}, {}, timeOfOthers, limits.fFacts};
  const TLogListener listener(ILogger::kLogWarning, [&](auto severity, const auto& message) {
    if (severity != ILogger::kLogWarning) return;
    const TExplainedException warning(kQDXStatusFail, message);
    source.fWarnings.push_back(WithoutName(WithoutName(warning, "cimxml"), name).GetReason());
  });
  NCIMXML::TReadingLimits reading;
  reading.fMemory = limits.fMemory;
  const auto provider = NCIMXML::ReadDocument(name, document, reading);
  provider->EnumerateNamespaceNames(
      [&](const std::string& ns) {
        source.fNamespaces.push_back(provider->GetNamespace(ns, {}));
        return true;
      },
      {});
  return ReadFacts(source);
}

/// Returns the exit status.
int Work(const std::string& name, int document, const TInputLimits& limits,
         std::optional<std::int64_t> timeOfOthers, int result) {
  try {
    TFactsMessage message;
    const auto failure = TryUnlessOutOfMemory(
        [&] { message.fFacts = ReadDocument(name, document, limits, timeOfOthers); });
    if (failure) {
      message.fFacts.reset();
      message.fFailure = WithoutName(WithoutName(*failure, "cimxml"), name).GetReason();
    }
    return WriteAll(result, EncodeFacts(message)) ? kResultWritten : kCannotWrite;
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
}

}  // namespace

TReadingWorker::TReadingWorker(const std::string& name, const TDescriptor& document,
                               const TInputLimits& limits, std::optional<std::int64_t> timeOfOthers)
    : fLimits(limits), fDeadline(TClock::now() + limits.fTime), fResult(OpenUnnamedFile()) {
  TPipe lifeline = OpenPipe();
  const pid_t parent = ::getpid();
  if (fResult.IsOpen() && lifeline.fReadEnd.IsOpen()) fProcess = ::fork();
  if (fProcess == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(kCannotWrite);
    RestoreSignals();
    const int nothing = ::open("/dev/null", O_RDWR);
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) ::dup2(nothing, stream);
    // Among the others may be a database.
    CloseOthers({document.Get(), fResult.Get(), lifeline.fWriteEnd.Get()});
    Confine(limits);
    // _exit: what is to be done at the end belongs to the parent, such as closing a database.
    ::_exit(Work(name, document.Get(), limits, timeOfOthers, fResult.Get()));
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
  if (WIFEXITED(status) && WEXITSTATUS(status) == kOutOfMemory) return tooMuch;
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
  const bool isDone = status && WIFEXITED(*status) && WEXITSTATUS(*status) == kResultWritten;
  if (!isDone) return {std::nullopt, ExplainEnd(status)};
  auto message = ReadResult();
  return message ? std::move(*message)
                 : TFactsMessage{std::nullopt, "its reader delivers what are no facts"};
}

}  // namespace NVORNQDX20::NStore
