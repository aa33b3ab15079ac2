// SPDX-License-Identifier: Apache-2.0
/// Checks the file of a plug-in before it is loaded.
#ifndef TOOLS_QDX_PLUGIN_HOST_PLUGIN_FILE_H_
#define TOOLS_QDX_PLUGIN_HOST_PLUGIN_FILE_H_

#include <string>

namespace NVORNQDX20 {

/// Loading a library runs code of it, and one that is cut off, or that was built against other
/// interfaces, can take the whole process with it. So this throws kQDXStatusInvalidPlugin, with
/// what is wrong with "it" as the reason, unless the file is a whole library for this machine that
/// carries build stamps, all of them of this major version and with both definitions in force.
void CheckPluginFile(const std::string& file);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_PLUGIN_FILE_H_
