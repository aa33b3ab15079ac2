// SPDX-License-Identifier: Apache-2.0
/// What the declarations of a class say about its properties besides name and type.
#ifndef LIB_SNAPSHOT_PROPERTY_DETAILS_H_
#define LIB_SNAPSHOT_PROPERTY_DETAILS_H_

#include <qdxsnapshot/snapshot.h>

#include <vector>

namespace NVORNQDX20 {

/// Sets the positions of the properties, and what their qualifiers say if `withQualifiers`. A
/// declaration that overrides another one has the qualifiers of both; its own come first.
void ReadPropertyDetails(const boost::shared_ptr<ICIMClass>& cimClass, bool withQualifiers,
                         std::vector<TPropertySnapshot>& properties);

}  // namespace NVORNQDX20

#endif  // LIB_SNAPSHOT_PROPERTY_DETAILS_H_
