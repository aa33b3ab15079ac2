// SPDX-License-Identifier: Apache-2.0
/// Finds and loads plug-ins.
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
  TProviders fProviders;  ///< The providers that it registered.
};

struct TConsumerLibrary : TLibrary {
  boost::shared_ptr<INamespaceConsumer> fConsumer;  ///< Null if it failed.
};

// Each library is checked and loaded in a separate process first, so that loading it cannot end
// this process.

// Both load all libraries in ascending order of the service names, so that of two providers with
// the same name the same one wins on every machine. A library that cannot be used, or registers
// nothing, is skipped, and reported to standard error unless `isQuiet`. Both throw a
// TCommandFailure if the plug-in folder cannot be read.
std::vector<TProviderLibrary> LoadProviderLibraries(bool isQuiet = false);
std::vector<TConsumerLibrary> LoadConsumerLibraries();

/// Writes the failures to standard error.
void ReportFailures(const std::vector<TProviderLibrary>& libraries);

// Load the library of one service. A failure is returned, not reported.
TProviderLibrary LoadProviderLibrary(const std::string& service);
TConsumerLibrary LoadConsumerLibrary(const std::string& service);

/// In ascending order of their names. Without providers whose GetName failed at loading.
TProviders RegisteredProviders();

/// Returns the name that GetName returned at loading.
std::string NameOf(const INamespaceProvider& provider);

/// The end of a reason: what to do if a plug-in is missing.
inline constexpr const char* kListPlugins = "; 'qdx plugins' lists what is installed";

/// The name of the namespace that describes a machine.
inline constexpr const char* kMachineNamespace = "root/cimv2";

/// Returns this namespace of the first provider that has it; null if none has. Another failure of a
/// provider is reported, and sets `failed`.
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
