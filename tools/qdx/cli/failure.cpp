// SPDX-License-Identifier: Apache-2.0
#include "failure.h"

#include <qdxsystem/write.h>

#include <new>

#include <unistd.h>

#include "terminal.h"

namespace NVORNQDX20 {
namespace {

const char* MeaningOf(EQDXStatusCode status) {
  switch (status) {
    case kQDXStatusNotImplemented:
      return "it does not offer this";
    case kQDXStatusOutOfMemory:
      return "out of memory";
    case kQDXStatusFileSystemError:
      return "the file system refused";
    case kQDXStatusTypeMismatch:
      return "of another type than expected";
    case kQDXStatusNotFound:
      return "there is none";
    case kQDXStatusFileNotFound:
      return "no such file or folder";
    case kQDXStatusAccessDenied:
      return "permission denied";
    case kQDXStatusValueIsNULL:
      return "it has no value";
    case kQDXStatusInvalidFormat:
      return "not of the expected form";
    default:
      return "it failed and gave no reason";
  }
}

std::string LineOf(const std::string& action, const TExplainedException& failure) {
  return action + ": " + failure.GetReason();
}

void PrintAndLog(const std::string& line, TQDXStatusCode status) {
  PrintError(line);
  // Names in it are not trusted, and must not look like log lines.
  LogMessage(ILogger::kLogError, {ForTerminal(line), " [", status.TranslateStatusCode(), "]"});
}

}  // namespace

std::optional<TExplainedException> Try(const std::function<void()>& call) {
  const auto failed = [](EQDXStatusCode status, const std::string& reason) {
    return TExplainedException(status, reason.empty() ? MeaningOf(status) : reason);
  };
  const TLastError lastError;
  try {
    call();
    return std::nullopt;
  } catch (const TCommandFailure&) {
    throw;
  } catch (const TExplainedException& exception) {
    return failed(exception.GetStatusCode(), exception.GetReason());
  } catch (const TQDXException& exception) {
    return failed(exception.GetStatusCode(), lastError.Get());
  } catch (const std::bad_alloc&) {
    return failed(kQDXStatusOutOfMemory, "");
  } catch (const std::exception& exception) {
    return failed(kQDXStatusFail, exception.what());
  } catch (...) {  // plug-ins may throw anything
    return failed(kQDXStatusFail, "");
  }
}

std::optional<TExplainedException> TryUnlessOutOfMemory(const std::function<void()>& call) {
  auto failure = Try(call);
  if (failure && failure->GetStatusCode() == kQDXStatusOutOfMemory) throw std::bad_alloc();
  return failure;
}

TExplainedException WithoutName(const TExplainedException& failure, const std::string& name) {
  const std::string& reason = failure.GetReason();
  const std::string start = name + ": ";
  if (reason.compare(0, start.size(), start) != 0) return failure;
  return {failure.GetStatusCode(), reason.substr(start.size())};
}

void PrintFailure(const std::string& action, const TExplainedException& failure) {
  PrintAndLog(LineOf(action, failure), failure.GetStatusCode());
}

void PrintError(const std::string& line) {
  // If this fails, nothing is left to report it.
  (void)WriteAll(STDERR_FILENO, "qdx: " + ForTerminal(line) + "\n");
}

TCommandFailure::TCommandFailure(EExitCode code, const std::string& action,
                                 const TExplainedException& failure)
    : std::runtime_error(LineOf(action, failure)),
      fExitCode(code),
      fStatus(failure.GetStatusCode()) {}

void TCommandFailure::Print() const {
  const std::string line = what();
  if (fStatus) {
    PrintAndLog(line, *fStatus);
  } else if (!line.empty()) {
    PrintError(line);
  }
}

void FailOnUsage(const std::string& mistake) {
  throw TCommandFailure(kExitUsage, mistake + ". Try 'qdx --help'.");
}

}  // namespace NVORNQDX20
