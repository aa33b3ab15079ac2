// SPDX-License-Identifier: Apache-2.0
/// Whether the system runs in a container, and of which kind.
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_CONTAINER_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_CONTAINER_H_

#include "sources/host.h"

namespace NVORNQDX20 {

/// In the place of a kind: the system runs in no container.
inline constexpr const char* kNone = "none";

/// Returns the kind, for example "docker"; "other" for a container of an unknown kind.
TText ReadContainer(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_CONTAINER_H_
