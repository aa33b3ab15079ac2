// SPDX-License-Identifier: Apache-2.0
#include "libraries.h"

#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>

#include <algorithm>
#include <filesystem>

#include <boost/algorithm/string/predicate.hpp>

#include "crash_note.h"
#include "plugin_file.h"
#include "plugin_trial.h"

namespace NVORNQDX20 {
namespace {

const std::string kPrefix = "lib";

std::string SuffixOf(const std::string& kind) {
  return "." + kind + TOSSpecific::kDynamicModuleExtension;
}

std::string PluginFolder() {
  // The loader's name for the core has the ".." of this command's own search path in it.
  return std::filesystem::canonical(TOSSpecific::GetQDXRootPath()).string();
}

/// Every service that the folder has a name for. FindNSServices would pass over a folder or a
/// dangling link in silence, and take libfoo.nsp.so.old, which is put aside, for a plug-in.
std::vector<std::string> FindServices(const std::string& kind) {
  const std::string folder = PluginFolder();
  std::error_code error;
  const std::filesystem::directory_iterator entries(folder, error);
  if (error) {
    throw TCommandFailure(
        kExitNothingCollected,
        FailureLine("looking for plug-ins", folder, {kQDXStatusAccessDenied, error.message()}));
  }
  const std::string suffix = SuffixOf(kind);
  std::vector<std::string> services;
  for (const std::filesystem::directory_entry& entry : entries) {
    const std::string name = entry.path().filename().string();
    if (boost::algorithm::starts_with(name, kPrefix) && boost::algorithm::ends_with(name, suffix)) {
      services.push_back(name.substr(kPrefix.size(), name.size() - kPrefix.size() - suffix.size()));
    }
  }
  std::sort(services.begin(), services.end());
  return services;
}

std::string FileOf(const std::string& service, const std::string& kind) {
  return PluginFolder() + "/" + kPrefix + service + SuffixOf(kind);
}

/// Loads every library of a kind; `load` gets one to fill, and its failure becomes the library's.
template <typename TLoaded>
std::vector<TLoaded> LoadAll(const std::string& kind, const std::string& tried,
                             const std::function<void(TLoaded&)>& load) {
  std::vector<TLoaded> libraries;
  for (const std::string& service : FindServices(kind)) {
    TLoaded library;
    library.fService = service;
    library.fFile = FileOf(service, kind);
    library.fFailure = Try([&] {
      CheckPluginFile(library.fFile);
      TryPlugin(library.fFile, [&] { load(library); });
      load(library);
    });
    if (library.fFailure) PrintError(FailureLine(tried, service, *library.fFailure));
    libraries.push_back(library);
  }
  return libraries;
}

void LoadProviders(TProviderLibrary& library) {
  const TProviders before = RegisteredProviders();
  TOSSpecific::LoadNSPLibrary(library.fService);
  for (const auto& provider : RegisteredProviders()) {
    if (std::find(before.begin(), before.end(), provider) == before.end()) {
      library.fProviders.push_back(provider);
    }
  }
  if (library.fProviders.empty()) {
    LogErrorAndThrow(kQDXStatusInvalidPlugin, {"it registers no provider under a name of its own"});
  }
}

void LoadConsumer(TConsumerLibrary& library) {
  library.fConsumer.reset(TOSSpecific::LoadNSCLibrary(library.fService));
  if (!library.fConsumer) {
    LogErrorAndThrow(kQDXStatusInvalidPlugin, {"it creates no consumer"});
  }
}

/// Not a failure of the provider: it has none of this name, or hands out none at all.
bool IsWithoutNamespace(const TFailure& failure) {
  return failure.fStatus == kQDXStatusNotFound || failure.fStatus == kQDXStatusNotImplemented;
}

}  // namespace

std::vector<TProviderLibrary> LoadProviderLibraries() {
  return LoadAll<TProviderLibrary>("nsp", "loading provider", LoadProviders);
}

std::vector<TConsumerLibrary> LoadConsumerLibraries() {
  return LoadAll<TConsumerLibrary>("nsc", "loading consumer", LoadConsumer);
}

TProviders RegisteredProviders() {
  TProviders providers;
  boost::function<bool(boost::shared_ptr<INamespaceProvider>)> add =
      [&providers](boost::shared_ptr<INamespaceProvider> provider) {
        if (!Try([&] { provider->GetName(TOptionsMap()); })) providers.push_back(provider);
        return true;
      };
  TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(add);
  return providers;
}

std::string NameOf(const INamespaceProvider& provider) {
  std::string name = "?";
  (void)Try([&] { name = provider.GetName(TOptionsMap()); });
  return name;
}

boost::shared_ptr<ICIMNamespace> FindMachineNamespace(const TOptionsMap& options, bool& failed) {
  boost::shared_ptr<ICIMNamespace> ns;
  for (const auto& provider : RegisteredProviders()) {
    const std::string tried = std::string("opening ") + kMachineNamespace + " of provider";
    const std::string name = NameOf(*provider);
    const TCrashNote note(tried, name);
    const auto failure = Try([&] { ns = provider->GetNamespace(kMachineNamespace, options); });
    if (ns) return ns;
    if (failure && IsWithoutNamespace(*failure)) continue;
    failed = true;
    PrintError(
        FailureLine(tried, name, failure.value_or(TFailure(kQDXStatusFail, "it answers nothing"))));
  }
  return ns;
}

}  // namespace NVORNQDX20
