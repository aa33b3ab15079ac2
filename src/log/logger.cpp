// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxsystem/descriptor.h>

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

std::string MakeLine(ILogger::EQDXLogSeverity severity, const std::string& message) {
  // Unsigned, so that a negative severity is rejected, too.
  const auto label = static_cast<std::uint32_t>(severity);
  if (label >= std::size(kLabels)) throw TQDXException(kQDXStatusFail);
  std::string line;
  line.reserve(16 + message.size());
  line += "PRQ_";
  line += kLabels[label];
  line += message;
  line += '\n';
  return line;
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
    fLogFile << kClosedLine << std::flush;  // not WriteLine, since a string can lack memory
    fLogFile.close();
  }
  if (fgInstance == this) fgInstance = nullptr;
}

void TLogger::OutputLogEntry(EQDXLogSeverity severity, const std::string& message) {
  if (TLogListener::fgNewest != nullptr) TLogListener::TellAll(severity, message);
  if (severity != kLogRecordOnly && severity > fThreshold) return;
  if (severity <= kLogDebug || severity == kLogRecordOnly) {
    fLog.push_back({severity, message, TOSSpecific::GetLocalTime()});
  }
  if (severity == kLogRecordOnly) return;

  const std::string line = MakeLine(severity, message);
  if (fLogFilename.empty()) {
    TOSSpecific::OutputLogString(line);
  } else {
    WriteLine(line);
  }
}

std::list<ILogger::TLogEntry>& TLogger::GetLog() { return fLog; }

void TLogger::ClearLog() { fLog.clear(); }

void TLogger::SetLogThreshold(EQDXLogSeverity threshold) { fThreshold = threshold; }

ILogger::EQDXLogSeverity TLogger::GetLogThreshold() { return fThreshold; }

void TLogger::SetLogFilename(std::string filename) {
  // Stored even if the file cannot be opened: after a failure, lines are lost instead of going to
  // the operating system's sink.
  fLogFilename = std::move(filename);
  const int descriptor = NextDescriptor();
  errno = 0;  // a stream that is already open does not set it
  fLogFile.open(fLogFilename, std::ios::out | std::ios::ate);
  const int error = errno;
  if (!fLogFile.good()) {
    throw TQDXException(error == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileSystemError);
  }
  // Children must not inherit the log file; a stream has no option for close-on-exec.
  ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  WriteLine(kOpenedLine);
}

void TLogger::WriteLine(const std::string& line) {
  // Each line is flushed, so that the log is complete if the process dies.
  fLogFile << line << std::flush;
}

}  // namespace NVORNQDX20
