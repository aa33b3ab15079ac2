// SPDX-License-Identifier: Apache-2.0
/// Finds plug-ins.
#ifndef QDXPLUGIN_HOST_PLUGIN_FOLDER_H_
#define QDXPLUGIN_HOST_PLUGIN_FOLDER_H_

#include <string>
#include <vector>

namespace NVORNQDX20::NPluginHost {

enum class EPluginKind { kProvider, kConsumer };

struct TPluginFile {
  EPluginKind fKind;
  std::string fService;  ///< "linux" for liblinux.nsp.so.
  std::string fPath;
};

/// The end of a reason: what to do if a plug-in is missing.
inline constexpr const char* kListPlugins = "; 'qdx plugins' lists what is installed";

/// Returns the folder of the core library as the loader names it.
const std::string& RootPath();

/// Returns the folder of the core library, in which all plug-ins are, without links.
std::string PluginFolder();

/// Returns all plug-ins of a kind in ascending order of their services. Throws
/// kQDXStatusAccessDenied if the folder cannot be read.
std::vector<TPluginFile> FindPlugins(EPluginKind kind);

/// Returns the plug-in of one service, whether or not its file exists.
TPluginFile PluginOf(EPluginKind kind, const std::string& service);

}  // namespace NVORNQDX20::NPluginHost

#endif  // QDXPLUGIN_HOST_PLUGIN_FOLDER_H_
