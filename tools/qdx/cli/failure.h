// SPDX-License-Identifier: Apache-2.0
/// What the command does about failures: each becomes one line, and the command goes on or ends.
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

/// Calls into the core or a plug-in, and returns what that throws, if anything. The reason is that
/// of a TExplainedException, else the last error that was logged meanwhile, else what the status
/// means. Lets a TCommandFailure pass.
std::optional<TExplainedException> Try(const std::function<void()>& call);

/// Remembers the last error that is logged while it lives.
class TLastError {
 public:
  /// Empty if there was none.
  const std::string& Get() const { return fMessage; }

 private:
  std::string fMessage;
  const TLogListener fListener{ILogger::kLogError,
                               [this](auto, const auto& message) { fMessage = message; }};
};

/// The failure without "NAME: " at the start of its reason, for a line that has the name already.
TExplainedException WithoutName(const TExplainedException& failure, const std::string& name);

/// Writes the line to standard error, and with the name of the status to the log.
void PrintFailure(const std::string& action, const TExplainedException& failure);

/// Writes "qdx: " and the line to standard error.
void PrintError(const std::string& line);

/// Ends the command with kExitUsage, and a line that says what is wrong and how to get help.
[[noreturn]] void FailOnUsage(const std::string& mistake);

/// Ends the command with this exit status.
class TCommandFailure : public std::runtime_error {
 public:
  TCommandFailure(EExitCode code, const std::string& action, const TExplainedException& failure);
  /// Prints nothing: the reason has been printed already, or nobody reads any more.
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
