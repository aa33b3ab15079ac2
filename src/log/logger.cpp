// SPDX-License-Identifier: Apache-2.0
// The logger, and functions that log.
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include <fcntl.h>

namespace NVORNQDX20 {
namespace {

constexpr char kOpenedLine[] = "-- QDX Log Opened ----------------------------\n";
constexpr char kClosedLine[] = "-- QDX Log Closed ----------------------------\n";

constexpr std::string_view kLabels[] = {"[Error] ", "[Warning] ", "[Status] ", "[Debug] ",
                                        "[Verbose] "};
static_assert(std::size(kLabels) == ILogger::kLogVerbose + 1);

constexpr std::string_view kPrefix = "PRQ_";

std::string_view LabelOf(ILogger::EQDXLogSeverity severity) {
  // Unsigned, so that a negative severity is rejected, too.
  const auto label = static_cast<std::uint32_t>(severity);
  if (label >= std::size(kLabels)) throw TQDXException(kQDXStatusFail);
  return kLabels[label];
}

/// Lines up to this size are put together without an allocation.
constexpr std::size_t kShortLine = 512;

/// Becomes an entry in its place in the history, where it need not be copied to.
struct TNewEntry {
  ILogger::EQDXLogSeverity fSeverity;
  const std::string& fMessage;

  operator ILogger::TLogEntry() const { return {fSeverity, fMessage, TOSSpecific::GetLocalTime()}; }
};

std::string Joined(std::initializer_list<std::string_view> parts) {
  std::string joined;
  std::size_t length = 0;
  for (const std::string_view part : parts) length += part.size();
  joined.reserve(length);
  for (const std::string_view part : parts) joined += part;
  return joined;
}

/// Not in the caller, which would save registers for it before it can reject a message.
__attribute__((noinline)) void OutputJoined(TLogger& logger, ILogger::EQDXLogSeverity severity,
                                            std::initializer_list<std::string_view> parts) {
  static_cast<ILogger&>(logger).OutputLogEntry(severity, Joined(parts));
}

/// Returns the lowest free descriptor, which the next open() will get.
int NextDescriptor() { return TDescriptor(::open("/", O_PATH | O_CLOEXEC)).Get(); }

}  // namespace

ILogger::~ILogger() = default;

TLogger* TLogger::fgInstance = nullptr;

TQDXStatusCode TLogger::Initialize() {
  // An existing logger is leaked instead of deleted: callers may still use it.
  fgInstance = new TLogger;
  return kQDXStatusOK;
}

TLogger* TLogger::GetInstance() { return fgInstance; }

TLogger::TLogger() : fThreshold(kLogStatus) {}

TLogger::~TLogger() {
  if (!fLogFilename.empty()) {
    WriteLine(kClosedLine, sizeof kClosedLine - 1);
    fLogFile->close();
  }
  if (fgInstance == this) fgInstance = nullptr;
}

void TLogger::OutputLogEntry(EQDXLogSeverity severity, const std::string& message) {
  // Without a call that returns here, so that a rejected message saves no registers.
  if (TLogListener::fgNewest != nullptr) return TellAndOutput(severity, message);
  if (severity <= fThreshold || severity == kLogRecordOnly) Output(severity, message);
}

__attribute__((noinline)) void TLogger::TellAndOutput(EQDXLogSeverity severity,
                                                      const std::string& message) {
  TLogListener::TellAll(severity, message);
  if (severity <= fThreshold || severity == kLogRecordOnly) Output(severity, message);
}

void TLogger::Output(EQDXLogSeverity severity, const std::string& message) {
  if (severity <= kLogDebug || severity == kLogRecordOnly) {
    fLog.emplace_back(TNewEntry{severity, message});
  }
  if (severity == kLogRecordOnly) return;

  const std::string_view label = LabelOf(severity);
  const bool isShort = kPrefix.size() + label.size() + message.size() + 1 <= kShortLine;
  if (fLogFilename.empty()) {
    TOSSpecific::OutputLogString(Joined({kPrefix, label, message, "\n"}));
  } else if (!isShort) {
    const std::string line = Joined({kPrefix, label, message, "\n"});
    WriteLine(line.data(), line.size());
  } else {
    char line[kShortLine];
    char* end = std::copy(kPrefix.begin(), kPrefix.end(), line);
    end = std::copy(label.begin(), label.end(), end);
    end = std::copy(message.begin(), message.end(), end);
    *end++ = '\n';
    WriteLine(line, static_cast<std::size_t>(end - line));
  }
}

std::list<ILogger::TLogEntry>& TLogger::GetLog() { return fLog; }

void TLogger::ClearLog() { fLog.clear(); }

void TLogger::SetLogThreshold(EQDXLogSeverity threshold) { fThreshold = threshold; }

ILogger::EQDXLogSeverity TLogger::GetLogThreshold() { return fThreshold; }

void TLogger::SetLogFilename(std::string filename) {
  if (!fLogFile) fLogFile = std::make_unique<std::ofstream>();
  // Stored even if the file cannot be opened: after a failure, lines are lost instead of going to
  // the operating system's sink.
  fLogFilename = std::move(filename);
  const int descriptor = NextDescriptor();
  errno = 0;  // a stream that is already open does not set it
  fLogFile->open(fLogFilename, std::ios::out | std::ios::ate);
  const int error = errno;
  if (!fLogFile->good()) {
    throw TQDXException(error == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileSystemError);
  }
  // Children must not inherit the log file; a stream has no option for close-on-exec.
  ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  WriteLine(kOpenedLine, sizeof kOpenedLine - 1);
}

void TLogger::WriteLine(const char* line, std::size_t size) {
  if (!fLogFile->good()) return;
  // Each line is flushed, so that the log is complete if the process dies. The buffer does it in
  // less time than the stream, which checks its state at each step.
  std::filebuf& buffer = *fLogFile->rdbuf();
  const auto length = static_cast<std::streamsize>(size);
  if (buffer.sputn(line, length) != length || buffer.pubsync() != 0) {
    fLogFile->setstate(std::ios::badbit);
  }
}

void LogMessage(ILogger::EQDXLogSeverity severity, std::initializer_list<std::string_view> parts) {
  TLogger* const logger = TLogger::GetInstance();
  if (logger == nullptr) return;
  const bool isAdmitted =
      severity <= logger->TLogger::GetLogThreshold() || severity == ILogger::kLogRecordOnly;
  if (isAdmitted || TLogListener::AnyHears(severity)) OutputJoined(*logger, severity, parts);
}

void LogErrorAndThrow(EQDXStatusCode code, std::initializer_list<std::string_view> parts) {
  LogMessage(ILogger::kLogError, parts);
  throw TExplainedException(code, Joined(parts));
}

}  // namespace NVORNQDX20
