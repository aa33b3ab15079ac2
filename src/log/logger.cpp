// SPDX-License-Identifier: Apache-2.0
// The logger, and functions that log.
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

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

}  // namespace

/// The file, and whether lines go to it. Each is one write, so that the log is complete if the
/// process dies; a stream with its buffer would only take more time.
struct TLogger::TFile {
  TDescriptor fDescriptor;
  bool fIsGood = false;

  /// Returns the errno of a failure, or 0.
  int Open(const std::string& name) {
    fIsGood = false;
    if (fDescriptor.IsOpen()) return EBUSY;
    // Children must not inherit it.
    fDescriptor = TDescriptor(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!fDescriptor.IsOpen()) return fDescriptor.GetError();
    fIsGood = ::lseek(fDescriptor.Get(), 0, SEEK_END) != -1;
    if (fIsGood) return 0;
    fDescriptor = TDescriptor();
    return ESPIPE;
  }
};

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
  if (!fLogFilename.empty()) WriteLine(kClosedLine, sizeof kClosedLine - 1);
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
  if (!fLogFile) fLogFile = std::make_unique<TFile>();
  // Stored even if the file cannot be opened: after a failure, lines are lost instead of going to
  // the operating system's sink.
  fLogFilename = std::move(filename);
  const int error = fLogFile->Open(fLogFilename);
  if (error != 0) {
    throw TQDXException(error == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileSystemError);
  }
  WriteLine(kOpenedLine, sizeof kOpenedLine - 1);
}

void TLogger::WriteLine(const char* line, std::size_t size) {
  if (!fLogFile->fIsGood) return;
  fLogFile->fIsGood = WriteAll(fLogFile->fDescriptor.Get(), {line, size});
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
