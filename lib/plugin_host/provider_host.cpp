// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/provider_host.h>

#include <qdxcore/logger.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/names.h>
#include <qdxplugin_host/image.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/heap.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "plugin_file.h"
#include "provider_worker.h"

namespace NVORNQDX20::NPluginHost {
namespace {

/// Bytes of memory for a namespace. Those of real machines need a tenth of it.
constexpr std::size_t kMaxImageMemory = std::size_t{768} << 20U;
/// Bytes of an image whose namespace takes megabytes.
constexpr off_t kLargeImage = off_t{256} << 10U;

/// A library that is being asked. It trusts no message.
class TAnswer {
 public:
  TAnswer(TAskedLibrary& library, const std::string& ns) : fLibrary(library), fNamespace(ns) {}

  void Receive(TMessage&& message) {
    switch (message.fKind) {
      case kAsking:
        fAsking = {{message.Text(0), message.Text(1)}, message.Text(2)};
        break;
      case kProvider:
        fLibrary.fProviders.push_back({message.Text(0)});
        break;
      case kPart:
        if (TAskedProvider* provider = Find(message.Text(0))) {
          provider->fParts.push_back({message.Text(1), message.fNumber != 0});
        }
        break;
      case kListed:
        if (TAskedProvider* provider = Find(message.Text(0))) provider->fNamespaces.emplace();
        break;
      case kNamespace:
        if (TAskedProvider* provider = Find(message.Text(0))) {
          if (provider->fNamespaces) provider->fNamespaces->push_back(message.Text(1));
          fExpected.insert({message.Text(0), message.Text(1)});
        }
        break;
      case kImage:
        Read({message.Text(0), message.Text(1)}, message.fFile);
        break;
      case kFailure:
        Fail({{message.Text(0), message.Text(1)}, message.Text(2)},
             {StatusOf(message.fNumber), message.Text(3)});
        break;
      case kWarning:
        fLibrary.fWarnings.push_back(message.Text(0));
        break;
      case kTime:
        if (TAskedProvider* provider = Find(message.Text(0))) {
          provider->fTime = std::chrono::microseconds(message.fNumber);
        }
        break;
      case kDone:
        fIsDone = true;
        break;
      default: {
        std::vector<std::string> onlyLogged;
        ReceiveLogEntry(message, onlyLogged);
      }
    }
  }

  void End(const TWorkerEnd& end) {
    if (end.fIsNormal && fIsDone) return;
    for (TAskedProvider& provider : fLibrary.fProviders) {
      if (provider.fTime.count() == 0) provider.fTime = end.fTime;
    }
    Fail(fAsking, {kQDXStatusInvalidPlugin, end.fIsNormal ? kEndedEarly : end.fReason});
  }

 private:
  struct TOperation {
    TOrigin fOrigin;
    std::string fName = kLoading;
  };

  TAskedProvider* Find(const std::string& name) {
    const auto found = std::find_if(fLibrary.fProviders.begin(), fLibrary.fProviders.end(),
                                    [&name](const auto& each) { return each.fName == name; });
    return found == fLibrary.fProviders.end() ? nullptr : &*found;
  }

  void Fail(const TOperation& operation, const TExplainedException& failure) {
    if (operation.fName == kLoading) {
      fLibrary.fLoadFailure = failure;
      return;
    }
    TOrigin origin = operation.fOrigin;
    if (origin.fProvider.empty()) origin.fProvider = fLibrary.fPlugin.fService;
    fLibrary.fFailures.push_back({origin, operation.fName, failure});
  }

  /// Returns whether this is the first image of a namespace that was asked for.
  bool IsExpected(const TOrigin& origin) {
    if (Find(origin.fProvider) == nullptr) return false;
    return fExpected.erase({origin.fProvider, origin.fNamespace}) != 0 ||
           (!fNamespace.empty() && origin.fNamespace == fNamespace &&
            fWasRead.insert(origin.fProvider).second);
  }

  void Read(const TOrigin& origin, const TDescriptor& file) {
    if (!IsExpected(origin)) {
      const TOperation operation{fAsking.fOrigin, "reading the answer of"};
      return Fail(operation, {kQDXStatusInvalidPlugin, "it delivers what it was not asked for"});
    }
    ::fcntl(file.Get(), F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK);
    const std::string name = origin.fNamespace + " of provider " + origin.fProvider;
    struct stat status {};
    if (::fstat(file.Get(), &status) == 0 && status.st_size >= kLargeImage) {
      PrepareHeap(kRoomForNamespace);
    }
    off_t offset = 0;
    const auto read = [&](char* buffer, std::size_t size) {
      const ssize_t count = ::pread(file.Get(), buffer, size, offset);
      if (count < 0) throw TExplainedException(kQDXStatusFileSystemError, ErrorText(errno));
      offset += count;
      return static_cast<std::size_t>(count);
    };
    const auto failure = Try([&] {
      const TImage image = ReadImage(origin.fNamespace, read, kMaxImageMemory);
      fLibrary.fNamespaces.push_back({origin, image.fNamespace});
      for (const std::string& warning : image.fWarnings) {
        fLibrary.fWarnings.push_back(name + ": " + warning);
      }
    });
    if (failure) Fail({origin, "reading the answer about"}, *failure);
  }

  TAskedLibrary& fLibrary;
  const std::string fNamespace;  // the only one that was asked for; empty for all
  TOperation fAsking;
  std::set<std::pair<std::string, std::string>> fExpected;  // provider, namespace
  std::set<std::string> fWasRead;                           // providers with fNamespace
  bool fIsDone = false;
};

bool IsInstalledWithCommand(const TPluginFile& plugin) {
  return plugin.fService == "linux" || plugin.fService == "cimxml";
}

template <typename TOfProvider>
void EraseOf(const std::string& provider, std::vector<TOfProvider>& all) {
  const auto isOf = [&](const TOfProvider& each) { return each.fOrigin.fProvider == provider; };
  all.erase(std::remove_if(all.begin(), all.end(), isOf), all.end());
}

/// Leaves out a provider whose name is in `files`, with the file of its library, and adds others.
void RefuseTakenNames(TAskedLibrary& library, std::map<std::string, std::string>& files) {
  std::vector<TAskedProvider> kept;
  std::string refused;
  for (const TAskedProvider& provider : library.fProviders) {
    const auto [other, isNew] = files.try_emplace(provider.fName, library.fPlugin.fPath);
    if (isNew) {
      kept.push_back(provider);
      continue;
    }
    refused += (refused.empty() ? "its provider " : "; its provider ") + provider.fName +
               " has the name of that in " + other->second;
    EraseOf(provider.fName, library.fNamespaces);
    EraseOf(provider.fName, library.fFailures);
  }
  library.fProviders = std::move(kept);
  if (refused.empty()) return;
  if (library.fLoadFailure) refused = library.fLoadFailure->GetReason() + "; " + refused;
  library.fLoadFailure = {kQDXStatusInvalidPlugin, refused};
}

/// Of two providers with one name, that of the library that is installed with the command is kept,
/// else the first one, so that the same one wins on every machine.
void RefuseTakenNames(std::vector<TAskedLibrary>& libraries) {
  std::map<std::string, std::string> files;
  for (const bool isOurs : {true, false}) {
    for (TAskedLibrary& library : libraries) {
      if (IsInstalledWithCommand(library.fPlugin) == isOurs) RefuseTakenNames(library, files);
    }
  }
}

}  // namespace

std::vector<TAskedLibrary> AskProviders(const std::vector<TPluginFile>& plugins,
                                        const TProviderRequest& request,
                                        const TWorkerLimits& limits, const TWaitCallback& wait,
                                        const std::vector<TWorkerJob>& others) {
  std::vector<TAskedLibrary> libraries;
  libraries.reserve(plugins.size());
  std::vector<TAnswer> answers;
  answers.reserve(plugins.size());
  std::vector<TWorkerJob> jobs;
  for (const TPluginFile& plugin : plugins) {
    TAskedLibrary& library = libraries.emplace_back(TAskedLibrary{plugin});
    library.fLoadFailure = Try([&plugin] { CheckPluginFile(plugin.fPath); });
    if (library.fLoadFailure) continue;
    TAnswer& answer = answers.emplace_back(library, request.fNamespace);
    TWorkerJob job{"provider " + plugin.fService,
                   [&](TSender& sender) { ServeProviders(plugin, request, sender); },
                   [&answer](TMessage&& message) { answer.Receive(std::move(message)); },
                   [&answer](const TWorkerEnd& end) { answer.End(end); }};
    // The provider that takes longest starts first.
    jobs.insert(plugin.fService == "linux" ? jobs.begin() : jobs.end(), std::move(job));
  }
  jobs.insert(jobs.end(), others.begin(), others.end());
  RunWorkers(jobs, limits, wait);
  RefuseTakenNames(libraries);
  return libraries;
}

}  // namespace NVORNQDX20::NPluginHost
