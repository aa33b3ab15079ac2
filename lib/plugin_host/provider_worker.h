// SPDX-License-Identifier: Apache-2.0
/// The worker's side of provider_host.h: loads a library, asks its providers, and sends messages.
#ifndef LIB_PLUGIN_HOST_PROVIDER_WORKER_H_
#define LIB_PLUGIN_HOST_PROVIDER_WORKER_H_

#include <qdxplugin_host/provider_host.h>

#include <cstddef>
#include <cstdint>

#include "worker_log.h"

namespace NVORNQDX20::NPluginHost {

/// The kinds of messages, with their texts, number and file.
enum EProviderMessage : std::uint8_t {
  kAsking = kFirstFreeKind,  ///< Before each call of a plug-in: provider, namespace, operation.
  kProvider,                 ///< Its name.
  kPart,                     ///< Provider, part; 1 if it is described only on request.
  kListed,                   ///< Provider: it lists its namespaces, each of which follows.
  kNamespace,                ///< Provider, namespace.
  kImage,                    ///< Provider, namespace; the file is an image.
  kFailure,                  ///< Provider, namespace, operation, reason; the status.
  kWarning,                  ///< A line.
  kTime,                     ///< Provider; microseconds.
  kDone,                     ///< The last message.
};

/// Bytes of the heap that a process prepares for a namespace of a machine.
inline constexpr std::size_t kRoomForNamespace = std::size_t{64} << 20U;

void ServeProviders(const TPluginFile& plugin, const TProviderRequest& request, TSender& sender);

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_PROVIDER_WORKER_H_
