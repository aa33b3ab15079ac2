// SPDX-License-Identifier: Apache-2.0
/// The architecture of the processors, in the words of uname.
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_ARCHITECTURE_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_ARCHITECTURE_H_

#include "sources/host.h"

namespace NVORNQDX20 {

/// Returns the architecture, for example "x86_64": the running kernel's, else that for which the
/// programs of an image are built.
TText ReadArchitecture(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_ARCHITECTURE_H_
