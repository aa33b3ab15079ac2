// SPDX-License-Identifier: Apache-2.0
/// The process-wide logger, two functions that log, and a listener.
#ifndef QDXCORE_LOGGER_H_
#define QDXCORE_LOGGER_H_

#include <qdxcore/config.h>
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include <cstdint>
#include <fstream>  // for programs that read their log: the logger itself has no stream
#include <initializer_list>
#include <list>
#include <memory>
#include <string>
#include <string_view>

#include <boost/function.hpp>

namespace NVORNQDX20 {

/// Keeps a history of messages, and writes them to a log file if one is set.
/// Not synchronised: one thread only.
class QDXCORE_EXPORT ILogger {
 public:
  /// Lower is more severe. A message is accepted if its severity is not above the threshold.
  enum EQDXLogSeverity : std::int32_t {
    kLogError = 0,
    kLogWarning = 1,
    kLogStatus = 2,
    kLogDebug = 3,
    kLogVerbose = 4,      ///< Only written to the file, not kept in the history.
    kLogRecordOnly = 100  ///< Only kept in the history, whatever the threshold.
  };

  /// One record of the history.
  struct TLogEntry {
    EQDXLogSeverity fSeverity;
    std::string fMessage;  ///< As it was passed.
    TCIMDateTime fTime;    ///< Local time of the recording.
  };

  virtual ~ILogger();
  /// A rejected message costs a comparison and allocates nothing. A severity that is neither
  /// kLogError to kLogVerbose nor kLogRecordOnly throws kQDXStatusFail if the threshold accepts it;
  /// a negative one is added to the history before that.
  virtual void OutputLogEntry(EQDXLogSeverity severity, const std::string& message) = 0;
  /// The history itself, oldest first; it grows until ClearLog.
  virtual std::list<TLogEntry>& GetLog() = 0;
  virtual void ClearLog() = 0;
  /// Accepts any number. Initially kLogStatus.
  virtual void SetLogThreshold(EQDXLogSeverity threshold) = 0;
  virtual EQDXLogSeverity GetLogThreshold() = 0;
  /// Creates or truncates the log file, which must be seekable (not a pipe); close-on-exec. Throws
  /// kQDXStatusAccessDenied without permission, else kQDXStatusFileSystemError; from then on lines
  /// are lost, but not the history. A second call while a file is open fails in the same way.
  virtual void SetLogFilename(std::string filename) = 0;
};

/// The logger of the process. Lines in its file read "PRQ_[Error] message".
class QDXCORE_EXPORT TLogger : public ILogger {
 public:
  /// Creates the process's logger. A previous one is replaced and not deleted. Always returns
  /// kQDXStatusOK.
  static TQDXStatusCode Initialize();
  /// Null before Initialize, and after the logger was deleted.
  static TLogger* GetInstance();

  /// Writes the closing line if a log file is open.
  ~TLogger() override;
  TLogger(const TLogger&) = delete;
  TLogger& operator=(const TLogger&) = delete;

  void OutputLogEntry(EQDXLogSeverity severity, const std::string& message) override;
  std::list<TLogEntry>& GetLog() override;
  void ClearLog() override;
  void SetLogThreshold(EQDXLogSeverity threshold) override;
  EQDXLogSeverity GetLogThreshold() override;
  void SetLogFilename(std::string filename) override;

 private:
  struct TFile;

  TLogger();
  void TellAndOutput(EQDXLogSeverity severity, const std::string& message);
  void Output(EQDXLogSeverity severity, const std::string& message);
  void WriteLine(const char* line, std::size_t size);

  static TLogger* fgInstance;

  EQDXLogSeverity fThreshold;
  std::list<TLogEntry> fLog;
  std::string fLogFilename;
  std::unique_ptr<TFile> fLogFile;
};

/// Logs the joined parts if there is a core logger and its threshold accepts them; otherwise does
/// not build the text.
QDXCORE_EXPORT void LogMessage(ILogger::EQDXLogSeverity severity,
                               std::initializer_list<std::string_view> parts);

/// Logs the joined parts as an error, then throws a TExplainedException with them as its reason.
[[noreturn]] QDXCORE_EXPORT void LogErrorAndThrow(EQDXStatusCode code,
                                                  std::initializer_list<std::string_view> parts);

/// Calls back for each message that is logged during the listener's lifetime, whether or not the
/// log's threshold accepts it. The log itself does not depend on listeners.
///
///   std::vector<std::string> warnings;
///   {
///     const TLogListener listener(ILogger::kLogWarning, [&](auto severity, const auto& message) {
///       if (severity == ILogger::kLogWarning) warnings.push_back(message);
///     });
///     consumer->Consume(ns, options);
///   }
///
/// Nested listeners all receive the message. Without a logger there are no messages.
class TLogListener {
 public:
  using TCallback = boost::function<void(ILogger::EQDXLogSeverity, const std::string&)>;

  /// Receives messages of severity `level` and more severe ones. The callback must not log, nor
  /// destroy the listener; its exceptions reach the code that logs.
  QDXCORE_EXPORT TLogListener(ILogger::EQDXLogSeverity level, const TCallback& callback);
  QDXCORE_EXPORT ~TLogListener();
  TLogListener(const TLogListener&) = delete;
  TLogListener& operator=(const TLogListener&) = delete;

 private:
  friend class TLogger;
  friend void LogMessage(ILogger::EQDXLogSeverity severity,
                         std::initializer_list<std::string_view> parts);

  static bool AnyHears(ILogger::EQDXLogSeverity severity) {
    const TLogListener* listener = fgNewest;
    while (listener != nullptr && severity > listener->fLevel) listener = listener->fOlder;
    return listener != nullptr;
  }
  static void TellAll(ILogger::EQDXLogSeverity severity, const std::string& message);

  static TLogListener* fgNewest;

  const ILogger::EQDXLogSeverity fLevel;
  const TCallback fCallback;
  TLogListener* fOlder;
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_LOGGER_H_
