// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>

#include <new>

namespace NVORNQDX20 {
namespace {

/// Returns the reason of the exception that is being handled. For a bare status this is the last
/// logged error, if there is one, since that says more.
std::string ReasonOfFailure(const std::string& lastError) {
  try {
    throw;
  } catch (const TExplainedException& exception) {
    return exception.GetReason();
  } catch (const TQDXException& exception) {
    return lastError.empty() ? exception.what() : lastError;
  } catch (const std::bad_alloc&) {
    return "out of memory";
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
  // Moved out of the variable before it is destroyed: a provider that uses the registry in its own
  // destructor, when the process ends, gets a new one instead of a half-destroyed one.
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
  // The first provider keeps the name on purpose; the second one is silently dropped.
  fProviders.emplace(provider->GetName({}), provider);
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
} catch (...) {  // out of memory for the message
  return false;
}

}  // namespace NVORNQDX20
