// SPDX-License-Identifier: Apache-2.0
/// What a document says of its own origin.
#ifndef TOOLS_QDX_VERBS_COLLECTION_RECORD_H_
#define TOOLS_QDX_VERBS_COLLECTION_RECORD_H_

#include <string>
#include <vector>

#include "plugin_host/live_machine.h"

namespace NVORNQDX20 {

/// The namespace of the record; no provider can have one of this name collected.
extern const char* const kRecordNamespaceName;

/// A namespace with one VORNSG_Collection (who was collected, when, with what), and a
/// VORNSG_CollectionFailure for each failure. An empty host name is one that is not known.
boost::shared_ptr<ICIMNamespace> MakeCollectionRecord(const TLiveMachine& machine,
                                                      const std::string& hostName);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_COLLECTION_RECORD_H_
