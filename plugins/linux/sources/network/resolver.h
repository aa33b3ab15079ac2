// SPDX-License-Identifier: Apache-2.0
/// Parses the resolver's configuration (resolv.conf(5)).
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_RESOLVER_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_RESOLVER_H_

#include <string>
#include <string_view>
#include <vector>

#include "sources/host.h"

namespace NVORNQDX20 {

struct TResolver {
  std::vector<std::string> fServers;  ///< In the order in which they are asked.
  std::vector<std::string> fSearch;   ///< The domains that are appended to short names.
  std::vector<std::string> fOptions;  ///< Such as "ndots:2".
};

TResolver ParseResolver(std::string_view file);

/// Reads /etc/resolv.conf, the file that programs read.
struct TResolverFile {
  explicit TResolverFile(const THost& host);

  std::string fPath;
  TReading<TResolver> fResolver;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_RESOLVER_H_
