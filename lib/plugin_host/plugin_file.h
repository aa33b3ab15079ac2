// SPDX-License-Identifier: Apache-2.0
/// Checks the file of a plug-in before it is loaded.
#ifndef LIB_PLUGIN_HOST_PLUGIN_FILE_H_
#define LIB_PLUGIN_HOST_PLUGIN_FILE_H_

#include <string>

namespace NVORNQDX20 {

/// Throws kQDXStatusInvalidPlugin, with the reason, unless the file is a complete library for this
/// kind of machine with at least one build stamp, and all its stamps have this major version, no
/// newer minor version, and the settings of this build. Loading runs code of a library, and a
/// truncated one, or one built against other interfaces, could crash the process. As root, also
/// requires that only root and the owner of this command could have written the file.
void CheckPluginFile(const std::string& file);

}  // namespace NVORNQDX20

#endif  // LIB_PLUGIN_HOST_PLUGIN_FILE_H_
