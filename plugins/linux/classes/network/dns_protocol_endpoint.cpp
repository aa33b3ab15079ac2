// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_DNSProtocolEndpoint: how the machine resolves names.
#include "access_point.h"
#include "sources/network/resolver.h"

namespace NVORNQDX20 {
namespace {

struct TDNSEndpoint : TAccessPoint, TResolver {};

}  // namespace

TClass DNSProtocolEndpointClass() {
  return THostTable<TDNSEndpoint>{
      "VORNSG_DNSProtocolEndpoint",
      "How this machine resolves names.",
      [](const THost& host) {
        const TResolverFile& file = host.Shared<TResolverFile>();
        return file.fResolver.map([&file](const TResolver& resolver) {
          return TDNSEndpoint{{file.fPath}, resolver};
        });
      },
      {{"DNSServerAddresses", "The servers, in the order in which they are asked.",
        &TDNSEndpoint::fServers, ESecret::kAddress},
       {"DNSSuffixesToAppend", "The domains that are appended to short names, in their order.",
        &TDNSEndpoint::fSearch, ESecret::kHostName},
       {"ResolverOptions", "Options of the resolver, as in \"ndots:2\".", &TDNSEndpoint::fOptions}}}
      .DerivedFrom(ProtocolEndpointTable());
}

}  // namespace NVORNQDX20
