// SPDX-License-Identifier: Apache-2.0
/// Failures of the command: each becomes one line, and the command continues or ends.
///
/// A failure is a TExplainedException: a status to decide by, and a reason in words. A line reads
/// "ACTION: reason", for example "reading document x.xml: permission denied".
#ifndef TOOLS_QDX_CLI_FAILURE_H_
#define TOOLS_QDX_CLI_FAILURE_H_

#include <qdxcore/status.h>
#include <qdxmodel/attempt.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "exit_code.h"

namespace NVORNQDX20 {

/// Writes the line to standard error, and with the name of the status to the log.
void PrintFailure(const std::string& action, const TExplainedException& failure);

/// Sets the name of the program in messages, which is "qdx" otherwise. The text must stay.
void SetProgramName(const char* name);
const char* GetProgramName();

/// Writes the program's name, ": " and the line to standard error.
void PrintError(const std::string& line);

/// Ends the command with kExitUsage and a line with the mistake and how to get help: about the
/// verb, if TCommandFailure::SetVerb() names it.
[[noreturn]] void FailOnUsage(const std::string& mistake);

/// Ends the command with this exit status.
class TCommandFailure : public std::runtime_error, public TPassedOn {
 public:
  TCommandFailure(EExitCode code, const std::string& action, const TExplainedException& failure);
  /// Prints nothing: the reason has been printed already, or the reader of the output has gone.
  explicit TCommandFailure(EExitCode code) : std::runtime_error(""), fExitCode(code) {}

  /// Names the verb whose usage is wrong. Changes nothing for another failure.
  void SetVerb(const std::string& verb) { fVerb = verb; }

  EExitCode GetExitCode() const { return fExitCode; }
  const std::string& GetAction() const { return fAction; }
  /// None if it prints nothing, or for a mistake in the usage.
  const std::optional<TExplainedException>& GetFailure() const { return fFailure; }
  /// Does what PrintFailure does.
  void Print() const;

 private:
  friend void FailOnUsage(const std::string& mistake);
  struct TMistake {
    std::string fText;
  };
  explicit TCommandFailure(const TMistake& mistake)
      : std::runtime_error(mistake.fText), fExitCode(kExitUsage) {}

  EExitCode fExitCode;
  std::string fAction;
  std::string fVerb;
  std::optional<TExplainedException> fFailure;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_FAILURE_H_
