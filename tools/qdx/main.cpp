// SPDX-License-Identifier: Apache-2.0
// Parses the command line, sets up the log, and runs the verb.
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>
#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include <boost/algorithm/string/join.hpp>

#include "cli/arguments.h"
#include "cli/failure.h"
#include "cli/log_file.h"
#include "cli/out_of_memory.h"
#include "cli/output.h"
#include "verbs/verbs.h"

namespace NVORNQDX20 {
namespace {

ILogger::EQDXLogSeverity SeverityNamed(const std::string& name) {
  // In the order of the severities.
  const std::vector<std::string> names = {"error", "warning", "status", "debug", "verbose"};
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    FailOnUsage("unknown log level '" + name + "', none of " + boost::algorithm::join(names, ", "));
  }
  return static_cast<ILogger::EQDXLogSeverity>(found - names.begin());
}

using TLog = std::unique_ptr<TLogFile>;

bool IsRootFolder(const std::string& folder) {
  std::error_code error;
  return std::filesystem::equivalent(folder, "/", error);
}

/// Returns all files that the command reads or writes, but for the log.
std::vector<std::string> OtherFilesOf(const TVerb& verb, const TArguments& arguments) {
  std::vector<std::string> files = arguments.fOperands;
  for (const TOptionSpec& option : verb.fOptions) {
    if (option.fValueName == nullptr || std::string(option.fValueName) != "FILE") continue;
    for (const std::string& file : arguments.GetAll(option.fName)) files.push_back(file);
  }
  return files;
}

TLog OpenLog(const TVerb& verb, const TArguments& arguments) {
  const auto threshold = SeverityNamed(arguments.Get("log-level", "status"));
  const bool hasLog = arguments.Has("log");
  // Without a log nobody reads more, and each entry of a plug-in is a message of its worker.
  TRootObject::GetCoreLogger()->SetLogThreshold(hasLog ? threshold : ILogger::kLogError);
  if (!hasLog) return nullptr;
  // Below "/", where every file is, the log is the operator's choice.
  std::vector<std::string> folders = {TOSSpecific::GetQDXRootPath()};
  const std::string root = arguments.Get("root", "/");
  if (!IsRootFolder(root)) folders.push_back(root);
  return std::make_unique<TLogFile>(arguments.Get("log", ""), threshold,
                                    OtherFilesOf(verb, arguments), folders);
}

EExitCode RunVerb(const TVerb& verb, TArguments arguments, TLog& log) {
  if (!arguments.fOperands.empty()) {
    arguments.fOperands.erase(arguments.fOperands.begin());  // the verb itself
  }
  try {
    TheProgram().CheckUsage(verb, arguments);
    log = OpenLog(verb, arguments);
    return verb.fRun(arguments);
  } catch (TCommandFailure& failure) {
    failure.SetVerb(verb.fName);
    throw;
  }
}

/// Runs the command line `words`, which excludes the program's name. Throws a TCommandFailure, or
/// another exception for an internal error. Opens `log` if a verb is run with one.
EExitCode RunCommand(const std::vector<std::string>& words, TLog& log) {
  const TProgram& program = TheProgram();
  const TArguments arguments = program.Parse(words);
  if (const auto done = program.RunGeneral(arguments)) return *done;
  const std::vector<std::string>& operands = arguments.fOperands;
  if (operands.empty()) return RunVerb(program.FindVerb("summary"), arguments, log);
  return RunVerb(program.FindVerb(operands[0]), arguments, log);
}

EExitCode RunGuarded(const std::vector<std::string>& words, TLog& log) {
  try {
    return RunCommand(words, log);
  } catch (const TCommandFailure& failure) {
    failure.Print();
    return failure.GetExitCode();
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (...) {  // plug-ins may throw anything
    PrintFailure("unexpected failure", *Try([] { throw; }));
    return kExitNothingCollected;
  }
}

EExitCode RunWithLog(const std::vector<std::string>& words) {
  TLogger::Initialize();
  const std::unique_ptr<TLogger> logger(TLogger::GetInstance());
  TLog log;  // open until failures are printed, since they are logged, too
  const EExitCode code = RunGuarded(words, log);
  if (!log || log->Close()) return code;
  return code == kExitDone || code == kExitDifferent ? kExitPartlyDone : code;
}

}  // namespace
}  // namespace NVORNQDX20

int main(int argc, char** argv) {
  using namespace NVORNQDX20;
  OccupyStandardDescriptors();
  // A closed pipe and the file size limit shall be failed writes, not end the process.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return RunWithLog({argv + (argc > 0 ? 1 : 0), argv + argc});
}
