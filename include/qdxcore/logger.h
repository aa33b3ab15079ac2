// SPDX-License-Identifier: Apache-2.0
/// The process-wide logger, the two functions through which everybody logs, and a listener.
#ifndef QDXCORE_LOGGER_H_
#define QDXCORE_LOGGER_H_

#include <qdxcore/config.h>
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <list>
#include <string>
#include <string_view>

#include <boost/function.hpp>

namespace NVORNQDX20 {

/// Takes messages, keeps a history of them, and writes them to a file if one is named.
/// Not synchronised: one thread only.
class QDXCORE_EXPORT ILogger {
 public:
  /// Lower is more severe. A message is admitted if its severity is not above the threshold.
  enum EQDXLogSeverity : std::int32_t {
    kLogError = 0,
    kLogWarning = 1,
    kLogStatus = 2,
    kLogDebug = 3,
    kLogVerbose = 4,      ///< Written to the file only, never kept.
    kLogRecordOnly = 100  ///< Kept only, whatever the threshold, never written.
  };

  /// One record of the history.
  struct TLogEntry {
    EQDXLogSeverity fSeverity;
    std::string fMessage;  ///< As it was passed.
    TCIMDateTime fTime;    ///< Local time of the recording.
  };

  virtual ~ILogger();
  /// Rejected messages cost a comparison and allocate nothing. A severity outside kLogError to
  /// kLogVerbose, but for kLogRecordOnly, throws kQDXStatusFail if the threshold admits it; a
  /// negative one is in the history by then.
  virtual void OutputLogEntry(EQDXLogSeverity severity, const std::string& message) = 0;
  /// The history itself, oldest first; it grows until ClearLog.
  virtual std::list<TLogEntry>& GetLog() = 0;
  virtual void ClearLog() = 0;
  /// Any number is taken. kLogStatus to begin with.
  virtual void SetLogThreshold(EQDXLogSeverity threshold) = 0;
  virtual EQDXLogSeverity GetLogThreshold() = 0;
  /// Starts a fresh log file, one that can be positioned (no pipe), closed in child processes.
  /// Throws kQDXStatusAccessDenied if permission is missing, kQDXStatusFileSystemError for any
  /// other cause; lines are lost then, but not the history. A second call, once a file is open,
  /// fails so too.
  virtual void SetLogFilename(std::string filename) = 0;
};

/// The logger of the process. Lines in its file read "PRQ_[Error] message".
class QDXCORE_EXPORT TLogger : public ILogger {
 public:
  /// Makes a new logger the one of the process, and abandons the one before, if any, without
  /// deleting it. Always kQDXStatusOK.
  static TQDXStatusCode Initialize();
  /// Null before Initialize, and after the logger was deleted.
  static TLogger* GetInstance();

  /// Writes the closing line, if there is a file.
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
  TLogger();
  void WriteLine(const std::string& line);

  static TLogger* fgInstance;

  EQDXLogSeverity fThreshold;
  std::list<TLogEntry> fLog;
  std::string fLogFilename;
  std::ofstream fLogFile;
};

/// Sends the joined parts to the core logger, if there is one and its threshold admits them; the
/// text is not built otherwise.
QDXCORE_EXPORT void LogMessage(ILogger::EQDXLogSeverity severity,
                               std::initializer_list<std::string_view> parts);

/// Logs the joined parts as an error, then throws a TExplainedException with them as its reason.
[[noreturn]] QDXCORE_EXPORT void LogErrorAndThrow(EQDXStatusCode code,
                                                  std::initializer_list<std::string_view> parts);

/// Calls back for each message that is logged while the listener lives, whether or not the log's
/// threshold admits it. The log itself is the same with and without listeners.
///
///   std::vector<std::string> warnings;
///   {
///     const TLogListener listener(ILogger::kLogWarning, [&](auto severity, const auto& message) {
///       if (severity == ILogger::kLogWarning) warnings.push_back(message);
///     });
///     consumer->Consume(ns, options);
///   }
///
/// Listeners may be nested, and then hear the same. Without a logger there is nothing to hear.
class TLogListener {
 public:
  using TCallback = boost::function<void(ILogger::EQDXLogSeverity, const std::string&)>;

  /// Hears `level` and what is more severe. The callback must not log; what it throws reaches
  /// whoever logs.
  QDXCORE_EXPORT TLogListener(ILogger::EQDXLogSeverity level, const TCallback& callback);
  QDXCORE_EXPORT ~TLogListener();
  TLogListener(const TLogListener&) = delete;
  TLogListener& operator=(const TLogListener&) = delete;

 private:
  friend class TLogger;
  friend void LogMessage(ILogger::EQDXLogSeverity severity,
                         std::initializer_list<std::string_view> parts);

  static bool AnyHears(ILogger::EQDXLogSeverity severity);
  static void TellAll(ILogger::EQDXLogSeverity severity, const std::string& message);

  static TLogListener* fgNewest;

  const ILogger::EQDXLogSeverity fLevel;
  const TCallback fCallback;
  TLogListener* fOlder;
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_LOGGER_H_
