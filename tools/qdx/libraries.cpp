// SPDX-License-Identifier: Apache-2.0
#include "libraries.h"

#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>

#include <algorithm>
#include <filesystem>

namespace NVORNQDX20 {
namespace {

std::vector<std::string> FindServices(const std::string& kind) {
  std::vector<std::string> services;
  const auto failure = Try([&] { services = TOSSpecific::FindNSServices(kind); });
  if (failure) {
    throw TCommandFailure(kExitNothingCollected,
                          FailureLine("looking for plug-ins", "." + kind, *failure));
  }
  std::sort(services.begin(), services.end());
  return services;
}

std::string FileOf(const std::string& service, const std::string& kind) {
  const std::filesystem::path file = TOSSpecific::GetQDXRootPath() + "/lib" + service + "." + kind +
                                     TOSSpecific::kDynamicModuleExtension;
  // The loader's name for the core has the ".." of this command's own search path in it.
  return std::filesystem::weakly_canonical(file).string();
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
    library.fFailure = Try([&] { load(library); });
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
  if (library.fProviders.empty()) throw TQDXException(kQDXStatusInvalidPlugin);
}

void LoadConsumer(TConsumerLibrary& library) {
  library.fConsumer.reset(TOSSpecific::LoadNSCLibrary(library.fService));
  if (!library.fConsumer) throw TQDXException(kQDXStatusInvalidPlugin);
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
      TAddToVectorCallback<INamespaceProvider>(providers);
  TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(add);
  return providers;
}

boost::shared_ptr<ICIMNamespace> FindMachineNamespace(const TOptionsMap& options, bool& failed) {
  boost::shared_ptr<ICIMNamespace> ns;
  for (const auto& provider : RegisteredProviders()) {
    const auto failure = Try([&] { ns = provider->GetNamespace(kMachineNamespace, options); });
    if (ns) return ns;
    if (failure && IsWithoutNamespace(*failure)) continue;
    failed = true;
    PrintError(FailureLine(std::string("opening ") + kMachineNamespace + " of provider",
                           provider->GetName(TOptionsMap()),
                           failure.value_or(TFailure(kQDXStatusFail, "it answers nothing"))));
  }
  return ns;
}

}  // namespace NVORNQDX20
