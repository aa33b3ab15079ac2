// SPDX-License-Identifier: Apache-2.0
#include "worker_launcher.h"

#include <qdxcimxml/document_reader.h>
#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxmodel/attempt.h>
#include <qdxsystem/child_process.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "facts_message.h"
#include "facts_reader.h"

namespace NVORNQDX20::NStore {
namespace {

/// Stands for the name of a document, which only its caller knows.
const char* const kName = "document";
constexpr std::size_t kFiles = 3;

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

TDocumentFacts ReadDocument(int document, const TInputLimits& limits) {
  TLogger::Initialize();  // without a logger there are no warnings to listen to
  TLogger::GetInstance()->SetLogThreshold(ILogger::kLogWarning);
  TFactsSource source{{}, {}, std::nullopt, limits.fFacts};
  const TLogListener listener(ILogger::kLogWarning, [&](auto severity, const auto& message) {
    if (severity != ILogger::kLogWarning) return;
    const TExplainedException warning(kQDXStatusFail, message);
    source.fWarnings.push_back(WithoutName(WithoutName(warning, "cimxml"), kName).GetReason());
  });
  NCIMXML::TReadingLimits reading;
  reading.fMemory = limits.fMemory;
  const auto provider = NCIMXML::ReadDocument(kName, document, reading);
  provider->EnumerateNamespaceNames(
      [&](const std::string& ns) {
        source.fNamespaces.push_back(provider->GetNamespace(ns, {}));
        return true;
      },
      {});
  return ReadFacts(source);
}

/// Returns the exit status.
int Work(const TWorkerLauncher::TFiles& files, const TInputLimits& limits) {
  try {
    TFactsMessage message;
    const auto failure =
        TryUnlessOutOfMemory([&] { message.fFacts = ReadDocument(files.fDocument, limits); });
    if (failure) {
      message.fFacts.reset();
      message.fFailure = WithoutName(WithoutName(*failure, "cimxml"), kName).GetReason();
    }
    return WriteAll(files.fResult, EncodeFacts(message)) ? kWorkerHasWritten : kWorkerCannotWrite;
  } catch (const std::bad_alloc&) {
    return kWorkerOutOfMemory;
  }
}

/// To be called after a fork: the process ends with `parent`, its signals are those of a new
/// program, and of its descriptors only these are left.
void Detach(pid_t parent, const std::vector<int>& kept) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(kWorkerCannotWrite);
  RestoreSignals();
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) ::dup2(nothing, stream);
  CloseOthers(kept);
}

[[noreturn]] void RunWorker(pid_t parent, const TWorkerLauncher::TFiles& files,
                            const TInputLimits& limits) {
  // Among the other descriptors may be a database.
  Detach(parent, {files.fDocument, files.fResult, files.fLifeline});
  Confine(limits);
  // _exit: what is to be done at the end belongs to the parent, such as closing a database.
  ::_exit(Work(files, limits));
}

/// Forks a child of this process's parent, which waits for it and kills it as if it were its own.
/// The C library has no function for that, and need not know: this process has one thread.
pid_t ForkSibling() {
  constexpr unsigned long kFlags = CLONE_PARENT | SIGCHLD;
#if defined(__s390__)
  return static_cast<pid_t>(::syscall(SYS_clone, nullptr, kFlags, nullptr, nullptr, nullptr));
#else
  return static_cast<pid_t>(::syscall(SYS_clone, kFlags, nullptr, nullptr, nullptr, nullptr));
#endif
}

/// A message with a byte that says nothing, and room for the descriptors.
struct TPacket {
  TPacket() {
    fPart = {&fByte, sizeof fByte};
    fMessage.msg_iov = &fPart;
    fMessage.msg_iovlen = 1;
    fMessage.msg_control = fControl;
    fMessage.msg_controllen = sizeof fControl;
  }

  char fByte = 0;
  iovec fPart{};
  alignas(cmsghdr) char fControl[CMSG_SPACE(kFiles * sizeof(int))] = {};
  msghdr fMessage{};
};

bool SendFiles(int socket, const TWorkerLauncher::TFiles& files) {
  TPacket packet;
  cmsghdr* const header = CMSG_FIRSTHDR(&packet.fMessage);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(kFiles * sizeof(int));
  const int numbers[kFiles] = {files.fDocument, files.fResult, files.fLifeline};
  std::memcpy(CMSG_DATA(header), numbers, sizeof numbers);
  ssize_t sent = 0;
  do {
    sent = ::sendmsg(socket, &packet.fMessage, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent > 0;
}

/// Returns nothing when nobody sends any more.
std::optional<TWorkerLauncher::TFiles> ReceiveFiles(int socket) {
  TPacket packet;
  ssize_t size = 0;
  do {
    size = ::recvmsg(socket, &packet.fMessage, MSG_CMSG_CLOEXEC);
  } while (size < 0 && errno == EINTR);
  const cmsghdr* const header = CMSG_FIRSTHDR(&packet.fMessage);
  int numbers[kFiles] = {};
  if (size <= 0 || header == nullptr || header->cmsg_len != CMSG_LEN(sizeof numbers)) return {};
  std::memcpy(numbers, CMSG_DATA(header), sizeof numbers);
  return TWorkerLauncher::TFiles{numbers[0], numbers[1], numbers[2]};
}

/// The small process: for each request a worker, and the reply is its ID, or why there is none.
[[noreturn]] void RunHelper(pid_t parent, int socket, const TInputLimits& limits) {
  Detach(parent, {socket});
  while (const auto files = ReceiveFiles(socket)) {
    const pid_t worker = ForkSibling();
    if (worker == 0) RunWorker(parent, *files, limits);
    for (const int file : {files->fDocument, files->fResult, files->fLifeline}) ::close(file);
    if (::send(socket, &worker, sizeof worker, MSG_NOSIGNAL) != sizeof worker) break;
  }
  ::_exit(0);
}

}  // namespace

TWorkerLauncher::TWorkerLauncher(const TInputLimits& limits) : fLimits(limits) {
  int sockets[2] = {-1, -1};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) return;
  TDescriptor own(sockets[0]);
  const TDescriptor others(sockets[1]);
  const pid_t parent = ::getpid();
  fHelper = ::fork();
  if (fHelper == 0) RunHelper(parent, others.Get(), fLimits);
  if (fHelper > 0) fSocket = std::move(own);
}

TWorkerLauncher::~TWorkerLauncher() { EndHelper(); }

void TWorkerLauncher::EndHelper() {
  fSocket = TDescriptor();
  if (fHelper <= 0) return;
  ::kill(fHelper, SIGKILL);
  ::waitpid(fHelper, nullptr, 0);
  fHelper = -1;
}

pid_t TWorkerLauncher::Start(const TFiles& files) {
  if (fSocket.IsOpen()) {
    const pid_t worker = StartFromHelper(files);
    if (worker > 0) return worker;
    EndHelper();
  }
  const pid_t parent = ::getpid();
  const pid_t worker = ::fork();
  if (worker == 0) RunWorker(parent, files, fLimits);
  return worker;
}

pid_t TWorkerLauncher::StartFromHelper(const TFiles& files) {
  if (!SendFiles(fSocket.Get(), files)) return -1;
  pid_t worker = -1;
  ssize_t size = 0;
  do {
    size = ::recv(fSocket.Get(), &worker, sizeof worker, 0);
  } while (size < 0 && errno == EINTR);
  return size == sizeof worker ? worker : -1;
}

}  // namespace NVORNQDX20::NStore
