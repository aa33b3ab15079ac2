// SPDX-License-Identifier: Apache-2.0
/// Finds and loads the plug-ins.
#ifndef TOOLS_QDX_PLUGIN_HOST_LIBRARIES_H_
#define TOOLS_QDX_PLUGIN_HOST_LIBRARIES_H_

#include <qdxcore/interfaces.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "cli/failure.h"

namespace NVORNQDX20 {

using TProviders = std::vector<boost::shared_ptr<INamespaceProvider>>;

struct TLibrary {
  std::string fService;
  std::string fFile;
  std::optional<TExplainedException> fFailure;
};

struct TProviderLibrary : TLibrary {
  TProviders fProviders;  ///< What it registered.
};

struct TConsumerLibrary : TLibrary {
  boost::shared_ptr<INamespaceConsumer> fConsumer;  ///< Null if it failed.
};

// Each library is looked at and tried before it is loaded, so that none can end this process by
// being loaded.

// Both load everything there is in ascending order of the service names, so that of two providers
// with one name the same one wins everywhere. A library that cannot be used, or registers nothing,
// is reported on standard error, and the others go on. Both throw a TCommandFailure if the folder
// of the plug-ins cannot be read.
std::vector<TProviderLibrary> LoadProviderLibraries();
std::vector<TConsumerLibrary> LoadConsumerLibraries();

// The one of that service. If it cannot be used, its failure is not reported yet.
TProviderLibrary LoadProviderLibrary(const std::string& service);
TConsumerLibrary LoadConsumerLibrary(const std::string& service);

/// In ascending order of their names. One that did not tell its name when it was loaded is left
/// out.
TProviders RegisteredProviders();

/// As it told it when it was loaded.
std::string NameOf(const INamespaceProvider& provider);

/// For the end of a reason: what to do where a plug-in is missing.
inline constexpr const char* kListPlugins = "; 'qdx plugins' lists what is installed";

/// What providers that describe a machine call its namespace.
inline constexpr const char* kMachineNamespace = "root/cimv2";

/// The machine as the first provider that has this namespace describes it; null if none has. A
/// provider that fails otherwise is reported, and `failed` set.
boost::shared_ptr<ICIMNamespace> FindMachineNamespace(const TOptionsMap& options, bool& failed);

template <typename TLibraries>
bool AnyFailed(const TLibraries& libraries) {
  return std::any_of(libraries.begin(), libraries.end(),
                     [](const TLibrary& library) { return library.fFailure.has_value(); });
}

template <typename TLibraries>
bool AnyUsable(const TLibraries& libraries) {
  return std::any_of(libraries.begin(), libraries.end(),
                     [](const TLibrary& library) { return !library.fFailure; });
}

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_LIBRARIES_H_
