// SPDX-License-Identifier: Apache-2.0
/// Asks provider plug-ins, each library in a worker of its own.
#ifndef QDXPLUGIN_HOST_PROVIDER_HOST_H_
#define QDXPLUGIN_HOST_PROVIDER_HOST_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>
#include <qdxplugin_host/plugin_folder.h>
#include <qdxplugin_host/worker.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NPluginHost {

/// What providers are asked for.
struct TProviderRequest {
  std::vector<std::string> fProviders = {};  ///< By name; all if empty.
  bool fReadsNamespaces = true;              ///< Their contents, not only their names.
  std::string fNamespace = {};  ///< Only this one, of the providers that have it; all if empty.
  TOptionsMap fOptions = {};    ///< Passed to the providers.
};

/// A provider and one of its namespaces; the namespace is empty for the provider as a whole.
struct TOrigin {
  std::string fProvider;
  std::string fNamespace;
};

/// The operation of a provider that loads its library.
inline constexpr const char* kLoading = "loading";

/// A failure of a provider.
struct TProviderFailure {
  TOrigin fOrigin;
  std::string fOperation;  ///< "listing the namespaces of", "opening", "reading", ...
  TExplainedException fFailure;
};

/// A namespace of a provider, or a copy of it.
struct TMachineNamespace {
  TOrigin fOrigin;
  boost::shared_ptr<ICIMNamespace> fNamespace;
};

/// A part of what a provider describes.
struct TProviderPart {
  std::string fName;
  bool fIsOnRequest = false;  ///< Left out unless the caller asks for it.
};

struct TAskedProvider {
  std::string fName;
  /// None if it does not list them.
  std::optional<std::vector<std::string>> fNamespaces = {};
  std::chrono::microseconds fTime{0};
  std::vector<TProviderPart> fParts = {};  ///< None if it has no parts that can be chosen.
};

/// What one library delivered; after a failure, what it delivered before.
struct TAskedLibrary {
  TPluginFile fPlugin;
  std::optional<TExplainedException> fLoadFailure = {};
  std::vector<TAskedProvider> fProviders = {};
  std::vector<TMachineNamespace> fNamespaces = {};
  std::vector<TProviderFailure> fFailures = {};
  std::vector<std::string> fWarnings = {};  ///< For example about characters that were replaced.
};

/// Asks the providers of all these libraries side by side. Nothing that they do affects this
/// process or the others. Their log entries are logged here. Of two providers with one name the
/// first is taken, or the one that is installed with the command; the other is a failure. `others`
/// are done beside them.
std::vector<TAskedLibrary> AskProviders(const std::vector<TPluginFile>& plugins,
                                        const TProviderRequest& request,
                                        const TWorkerLimits& limits, const TWaitCallback& wait,
                                        const std::vector<TWorkerJob>& others = {});

}  // namespace NVORNQDX20::NPluginHost

#endif  // QDXPLUGIN_HOST_PROVIDER_HOST_H_
