// SPDX-License-Identifier: Apache-2.0
/// Calls code that may throw anything, and keeps what it throws as a reason in words.
#ifndef QDXMODEL_ATTEMPT_H_
#define QDXMODEL_ATTEMPT_H_

#include <qdxcore/logger.h>
#include <qdxcore/status.h>

#include <functional>
#include <optional>
#include <string>

namespace NVORNQDX20 {

/// A base of exceptions that are no failures of the called code: Try() passes them on.
class TPassedOn {
 protected:
  ~TPassedOn() = default;
};

/// Calls into the core or a plug-in, and returns the exception that it throws, if any. The reason
/// is that of a TExplainedException, else the last error logged during the call, else the meaning
/// of the status. Passes on a TPassedOn.
std::optional<TExplainedException> Try(const std::function<void()>& call);

/// Like Try, for failures that are not reported, but leave something out: throws std::bad_alloc if
/// memory runs out, since that says nothing about what is left out.
std::optional<TExplainedException> TryUnlessOutOfMemory(const std::function<void()>& call);

/// Keeps the last error that is logged during its lifetime.
class TLastError {
 public:
  /// Returns an empty text if there was none.
  const std::string& Get() const { return fMessage; }

 private:
  std::string fMessage;
  const TLogListener fListener{ILogger::kLogError,
                               [this](auto, const auto& message) { fMessage = message; }};
};

/// Returns the failure without "NAME: " at the start of its reason, for a line that already has the
/// name.
TExplainedException WithoutName(const TExplainedException& failure, const std::string& name);

}  // namespace NVORNQDX20

#endif  // QDXMODEL_ATTEMPT_H_
