// SPDX-License-Identifier: Apache-2.0
/// How the operating system is doing: memory, processes, load.
#ifndef PLUGINS_LINUX_CLASSES_SYSTEM_LOAD_H_
#define PLUGINS_LINUX_CLASSES_SYSTEM_LOAD_H_

#include <vector>

#include "machine/host_files.h"
#include "namespace_builder.h"

namespace NVORNQDX20 {

/// Properties of the operating system, and what the machine has for each.
std::vector<TPropertySpec> SystemLoadProperties();
std::vector<TPropertyValue> ReadSystemLoad(const THostFiles& files);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_SYSTEM_LOAD_H_
