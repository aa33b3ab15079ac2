// SPDX-License-Identifier: Apache-2.0
/// Uses consumer plug-ins, each library in a worker of its own.
#ifndef QDXPLUGIN_HOST_CONSUMER_HOST_H_
#define QDXPLUGIN_HOST_CONSUMER_HOST_H_

#include <qdxplugin_host/plugin_folder.h>
#include <qdxplugin_host/provider_host.h>
#include <qdxplugin_host/worker.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace NVORNQDX20::NPluginHost {

/// What became of a consumer.
struct TAskedConsumer {
  TPluginFile fPlugin;
  std::optional<TExplainedException> fLoadFailure = {};
  std::optional<std::string> fName = {};  ///< None if it does not tell.
  std::size_t fConsumed = 0;              ///< The namespaces that it took.
  /// Why it has no name, or did not take the next namespace.
  std::optional<TExplainedException> fFailure = {};
  bool fIsLost = false;                     ///< It did not come back; fFailure says how it ended.
  std::vector<std::string> fWarnings = {};  ///< That it logged.
  TDescriptor fOutput = {};  ///< What it wrote to standard output, from the start of the file.
};

/// What a consumer is to write.
struct TConsumerRequest {
  std::vector<TMachineNamespace> fNamespaces;
  std::string fFile;          ///< "-" for standard output, which becomes fOutput.
  TOptionsMap fOptions = {};  ///< Besides "file" and "more".
};

/// Loads consumers side by side, beside other jobs, and asks for their names.
class TConsumerNames {
 public:
  explicit TConsumerNames(const std::vector<TPluginFile>& plugins);

  /// The caller runs them while this object lives and stays where it is.
  std::vector<TWorkerJob> GetJobs();
  /// What they were found to be, once the jobs have ended.
  std::vector<TAskedConsumer> Take() && { return std::move(fConsumers); }

 private:
  const TConsumerRequest fNothing = {};
  std::vector<TAskedConsumer> fConsumers;
};

/// Loads these consumers and asks for their names.
std::vector<TAskedConsumer> AskConsumers(const std::vector<TPluginFile>& plugins,
                                         const TWorkerLimits& limits, const TWaitCallback& wait);

/// Passes the namespaces to the consumer, in this order, until it fails. In its process providers
/// with the names of their origins serve them, too.
TAskedConsumer Consume(const TPluginFile& plugin, const TConsumerRequest& request,
                       const TWorkerLimits& limits, const TWaitCallback& wait);

}  // namespace NVORNQDX20::NPluginHost

#endif  // QDXPLUGIN_HOST_CONSUMER_HOST_H_
