// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>

namespace NVORNQDX20 {
namespace {

/// The reason of the exception that is being handled. A bare status says less than the last error
/// that was logged before it, if there is one.
std::string ReasonOfFailure(const std::string& lastError) {
  try {
    throw;
  } catch (const TExplainedException& exception) {
    return exception.GetReason();
  } catch (const TQDXException& exception) {
    return lastError.empty() ? exception.what() : lastError;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "an exception that is no std::exception";
  }
}

}  // namespace

INamespaceProviderManager::~INamespaceProviderManager() = default;

boost::shared_ptr<TNamespaceProviderManager> TNamespaceProviderManager::fgInstance;

boost::shared_ptr<TNamespaceProviderManager> TNamespaceProviderManager::GetInstance() {
  // Taken out of the variable before that is destroyed: a provider that asks for the registry in
  // its own destructor, as the process ends, gets a new one, not the one that is going.
  struct TDropAtExit {
    ~TDropAtExit() { boost::shared_ptr<TNamespaceProviderManager>().swap(fgInstance); }
  };
  static const TDropAtExit drop;
  if (!fgInstance) fgInstance.reset(new TNamespaceProviderManager);
  return fgInstance;
}

TNamespaceProviderManager::TNamespaceProviderManager() = default;
TNamespaceProviderManager::~TNamespaceProviderManager() = default;

void TNamespaceProviderManager::RegisterNamespaceProvider(
    boost::shared_ptr<INamespaceProvider> provider) {
  // The first provider keeps its name on purpose; the newcomer is dropped in silence.
  fProviders.emplace(provider->GetName(TOptionsMap()), provider);
}

boost::shared_ptr<INamespaceProvider> TNamespaceProviderManager::GetNamespaceProvider(
    const std::string& name) const {
  const auto found = fProviders.find(name);
  if (found != fProviders.end()) return found->second;
  LogErrorAndThrow(kQDXStatusNotFound, {"Failed to find nsp named ", name});
}

void TNamespaceProviderManager::EnumerateNamespaceProviders(
    boost::function<bool(boost::shared_ptr<INamespaceProvider>)>& callback) const {
  for (const auto& [name, provider] : fProviders) {
    if (!callback(provider)) return;
  }
}

ILogger* TRootObject::GetCoreLogger() { return TLogger::GetInstance(); }

boost::shared_ptr<INamespaceProviderManager> TRootObject::GetNamespaceProviderManager() {
  return TNamespaceProviderManager::GetInstance();
}

bool RegisterProvider(boost::shared_ptr<INamespaceProvider> (*make)()) noexcept try {
  std::string lastError;
  const TLogListener listener(ILogger::kLogError,
                              [&lastError](auto, const auto& message) { lastError = message; });
  try {
    TRootObject::GetNamespaceProviderManager()->RegisterNamespaceProvider(make());
    return true;
  } catch (...) {
    LogMessage(ILogger::kLogError, {"Failed to register a provider: ", ReasonOfFailure(lastError)});
  }
  return false;
} catch (...) {  // no memory for the message
  return false;
}

}  // namespace NVORNQDX20
