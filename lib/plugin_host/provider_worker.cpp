// SPDX-License-Identifier: Apache-2.0
#include "provider_worker.h"

#include <qdxcore/copy.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/parts.h>
#include <qdxcore/registry.h>
#include <qdxmodel/attempt.h>
#include <qdxplugin_host/image.h>
#include <qdxrepository/repository.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/heap.h>
#include <qdxsystem/unnamed_file.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "worker_log.h"

namespace NVORNQDX20::NPluginHost {
namespace {

using TClock = std::chrono::steady_clock;

class TProviderWorker {
 public:
  TProviderWorker(const TProviderRequest& request, TSender& sender)
      : fRequest(request), fSender(sender) {}

  void Load(const TPluginFile& plugin) {
    const TLastError lastError;
    Attempt({}, kLoading, [&] {
      TOSSpecific::LoadNSPLibrary(plugin.fService);
      for (const auto& provider : AllProviders()) {
        std::string name;
        if (!Try([&] { name = provider->GetName({}); })) {
          fSender.Send(kProvider, {name});
          fProviders.emplace_back(name, provider);
        }
      }
      if (!fProviders.empty()) return;
      const std::string& error = lastError.Get();
      throw TExplainedException(
          kQDXStatusInvalidPlugin,
          error.empty() ? "it registers no provider under a name of its own" : error);
    });
  }

  void AskAll() {
    for (const auto& [name, provider] : fProviders) {
      const auto& wanted = fRequest.fProviders;
      if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), name) == wanted.end())
        continue;
      const auto start = TClock::now();
      SendParts(name, *provider);
      Ask(name, *provider);
      const auto time =
          std::chrono::duration_cast<std::chrono::microseconds>(TClock::now() - start);
      fSender.Send(kTime, {name}, time.count());
    }
  }

 private:
  using TProvider = boost::shared_ptr<INamespaceProvider>;

  static std::vector<TProvider> AllProviders() {
    std::vector<TProvider> all;
    boost::function<bool(TProvider)> add = [&all](const TProvider& provider) {
      all.push_back(provider);
      return true;
    };
    TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(add);
    return all;
  }

  void SendParts(const std::string& name, const INamespaceProvider& provider) {
    const auto* const parts = dynamic_cast<const IPartsOfProvider*>(&provider);
    if (parts == nullptr) return;
    Attempt({name, ""}, "listing the parts of", [&] {
      parts->EnumerateParts([&](const std::string& part, bool isOnRequest) {
        fSender.Send(kPart, {name, part}, isOnRequest ? 1 : 0);
        return true;
      });
    });
  }

  void Ask(const std::string& name, INamespaceProvider& provider) {
    std::vector<std::string> namespaces = {fRequest.fNamespace};
    if (fRequest.fNamespace.empty()) namespaces = List(name, provider);
    if (!fRequest.fReadsNamespaces) return;
    for (const std::string& ns : namespaces) Read({name, ns}, provider);
  }

  /// Returns an empty list if the provider does not implement the enumeration, which is optional.
  std::vector<std::string> List(const std::string& name, INamespaceProvider& provider) {
    std::vector<std::string> names;
    bool isOffered = true;
    const bool isListed = Attempt({name, ""}, "listing the namespaces of", [&] {
      try {
        provider.EnumerateNamespaceNames(
            [&names](const std::string& each) {
              const bool isNew = std::find(names.begin(), names.end(), each) == names.end();
              if (isNew) names.push_back(each);
              return true;
            },
            fRequest.fOptions);
      } catch (const TQDXException& exception) {
        if (exception.GetStatusCode() != kQDXStatusNotImplemented) throw;
        isOffered = false;
      }
    });
    if (isListed && isOffered) fSender.Send(kListed, {name});
    for (const std::string& each : names) fSender.Send(kNamespace, {name, each});
    return names;
  }

  void Read(const TOrigin& origin, INamespaceProvider& provider) {
    // Who asks for one namespace usually needs few of its classes.
    if (fRequest.fNamespace.empty()) PrepareHeap(kRoomForNamespace);
    boost::shared_ptr<ICIMNamespace> ns;
    bool isOffered = true;
    const bool isOpen = Attempt(origin, "opening", [&] {
      try {
        ns = provider.GetNamespace(origin.fNamespace, fRequest.fOptions);
      } catch (const TQDXException& exception) {
        // A provider that is asked for a namespace that it does not list need not have it.
        const EQDXStatusCode status = exception.GetStatusCode();
        const bool isAbsent = status == kQDXStatusNotFound || status == kQDXStatusNotImplemented;
        if (!isAbsent || fRequest.fNamespace.empty()) throw;
        isOffered = false;
      }
      if (isOffered && !ns) throw TExplainedException(kQDXStatusFail, "it returns none");
    });
    if (!isOpen || !isOffered) return;
    if (!Attempt(origin, "reading", [&] { Deliver(origin, *ns); })) DeliverPart(origin, ns);
  }

  /// After a failure: what can be read before it.
  void DeliverPart(const TOrigin& origin, const boost::shared_ptr<ICIMNamespace>& ns) {
    fSender.Send(kAsking, {origin.fProvider, origin.fNamespace, "reading"});
    (void)Try([&] {
      const auto part = MakeRepositoryNamespace(origin.fNamespace);
      (void)Try([&] { TCIMCopy::CopyClasses(ns, part); });
      Deliver(origin, *part);
    });
  }

  void Deliver(const TOrigin& origin, const ICIMNamespace& ns) {
    TDescriptor file = OpenUnnamedFile();
    if (!file.IsOpen()) {
      throw TExplainedException(kQDXStatusFileSystemError, ErrorText(file.GetError()));
    }
    const auto write = [&file](std::string_view bytes) {
      if (WriteAll(file.Get(), bytes)) return;
      throw TExplainedException(kQDXStatusFileSystemError, ErrorText(errno));
    };
    const auto warnings = WriteImage(ns, write);
    const std::string where = origin.fNamespace + " of provider " + origin.fProvider;
    fSender.Send(kImage, {origin.fProvider, origin.fNamespace}, 0, std::move(file));
    for (const std::string& warning : warnings) fSender.Send(kWarning, {where + ": " + warning});
  }

  bool Attempt(const TOrigin& origin, const std::string& operation,
               const std::function<void()>& work) {
    fSender.Send(kAsking, {origin.fProvider, origin.fNamespace, operation});
    const auto failure = Try(work);
    if (!failure) return true;
    const TExplainedException bare = WithoutName(*failure, origin.fProvider);
    const bool isMemory = bare.GetStatusCode() == kQDXStatusOutOfMemory;
    fSender.Send(kFailure,
                 {origin.fProvider, origin.fNamespace, operation,
                  bare.GetReason() + (isMemory ? "; --memory allows more" : "")},
                 bare.GetStatusCode());
    return false;
  }

  const TProviderRequest& fRequest;
  TSender& fSender;
  std::vector<std::pair<std::string, TProvider>> fProviders;
};

}  // namespace

void ServeProviders(const TPluginFile& plugin, const TProviderRequest& request, TSender& sender) {
  const TWorkerLog log(sender, ILogger::kLogError);  // what a provider logs is not printed
  TProviderWorker worker(request, sender);
  worker.Load(plugin);
  worker.AskAll();
  sender.Send(kAsking, {"", "", "ending"});
  sender.Send(kDone, {});
}

}  // namespace NVORNQDX20::NPluginHost
