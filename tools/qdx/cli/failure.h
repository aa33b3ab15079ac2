// SPDX-License-Identifier: Apache-2.0
/// Failures of the command: each becomes one line, and the command continues or ends.
///
/// A failure is a TExplainedException: a status to decide by, and a reason in words. A line reads
/// "ACTION: reason", for example "reading document x.xml: permission denied".
#ifndef TOOLS_QDX_CLI_FAILURE_H_
#define TOOLS_QDX_CLI_FAILURE_H_

#include <qdxcore/logger.h>
#include <qdxcore/status.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "exit_code.h"

namespace NVORNQDX20 {

/// Calls into the core or a plug-in, and returns the exception that it throws, if any. The reason
/// is that of a TExplainedException, else the last error logged during the call, else the meaning
/// of the status. Passes on a TCommandFailure.
std::optional<TExplainedException> Try(const std::function<void()>& call);

/// Like Try, for failures that are not reported, but leave something out: throws std::bad_alloc if
/// memory runs out, since that says nothing about what is left out.
std::optional<TExplainedException> TryUnlessOutOfMemory(const std::function<void()>& call);

/// Keeps the last error that is logged during its lifetime.
class TLastError {
 public:
  /// Returns an empty text if there was none.
  const std::string& Get() const { return fMessage; }

 private:
  std::string fMessage;
  const TLogListener fListener{ILogger::kLogError,
                               [this](auto, const auto& message) { fMessage = message; }};
};

/// Returns the failure without "NAME: " at the start of its reason, for a line that already has the
/// name.
TExplainedException WithoutName(const TExplainedException& failure, const std::string& name);

/// Writes the line to standard error, and with the name of the status to the log.
void PrintFailure(const std::string& action, const TExplainedException& failure);

/// Writes "qdx: " and the line to standard error.
void PrintError(const std::string& line);

/// Ends the command with kExitUsage and a line with the mistake and how to get help.
[[noreturn]] void FailOnUsage(const std::string& mistake);

/// Ends the command with this exit status.
class TCommandFailure : public std::runtime_error {
 public:
  TCommandFailure(EExitCode code, const std::string& action, const TExplainedException& failure);
  /// Prints nothing: the reason has been printed already, or the reader of the output has gone.
  explicit TCommandFailure(EExitCode code) : std::runtime_error(""), fExitCode(code) {}

  EExitCode GetExitCode() const { return fExitCode; }
  /// Does what PrintFailure does.
  void Print() const;

 private:
  friend void FailOnUsage(const std::string& mistake);
  TCommandFailure(EExitCode code, const std::string& line)
      : std::runtime_error(line), fExitCode(code) {}

  EExitCode fExitCode;
  std::optional<EQDXStatusCode> fStatus;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_FAILURE_H_
