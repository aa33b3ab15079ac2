// SPDX-License-Identifier: Apache-2.0
/// The registry of namespace providers, and access to the singletons of the process.
#ifndef QDXCORE_REGISTRY_H_
#define QDXCORE_REGISTRY_H_

#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>

#include <map>
#include <string>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class ILogger;

/// Holds every provider under the name that its GetName() returns, until the process ends.
/// Not synchronised: one thread only.
class QDXCORE_EXPORT INamespaceProviderManager {
 public:
  virtual ~INamespaceProviderManager();
  /// Registers a provider. If the name is taken, the first provider keeps it, and the new one is
  /// dropped silently. Exceptions of the provider's GetName() propagate.
  virtual void RegisterNamespaceProvider(boost::shared_ptr<INamespaceProvider> provider) = 0;
  /// Returns the provider with this name, which is case-sensitive. Logs an unknown name and throws
  /// kQDXStatusNotFound.
  virtual boost::shared_ptr<INamespaceProvider> GetNamespaceProvider(
      const std::string& name) const = 0;
  /// Calls back for each provider in ascending bytewise order of the names, until the callback
  /// returns false. The callback must be a variable, because the parameter binds to no temporary:
  ///
  ///   boost::function<bool(boost::shared_ptr<INamespaceProvider>)> print = [](auto provider) {
  ///     std::cout << provider->GetName({}) << '\n';
  ///     return true;
  ///   };
  ///   TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(print);
  virtual void EnumerateNamespaceProviders(
      boost::function<bool(boost::shared_ptr<INamespaceProvider>)>& callback) const = 0;
};

/// The registry of the process, a singleton.
class QDXCORE_EXPORT TNamespaceProviderManager : public INamespaceProviderManager {
 public:
  /// Returns the registry; the first call creates it.
  static boost::shared_ptr<TNamespaceProviderManager> GetInstance();

  ~TNamespaceProviderManager() override;
  TNamespaceProviderManager(const TNamespaceProviderManager&) = delete;
  TNamespaceProviderManager& operator=(const TNamespaceProviderManager&) = delete;

  void RegisterNamespaceProvider(boost::shared_ptr<INamespaceProvider> provider) override;
  boost::shared_ptr<INamespaceProvider> GetNamespaceProvider(
      const std::string& name) const override;
  void EnumerateNamespaceProviders(
      boost::function<bool(boost::shared_ptr<INamespaceProvider>)>& callback) const override;

 private:
  TNamespaceProviderManager();

  static boost::shared_ptr<TNamespaceProviderManager> fgInstance;

  std::map<std::string, boost::shared_ptr<INamespaceProvider>> fProviders;
};

/// Gives access to the singletons of the process.
class QDXCORE_EXPORT TRootObject {
 public:
  TRootObject() = delete;

  /// Returns the logger; null before TLogger::Initialize() and after that logger was deleted.
  /// LogMessage() in <qdxcore/logger.h> handles null.
  static ILogger* GetCoreLogger();
  static boost::shared_ptr<INamespaceProviderManager> GetNamespaceProviderManager();
};

/// Registers the provider that `make` returns. Returns false after any exception, and logs "Failed
/// to register a provider: " and the reason as an error.
QDXCORE_EXPORT bool RegisterProvider(boost::shared_ptr<INamespaceProvider> (*make)()) noexcept;

/// Creates a provider and registers it. For the initialiser of a global variable in a plug-in: it
/// runs while the library is loaded, where an exception would end the process. So a failure is
/// logged and returned as false, and the provider is missing from the registry.
///
///   [[maybe_unused]] const bool kRegistered = RegisterProvider<TMyProvider>();
template <typename TProvider>
bool RegisterProvider() noexcept {
  return RegisterProvider(
      []() -> boost::shared_ptr<INamespaceProvider> { return boost::make_shared<TProvider>(); });
}

}  // namespace NVORNQDX20

#endif  // QDXCORE_REGISTRY_H_
