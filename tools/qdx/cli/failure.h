// SPDX-License-Identifier: Apache-2.0
/// What the command does about failures: it tells each in one line, and goes on or ends.
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

/// Why something failed.
struct TFailure {
  /// A sentence of its own for the status, where no better reason is known.
  explicit TFailure(EQDXStatusCode status);
  TFailure(EQDXStatusCode status, const std::string& why) : fStatus(status), fWhy(why) {}

  /// "why [kQDXStatusName]"
  std::string Text() const;

  EQDXStatusCode fStatus;
  std::string fWhy;
};

/// Calls into the core or a plug-in; what that throws, if anything, is the failure. Its reason is
/// that of a TExplainedException, else the last error that was logged meanwhile, else what the
/// status means.
std::optional<TFailure> Try(const std::function<void()>& action);

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

/// "TRIED, ON: why [kQDXStatusName]", for example "loading provider, a: ...".
std::string FailureLine(const std::string& tried, const std::string& on, const TFailure& failure);

/// Writes "qdx: " and the line to standard error.
void PrintError(const std::string& line);

/// Ends the command with this code and, unless it is empty, this line on standard error.
class TCommandFailure : public std::runtime_error {
 public:
  TCommandFailure(EExitCode code, const std::string& line)
      : std::runtime_error(line), fExitCode(code) {}

  EExitCode GetExitCode() const { return fExitCode; }

 private:
  EExitCode fExitCode;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_FAILURE_H_
