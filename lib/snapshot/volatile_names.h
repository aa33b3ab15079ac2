// SPDX-License-Identifier: Apache-2.0
/// The volatile properties of namespaces that do not mark them with a qualifier.
#ifndef LIB_SNAPSHOT_VOLATILE_NAMES_H_
#define LIB_SNAPSHOT_VOLATILE_NAMES_H_

#include <string>

namespace NVORNQDX20 {

/// Returns whether properties of this name, in any class, have the current state of a running
/// machine, or the place where it was collected. Only for documents of others, and for those that
/// were written before the qualifier existed: the list does not grow.
bool HasVolatileName(const std::string& property);

}  // namespace NVORNQDX20

#endif  // LIB_SNAPSHOT_VOLATILE_NAMES_H_
