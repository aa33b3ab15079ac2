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
  // Unsigned, so that a negative severity is refused as well.
  const auto label = static_cast<std::uint32_t>(severity);
  if (label >= std::size(kLabels)) throw TQDXException(kQDXStatusFail);
  std::string line = "PRQ_";
  line += kLabels[label];
  line += message;
  line += '\n';
  return line;
}

/// The descriptor that the next file to be opened gets: the lowest that is free.
int NextDescriptor() { return TDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)).Get(); }

}  // namespace

ILogger::~ILogger() = default;

TLogger* TLogger::fgInstance = nullptr;

TQDXStatusCode TLogger::Initialize() {
  // A logger that is there already is abandoned, not deleted: somebody may hold it.
  fgInstance = new TLogger;
  return kQDXStatusOK;
}

TLogger* TLogger::GetInstance() { return fgInstance; }

TLogger::TLogger() : fThreshold(kLogStatus) {}

TLogger::~TLogger() {
  if (!fLogFilename.empty()) {
    WriteLine(kClosedLine);
    fLogFile.close();
  }
  if (fgInstance == this) fgInstance = nullptr;
}

void TLogger::OutputLogEntry(EQDXLogSeverity severity, const std::string& message) {
  TLogListener::TellAll(severity, message);
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
  // Stored whatever becomes of the file: after a failure, lines are lost rather than sent to the
  // operating system's sink.
  fLogFilename = std::move(filename);
  const int descriptor = NextDescriptor();
  errno = 0;  // the stream leaves it alone when it is open already
  fLogFile.open(fLogFilename, std::ios::out | std::ios::ate);
  const int error = errno;
  if (!fLogFile.good()) {
    throw TQDXException(error == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileSystemError);
  }
  // Children must not inherit the log, and a stream cannot be told so.
  ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  WriteLine(kOpenedLine);
}

void TLogger::WriteLine(const std::string& line) {
  // Every line is flushed, so that the log is complete up to the last one if the process dies.
  fLogFile << line << std::flush;
}

}  // namespace NVORNQDX20
