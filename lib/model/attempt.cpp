// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/attempt.h>

#include <new>

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
    case kQDXStatusAlreadyExists:
      return "there is one already";
    case kQDXStatusInvalidDateTime:
      return "no date-time";
    case kQDXStatusInvalidReference:
      return "no object path";
    case kQDXStatusNotSupported:
      return "it does not support this";
    case kQDXStatusInvalidFormat:
      return "not of the expected form";
    default:
      return "it failed and gave no reason";
  }
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
  } catch (const TPassedOn&) {
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

}  // namespace NVORNQDX20
