// SPDX-License-Identifier: Apache-2.0
#include "command.h"

#include <qdxcore/config.h>
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cerrno>

#include "cli/arguments.h"
#include "cli/failure.h"
#include "cli/output.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// Options may precede the verb, so the words are parsed with the options of all verbs: an option
/// of two verbs takes a value in both or in neither.
TArguments ParseAll(const std::vector<std::string>& words) {
  std::vector<TOptionSpec> options = CommonOptions();
  for (const TVerb& verb : AllVerbs()) {
    options.insert(options.end(), verb.fOptions.begin(), verb.fOptions.end());
  }
  return ParseArguments(options, words);
}

ILogger::EQDXLogSeverity SeverityNamed(const std::string& name) {
  // In the order of the severities.
  const std::vector<std::string> names = {"error", "warning", "status", "debug", "verbose"};
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) FailOnUsage("unknown log level '" + name + "'");
  return static_cast<ILogger::EQDXLogSeverity>(found - names.begin());
}

void SetUpLog(const TArguments& arguments) {
  ILogger& logger = *TRootObject::GetCoreLogger();
  logger.SetLogThreshold(SeverityNamed(arguments.Get("log-level", "status")));
  if (!arguments.Has("log")) return;
  const std::string file = arguments.Get("log", "");
  errno = 0;
  auto failure = Try([&] { logger.SetLogFilename(file); });
  // The status does not distinguish a missing folder from a full disk; errno does.
  if (failure && errno != 0) failure = {failure->GetStatusCode(), ErrorText(errno)};
  if (failure) throw TCommandFailure(kExitBadInput, "opening log " + file, *failure);
}

/// "qdx help" and "qdx help VERB".
EExitCode RunHelp(const std::vector<std::string>& operands) {
  if (operands.size() > 2) {
    FailOnUsage("unexpected argument '" + operands[2] + "'");
  }
  WriteOutput(operands.size() < 2 ? GeneralHelp() : HelpFor(FindVerb(operands[1])));
  return kExitDone;
}

EExitCode RunVerb(const TVerb& verb, TArguments arguments) {
  const std::vector<TOptionSpec> options = OptionsOf(verb);
  for (const auto& [name, values] : arguments.fOptions) {
    const auto has = [&name = name](const TOptionSpec& option) { return name == option.fName; };
    if (std::none_of(options.begin(), options.end(), has)) {
      FailOnUsage(std::string(verb.fName) + " has no option '--" + name + "'");
    }
  }
  arguments.fOperands.erase(arguments.fOperands.begin());  // the verb itself
  CheckOperands(verb.fName, verb.fOperands, arguments.fOperands);
  SetUpLog(arguments);
  return verb.fRun(arguments);
}

}  // namespace

EExitCode RunCommand(const std::vector<std::string>& words) {
  const TArguments arguments = ParseAll(words);
  const std::vector<std::string>& operands = arguments.fOperands;
  if (arguments.Has("version")) {
    WriteOutput("qdx " QDXCORE_VERSION "\n");
    return kExitDone;
  }
  if (!operands.empty() && operands[0] == "help") return RunHelp(operands);
  if (arguments.Has("help")) {
    WriteOutput(operands.empty() ? GeneralHelp() : HelpFor(FindVerb(operands[0])));
    return kExitDone;
  }
  if (operands.empty()) FailOnUsage("no verb is given");
  return RunVerb(FindVerb(operands[0]), arguments);
}

}  // namespace NVORNQDX20
