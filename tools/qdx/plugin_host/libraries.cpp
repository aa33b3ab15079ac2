// SPDX-License-Identifier: Apache-2.0
#include "libraries.h"

#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>

#include <boost/algorithm/string/predicate.hpp>

#include "crash_note.h"
#include "plugin_file.h"
#include "plugin_trial.h"
#include "surroundings.h"

namespace NVORNQDX20 {
namespace {

const std::string kPrefix = "lib";

std::string SuffixOf(const std::string& kind) {
  return "." + kind + TOSSpecific::kDynamicModuleExtension;
}

std::string PluginFolder() {
  // dladdr's path contains the ".." of this command's RUNPATH.
  return std::filesystem::canonical(TOSSpecific::GetQDXRootPath()).string();
}

/// Returns all services by the file names in the folder. FindNSServices would silently skip a
/// folder or a dangling link, and would accept libfoo.nsp.so.old.
std::vector<std::string> FindServices(const std::string& kind) {
  const std::string folder = PluginFolder();
  std::error_code error;
  const std::filesystem::directory_iterator entries(folder, error);
  if (error) {
    throw TCommandFailure(kExitNothingCollected, "looking for plug-ins in " + folder,
                          {kQDXStatusAccessDenied, ErrorText(error.value())});
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

/// The names that GetName returned at loading; a later call may fail.
std::map<const INamespaceProvider*, std::string>& NamesTold() {
  static std::map<const INamespaceProvider*, std::string> names;
  return names;
}

/// Returns the registered providers whose names are, or are not, known.
TProviders Providers(bool told) {
  TProviders providers;
  boost::function<bool(boost::shared_ptr<INamespaceProvider>)> add =
      [&](boost::shared_ptr<INamespaceProvider> provider) {
        const bool fits = (NamesTold().count(provider.get()) != 0) == told;
        if (fits) providers.push_back(provider);
        return true;
      };
  TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(add);
  return providers;
}

void Load(TProviderLibrary& library) {
  const TLastError lastError;
  TOSSpecific::LoadNSPLibrary(library.fService);
  for (const auto& provider : Providers(false)) {
    const bool told =
        !TryUnlessOutOfMemory([&] { NamesTold()[provider.get()] = provider->GetName({}); });
    if (told) library.fProviders.push_back(provider);
  }
  if (!library.fProviders.empty()) return;
  const std::string& error = lastError.Get();
  throw TExplainedException(
      kQDXStatusInvalidPlugin,
      error.empty() ? "it registers no provider under a name of its own" : error);
}

void Load(TConsumerLibrary& library) {
  library.fConsumer.reset(TOSSpecific::LoadNSCLibrary(library.fService));
  if (!library.fConsumer) {
    throw TExplainedException(kQDXStatusInvalidPlugin, "it creates no consumer");
  }
}

template <typename TLoaded>
constexpr const char* kKind = "nsp";
template <>
constexpr const char* kKind<TConsumerLibrary> = "nsc";
template <typename TLoaded>
constexpr const char* kLoading = "loading provider ";
template <>
constexpr const char* kLoading<TConsumerLibrary> = "loading consumer ";

/// The failure of a load without the names that its line has already. The core's messages are
/// "Couldn't load NSP: SERVICE (FILE: what the system's loader says)" and "... in FILE".
TExplainedException WithoutNames(const TExplainedException& failure, const TLibrary& library) {
  std::string reason = failure.GetReason();
  const std::string service = ": " + library.fService + " (";
  const std::string file = library.fFile.substr(library.fFile.rfind('/'));
  const std::size_t start = reason.find(service);
  const std::size_t in = reason.rfind(" in ");
  if (start != std::string::npos && boost::algorithm::ends_with(reason, ")")) {
    reason = reason.substr(start + service.size(), reason.size() - start - service.size() - 1);
    const std::size_t name = reason.find(file + ": ");
    if (name != std::string::npos) reason.erase(0, name + file.size() + 2);
  } else if (in != std::string::npos && boost::algorithm::ends_with(reason, file)) {
    reason.erase(in);
  }
  return {failure.GetStatusCode(), reason};
}

/// Loads the libraries after a trial of each. All trials run in parallel and before any library is
/// loaded here, so that plug-ins do not affect each other's trials.
template <typename TLoaded>
void LoadBatch(std::vector<TLoaded>& libraries, std::size_t begin, std::size_t end) {
  std::vector<std::unique_ptr<TPluginTrial>> trials(libraries.size());
  for (std::size_t i = begin; i < end; ++i) {
    libraries[i].fFailure = Try([&, &library = libraries[i]] {
      CheckPluginFile(library.fFile);
      trials[i] = std::make_unique<TPluginTrial>([&library] { Load(library); });
    });
  }
  for (std::size_t i = begin; i < end; ++i) {
    if (trials[i]) libraries[i].fFailure = Try([&] { trials[i]->RequireSuccess(); });
  }
  for (std::size_t i = begin; i < end; ++i) {
    TLoaded& library = libraries[i];
    if (library.fFailure) continue;
    const TCrashNote note(kLoading<TLoaded> + library.fFile);
    const TKeptSurroundings kept;
    library.fFailure = Try([&library] { Load(library); });
    if (library.fFailure) library.fFailure = WithoutNames(*library.fFailure, library);
  }
}

template <typename TLoaded>
std::vector<TLoaded> LoadServices(const std::vector<std::string>& services) {
  constexpr std::size_t kBatch = 32;
  std::vector<TLoaded> libraries(services.size());
  for (std::size_t i = 0; i < libraries.size(); ++i) {
    libraries[i].fService = services[i];
    libraries[i].fFile = FileOf(services[i], kKind<TLoaded>);
  }
  for (std::size_t i = 0; i < libraries.size(); i += kBatch) {
    LoadBatch(libraries, i, std::min(i + kBatch, libraries.size()));
  }
  return libraries;
}

template <typename TLoaded>
void Report(const std::vector<TLoaded>& libraries) {
  for (const TLoaded& library : libraries) {
    if (library.fFailure) PrintFailure(kLoading<TLoaded> + library.fFile, *library.fFailure);
  }
}

template <typename TLoaded>
std::vector<TLoaded> LoadAll(bool isQuiet) {
  auto libraries = LoadServices<TLoaded>(FindServices(kKind<TLoaded>));
  if (!isQuiet) Report(libraries);
  return libraries;
}

/// Returns whether the status only means that the provider has no such namespace.
bool IsWithoutNamespace(const TExplainedException& failure) {
  const EQDXStatusCode status = failure.GetStatusCode();
  return status == kQDXStatusNotFound || status == kQDXStatusNotImplemented;
}

}  // namespace

std::vector<TProviderLibrary> LoadProviderLibraries(bool isQuiet) {
  return LoadAll<TProviderLibrary>(isQuiet);
}

std::vector<TConsumerLibrary> LoadConsumerLibraries() { return LoadAll<TConsumerLibrary>(false); }

void ReportFailures(const std::vector<TProviderLibrary>& libraries) { Report(libraries); }

TProviderLibrary LoadProviderLibrary(const std::string& service) {
  return LoadServices<TProviderLibrary>({service}).front();
}

TConsumerLibrary LoadConsumerLibrary(const std::string& service) {
  return LoadServices<TConsumerLibrary>({service}).front();
}

TProviders RegisteredProviders() { return Providers(true); }

std::string NameOf(const INamespaceProvider& provider) {
  const auto told = NamesTold().find(&provider);
  return told == NamesTold().end() ? "?" : told->second;
}

boost::shared_ptr<ICIMNamespace> FindMachineNamespace(const TOptionsMap& options, bool& failed) {
  boost::shared_ptr<ICIMNamespace> ns;
  for (const auto& provider : RegisteredProviders()) {
    const std::string name = NameOf(*provider);
    const std::string action = std::string("opening ") + kMachineNamespace + " of provider " + name;
    const TCrashNote note(action);
    const auto failure = Try([&] { ns = provider->GetNamespace(kMachineNamespace, options); });
    if (ns) return ns;
    if (failure && IsWithoutNamespace(*failure)) continue;
    failed = true;
    PrintFailure(action, failure ? WithoutName(*failure, name)
                                 : TExplainedException(kQDXStatusFail, "it returns none"));
  }
  return ns;
}

}  // namespace NVORNQDX20
