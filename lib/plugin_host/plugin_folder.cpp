// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/plugin_folder.h>

#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20::NPluginHost {
namespace {

const std::string kPrefix = "lib";

std::string SuffixOf(EPluginKind kind) {
  return (kind == EPluginKind::kProvider ? ".nsp" : ".nsc") + TOSSpecific::kDynamicModuleExtension;
}

TPluginFile PluginIn(const std::string& folder, EPluginKind kind, const std::string& service) {
  return {kind, service, folder + "/" + kPrefix + service + SuffixOf(kind)};
}

}  // namespace

const std::string& RootPath() {
  // Asked for once: the core looks at each symbol of its library.
  static const std::string& root = *new std::string(TOSSpecific::GetQDXRootPath());
  return root;
}

std::string PluginFolder() {
  // dladdr's path contains the ".." of the command's RUNPATH.
  return std::filesystem::canonical(RootPath()).string();
}

/// FindNSServices would silently skip a folder or a dangling link, and would accept
/// libfoo.nsp.so.old.
std::vector<TPluginFile> FindPlugins(EPluginKind kind) {
  const std::string folder = PluginFolder();
  std::error_code error;
  std::vector<TPluginFile> plugins;
  const std::string suffix = SuffixOf(kind);
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (boost::algorithm::starts_with(name, kPrefix) && boost::algorithm::ends_with(name, suffix)) {
      plugins.push_back(PluginIn(
          folder, kind, name.substr(kPrefix.size(), name.size() - kPrefix.size() - suffix.size())));
    }
  }
  if (error) {
    throw TExplainedException(kQDXStatusAccessDenied, folder + ": " + ErrorText(error.value()));
  }
  std::sort(plugins.begin(), plugins.end(), [](const TPluginFile& left, const TPluginFile& right) {
    return left.fService < right.fService;
  });
  return plugins;
}

TPluginFile PluginOf(EPluginKind kind, const std::string& service) {
  return PluginIn(PluginFolder(), kind, service);
}

}  // namespace NVORNQDX20::NPluginHost
