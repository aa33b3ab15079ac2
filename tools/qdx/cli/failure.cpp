// SPDX-License-Identifier: Apache-2.0
#include "failure.h"

#include <qdxcore/logger.h>
#include <qdxsystem/write.h>

#include <unistd.h>

#include "progress.h"
#include "terminal.h"

namespace NVORNQDX20 {
namespace {

const char* gProgramName = "qdx";

std::string LineOf(const std::string& action, const TExplainedException& failure) {
  return action + ": " + failure.GetReason();
}

void PrintAndLog(const std::string& line, TQDXStatusCode status) {
  PrintError(line);
  // Names in it are not trusted, and must not look like log lines.
  LogMessage(ILogger::kLogError, {ForTerminal(line), " [", status.TranslateStatusCode(), "]"});
}

}  // namespace

void PrintFailure(const std::string& action, const TExplainedException& failure) {
  PrintAndLog(LineOf(action, failure), failure.GetStatusCode());
}

void SetProgramName(const char* name) { gProgramName = name; }

const char* GetProgramName() { return gProgramName; }

void PrintError(const std::string& line) {
  TProgressLine::ClearShown();
  // If this fails, nothing is left to report it.
  (void)WriteAll(STDERR_FILENO, std::string(gProgramName) + ": " + ForTerminal(line) + "\n");
}

TCommandFailure::TCommandFailure(EExitCode code, const std::string& action,
                                 const TExplainedException& failure)
    : std::runtime_error(LineOf(action, failure)),
      fExitCode(code),
      fAction(action),
      fFailure(failure) {}

void TCommandFailure::Print() const {
  const std::string line = what();
  if (fFailure) {
    PrintAndLog(line, fFailure->GetStatusCode());
  } else if (!line.empty()) {
    const char* const end = line.back() == '?' ? " " : ". ";
    const std::string help = fVerb.empty() ? "--help" : "help " + fVerb;
    PrintError(line + end + "Try '" + gProgramName + " " + help + "'.");
  }
}

void FailOnUsage(const std::string& mistake) {
  throw TCommandFailure(TCommandFailure::TMistake{mistake});
}

}  // namespace NVORNQDX20
