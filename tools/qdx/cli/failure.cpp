// SPDX-License-Identifier: Apache-2.0
#include "failure.h"

#include <cstdio>
#include <new>

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
      return "it failed";
  }
}

}  // namespace

TFailure::TFailure(EQDXStatusCode status) : TFailure(status, MeaningOf(status)) {}

std::string TFailure::Text() const {
  return fWhy + " [" + TQDXStatusCode(fStatus).TranslateStatusCode() + "]";
}

std::optional<TFailure> Try(const std::function<void()>& action) {
  const TLastError lastError;
  try {
    action();
    return std::nullopt;
  } catch (const TExplainedException& exception) {
    return TFailure(exception.GetStatusCode(), exception.GetReason());
  } catch (const TQDXException& exception) {
    const EQDXStatusCode status = exception.GetStatusCode();
    return lastError.Get().empty() ? TFailure(status) : TFailure(status, lastError.Get());
  } catch (const std::bad_alloc&) {
    return TFailure(kQDXStatusOutOfMemory);
  } catch (const std::exception& exception) {
    return TFailure(kQDXStatusFail, exception.what());
  } catch (...) {  // plug-ins may throw anything
    return TFailure(kQDXStatusFail);
  }
}

std::string FailureLine(const std::string& tried, const std::string& on, const TFailure& failure) {
  return tried + ", " + on + ": " + failure.Text();
}

void PrintError(const std::string& line) {
  std::fputs(("qdx: " + ForTerminal(line) + "\n").c_str(), stderr);
}

}  // namespace NVORNQDX20
