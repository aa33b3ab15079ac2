// SPDX-License-Identifier: Apache-2.0
/// Names of ARM processors: the kernel knows only the numbers of the main ID register (MIDR).
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_ARM_PARTS_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_ARM_PARTS_H_

namespace NVORNQDX20 {

/// Returns the maker with this number, for example "ARM" for 0x41; null for an unknown number.
const char* ARMImplementerName(unsigned implementer);
/// Returns the name of the maker's part, for example "Cortex-A53" for 0x41 and 0xd03; null for an
/// unknown one.
const char* ARMPartName(unsigned implementer, unsigned part);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_ARM_PARTS_H_
