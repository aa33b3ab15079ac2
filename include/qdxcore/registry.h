// SPDX-License-Identifier: Apache-2.0
/// The registry of namespace providers, and the way to the objects of which a process has one.
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

/// Keeps every provider under the name that it gives itself, until the process ends.
/// Not synchronised: one thread only.
class QDXCORE_EXPORT INamespaceProviderManager {
 public:
  virtual ~INamespaceProviderManager();
  /// A name that is taken stays with the first provider; the newcomer is dropped without a word.
  /// What the provider's GetName throws passes out.
  virtual void RegisterNamespaceProvider(boost::shared_ptr<INamespaceProvider> provider) = 0;
  /// The case of the name counts. An unknown name is logged and throws kQDXStatusNotFound.
  virtual boost::shared_ptr<INamespaceProvider> GetNamespaceProvider(
      const std::string& name) const = 0;
  /// In ascending bytewise order of the names; a callback that returns false ends it. The callback
  /// is a variable, since a temporary does not bind:
  ///
  ///   boost::function<bool(boost::shared_ptr<INamespaceProvider>)> print = [](auto provider) {
  ///     std::cout << provider->GetName({}) << '\n';
  ///     return true;
  ///   };
  ///   TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(print);
  virtual void EnumerateNamespaceProviders(
      boost::function<bool(boost::shared_ptr<INamespaceProvider>)>& callback) const = 0;
};

/// The one registry of the process.
class QDXCORE_EXPORT TNamespaceProviderManager : public INamespaceProviderManager {
 public:
  /// Creates the registry on the first call.
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

/// The way to what a process has one of.
class QDXCORE_EXPORT TRootObject {
 public:
  TRootObject() = delete;

  /// Null before TLogger::Initialize() and after that logger was deleted; LogMessage() in
  /// <qdxcore/logger.h> takes care of that.
  static ILogger* GetCoreLogger();
  static boost::shared_ptr<INamespaceProviderManager> GetNamespaceProviderManager();
};

/// Registers what `make` returns. False if that failed, whatever was thrown; "Failed to register a
/// provider: " and the reason are logged as an error.
QDXCORE_EXPORT bool RegisterProvider(boost::shared_ptr<INamespaceProvider> (*make)()) noexcept;

/// Makes a provider and registers it, for the initialiser of a global in a plug-in. That runs while
/// the library is loaded, where an exception would end the process: so this returns false instead,
/// and whoever looks for the provider finds it missing.
///
///   [[maybe_unused]] const bool kRegistered = RegisterProvider<TMyProvider>();
template <typename TProvider>
bool RegisterProvider() noexcept {
  return RegisterProvider(
      []() -> boost::shared_ptr<INamespaceProvider> { return boost::make_shared<TProvider>(); });
}

}  // namespace NVORNQDX20

#endif  // QDXCORE_REGISTRY_H_
