// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/consumer_host.h>

#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/options.h>
#include <qdxrepository/repository.h>
#include <qdxsystem/unnamed_file.h>

#include <csignal>
#include <cstdio>
#include <map>
#include <memory>
#include <utility>

#include <unistd.h>

#include <boost/smart_ptr/make_shared.hpp>

#include "plugin_file.h"
#include "worker_log.h"

namespace NVORNQDX20::NPluginHost {
namespace {

/// The kinds of messages, with their texts and number.
enum EConsumerMessage : std::uint8_t {
  kLoaded = kFirstFreeKind,
  kLoadFailed,   ///< Reason; the status.
  kName,         ///< Its name.
  kConsumed,     ///< One more namespace.
  kFailed,       ///< Reason; the status.
  kAllConsumed,  ///< The last message.
};

/// Lets consumers that look providers up find those that the namespaces came from.
void RegisterStandIns(const std::vector<TMachineNamespace>& namespaces) {
  std::map<std::string, boost::shared_ptr<TRepositoryProvider>> standIns;
  for (const TMachineNamespace& ns : namespaces) {
    auto& standIn = standIns[ns.fOrigin.fProvider];
    if (!standIn) standIn = boost::make_shared<TRepositoryProvider>(ns.fOrigin.fProvider);
    standIn->AddNamespace(ns.fNamespace);
  }
  standIns.erase("");
  for (const auto& each : standIns) {
    TRootObject::GetNamespaceProviderManager()->RegisterNamespaceProvider(each.second);
  }
}

bool Attempt(const TSender& sender, EConsumerMessage kind, const std::function<void()>& work) {
  const auto failure = Try(work);
  if (failure) sender.Send(kind, {failure->GetReason()}, failure->GetStatusCode());
  return !failure;
}

void ServeConsumer(const TPluginFile& plugin, const TConsumerRequest& request,
                   const TSender& sender) {
  // A file that is too large shall be a failed write, which the consumer explains.
  std::signal(SIGXFSZ, SIG_IGN);
  const TWorkerLog log(sender, ILogger::kLogWarning);
  TDescriptor output;
  if (request.fFile == "-") {
    output = OpenUnnamedFile();
    ::dup2(output.Get(), STDOUT_FILENO);
  }
  boost::shared_ptr<INamespaceConsumer> consumer;
  const bool isLoaded = Attempt(sender, kLoadFailed, [&] {
    RegisterStandIns(request.fNamespaces);
    consumer.reset(TOSSpecific::LoadNSCLibrary(plugin.fService));
    if (!consumer) throw TExplainedException(kQDXStatusInvalidPlugin, "it creates no consumer");
  });
  if (isLoaded) sender.Send(kLoaded, {});
  bool isGood = isLoaded;
  if (isLoaded && request.fNamespaces.empty()) {
    isGood = Attempt(sender, kFailed, [&] { sender.Send(kName, {consumer->GetName({})}); });
  }
  for (std::size_t i = 0; isGood && i < request.fNamespaces.size(); ++i) {
    const bool more = i + 1 < request.fNamespaces.size();
    isGood = Attempt(sender, kFailed, [&] {
      TOptionsMap options = request.fOptions;
      options[NModel::kFileOption] = TCIMValue(request.fFile);
      options[NModel::kMoreOption] = TCIMValue(more);
      consumer->Consume(request.fNamespaces[i].fNamespace, options);
      sender.Send(kConsumed, {});
    });
  }
  // Its destructor is the plug-in's code, too.
  consumer.reset();
  std::fflush(nullptr);
  sender.Send(kAllConsumed, {}, 0, std::move(output));
}

TWorkerJob JobOf(TAskedConsumer& consumer, const TConsumerRequest& request) {
  const auto isDone = std::make_shared<bool>(false);
  const auto isLoaded = std::make_shared<bool>(false);
  return {
      "consumer " + consumer.fPlugin.fService,
      [&consumer, &request](TSender& sender) { ServeConsumer(consumer.fPlugin, request, sender); },
      [&consumer, isDone, isLoaded](TMessage&& message) {
        switch (message.fKind) {
          case kLoaded:
            *isLoaded = true;
            break;
          case kLoadFailed:
            *isLoaded = true;
            consumer.fLoadFailure = {StatusOf(message.fNumber), message.Text(0)};
            break;
          case kName:
            consumer.fName = message.Text(0);
            break;
          case kConsumed:
            ++consumer.fConsumed;
            break;
          case kFailed:
            consumer.fFailure = {StatusOf(message.fNumber), message.Text(0)};
            break;
          case kAllConsumed:
            *isDone = true;
            consumer.fOutput = std::move(message.fFile);
            break;
          default:
            ReceiveLogEntry(message, consumer.fWarnings);
        }
      },
      [&consumer, isDone, isLoaded](const TWorkerEnd& end) {
        if (end.fIsNormal && *isDone) return;
        consumer.fIsLost = true;
        auto& failure = *isLoaded ? consumer.fFailure : consumer.fLoadFailure;
        failure = {kQDXStatusInvalidPlugin, end.fIsNormal ? kEndedEarly : end.fReason};
      }};
}

}  // namespace

TConsumerNames::TConsumerNames(const std::vector<TPluginFile>& plugins) {
  fConsumers.reserve(plugins.size());
  for (const TPluginFile& plugin : plugins) fConsumers.push_back(TAskedConsumer{plugin});
}

std::vector<TWorkerJob> TConsumerNames::GetJobs() {
  std::vector<TWorkerJob> jobs;
  for (TAskedConsumer& consumer : fConsumers) {
    consumer.fLoadFailure = Try([&consumer] { CheckPluginFile(consumer.fPlugin.fPath); });
    if (!consumer.fLoadFailure) jobs.push_back(JobOf(consumer, fNothing));
  }
  return jobs;
}

std::vector<TAskedConsumer> AskConsumers(const std::vector<TPluginFile>& plugins,
                                         const TWorkerLimits& limits, const TWaitCallback& wait) {
  TConsumerNames names(plugins);
  RunWorkers(names.GetJobs(), limits, wait);
  return std::move(names).Take();
}

TAskedConsumer Consume(const TPluginFile& plugin, const TConsumerRequest& request,
                       const TWorkerLimits& limits, const TWaitCallback& wait) {
  TAskedConsumer consumer{plugin};
  consumer.fLoadFailure = Try([&plugin] { CheckPluginFile(plugin.fPath); });
  if (!consumer.fLoadFailure) RunWorkers({JobOf(consumer, request)}, limits, wait);
  return consumer;
}

}  // namespace NVORNQDX20::NPluginHost
