// SPDX-License-Identifier: Apache-2.0
/// What the command does about failures: it tells each in one line, and goes on or ends.
#ifndef TOOLS_QDX_CLI_FAILURE_H_
#define TOOLS_QDX_CLI_FAILURE_H_

#include <qdxcore/status.h>

#include <cstddef>
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

/// Calls into the core or a plug-in. Whatever that throws becomes the failure. Its reason is what
/// the exception says it is about, else the last error that was logged meanwhile.
std::optional<TFailure> Try(const std::function<void()>& action);

/// How many entries the log's history has.
std::size_t LoggedSoFar();

/// The last error that was logged after the first `loggedBefore` entries; empty if there is none.
std::string ErrorLoggedSince(std::size_t loggedBefore);

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
