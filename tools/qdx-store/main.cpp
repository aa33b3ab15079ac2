// SPDX-License-Identifier: Apache-2.0
// Parses the command line and runs the verb.
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxsystem/descriptor.h>

#include <csignal>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "cli/out_of_memory.h"
#include "cli/output.h"
#include "verbs/verbs.h"

namespace NVORNQDX20::NStore {
namespace {

EExitCode RunVerb(const TVerb& verb, TArguments arguments) {
  arguments.fOperands.erase(arguments.fOperands.begin());  // the verb itself
  try {
    TheProgram().CheckUsage(verb, arguments);
    return verb.fRun(arguments);
  } catch (TCommandFailure& failure) {
    failure.SetVerb(verb.fName);
    throw;
  }
}

EExitCode RunCommand(const std::vector<std::string>& words) {
  const TProgram& program = TheProgram();
  const TArguments arguments = program.Parse(words);
  if (const auto done = program.RunGeneral(arguments)) return *done;
  const std::vector<std::string>& operands = arguments.fOperands;
  if (operands.empty()) FailOnUsage("a verb is missing");
  return RunVerb(program.FindVerb(operands[0]), arguments);
}

EExitCode Run(const std::vector<std::string>& words) {
  const std::unique_ptr<TLogger> logger(TLogger::GetInstance());
  TRootObject::GetCoreLogger()->SetLogThreshold(ILogger::kLogWarning);
  try {
    return RunCommand(words);
  } catch (const TCommandFailure& failure) {
    failure.Print();
    return failure.GetExitCode();
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (...) {
    PrintFailure("unexpected failure", *Try([] { throw; }));
    return kExitNothingCollected;
  }
}

}  // namespace
}  // namespace NVORNQDX20::NStore

int main(int argc, char** argv) {
  using namespace NVORNQDX20;
  OccupyStandardDescriptors();
  SetProgramName("qdx-store");
  // A closed pipe and the file size limit shall be failed writes, not end the process.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  TLogger::Initialize();
  return NStore::Run({argv + (argc > 0 ? 1 : 0), argv + argc});
}
