// SPDX-License-Identifier: Apache-2.0
/// The record of a collection in its document.
#ifndef TOOLS_QDX_VERBS_COLLECTION_RECORD_H_
#define TOOLS_QDX_VERBS_COLLECTION_RECORD_H_

#include <string>
#include <vector>

#include "plugin_host/provider_query.h"

namespace NVORNQDX20 {

/// The name of the record's namespace. Namespaces of providers with this name are not collected.
extern const char* const kRecordNamespaceName;

/// Returns a namespace with one VORNSG_Collection (host, time, version) and a
/// VORNSG_CollectionFailure for each failure. An empty host name means unknown.
boost::shared_ptr<ICIMNamespace> MakeCollectionRecord(const TProviderQuery& machine,
                                                      const std::string& hostName);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_COLLECTION_RECORD_H_
