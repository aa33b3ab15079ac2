// SPDX-License-Identifier: Apache-2.0
// Finds and loads plug-ins.
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include "directory.h"
#include "loader_error.h"

namespace NVORNQDX20 {

const std::string TOSSpecific::kDynamicModuleExtension = ".so";
const std::string TOSSpecific::kQDXPluginExtension = "pi";
const std::string TOSSpecific::kPluginExtension =
    "." + kQDXPluginExtension + kDynamicModuleExtension;
const std::string TOSSpecific::kSpecificationExtension = ".properties.xml";
const std::string TOSSpecific::kFileSeparator = "/";

namespace {

const std::string kNSPExtension = ".nsp.so";
const std::string kNSCExtension = ".nsc.so";

// The lengths of "lib", and of "lib" with ".nsp.so" or ".nsc.so".
constexpr std::size_t kPrefixLength = 3;
constexpr std::size_t kAffixesLength = 10;

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

/// dladdr of this function finds the file of this library. The address of an exported function may
/// be that of an entry in the program.
void SomewhereInThisLibrary() {}

void* Load(const std::string& path) { return ::dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL); }

std::string PathOfService(const std::string& serviceName, const std::string& extension) {
  return TOSSpecific::GetQDXRootPath() + TOSSpecific::kFileSeparator + "lib" + serviceName +
         extension;
}

/// Loads the library of a service; `kind` is part of the log message. The handle is dropped, since
/// a plug-in is never unloaded.
void* LoadService(const std::string& path, const std::string& serviceName, const char* kind) {
  void* const handle = Load(path);
  if (handle == nullptr) {
    LogErrorAndThrow(kQDXStatusFileSystemError,
                     {"Couldn't load ", kind, ": ", serviceName, " (", LoaderError(), ")"});
  }
  return handle;
}

/// Returns whether the entry is a directory to search. The bare name is resolved against the
/// current directory, on purpose. Pinned by PluginSearch.AsksForTheBareName.
bool IsSearchedForPlugins(const std::string& entry) {
  struct stat status {};
  return ::stat(entry.c_str(), &status) == 0 && !IsSelfOrParent(entry) && S_ISDIR(status.st_mode);
}

void AppendPluginsOf(const std::string& directory, const std::string& pattern,
                     std::vector<std::string>& plugins) {
  const TDir opened = OpenDir(directory);
  while (const auto name = NextEntry(opened)) {
    if (Contains(*name, pattern))
      plugins.push_back(directory + TOSSpecific::kFileSeparator + *name);
  }
}

}  // namespace

std::string TOSSpecific::GetQDXRootPath() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<void*>(&SomewhereInThisLibrary), &info) == 0 ||
      info.dli_fname == nullptr) {
    throw TQDXException(kQDXStatusFileSystemError);
  }
  const std::string file = info.dli_fname;
  const std::size_t separator = file.rfind(kFileSeparator);
  // With an empty element in LD_LIBRARY_PATH the loader finds the library under its bare name.
  return separator == std::string::npos ? "." : file.substr(0, separator);
}

std::vector<std::string> TOSSpecific::FindNSServices(std::string kind) {
  const std::string root = GetQDXRootPath();
  const std::string pattern = "." + kind;
  const TDir directory = OpenDir(root);
  std::vector<std::string> services;
  while (const auto name = NextEntry(directory)) {
    struct stat status {};
    if (::stat((root + kFileSeparator + *name).c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
      continue;
    }
    // The pattern may occur anywhere and the lengths cut are fixed, on purpose: libfoo.nsp.so.old
    // gives foo.nsp. For a shorter name the subtraction wraps, and all after its third character is
    // kept.
    if (Contains(*name, pattern)) {
      services.push_back(name->substr(kPrefixLength, name->size() - kAffixesLength));
    }
  }
  return services;
}

std::vector<std::string> TOSSpecific::FindNSPs() { return FindNSServices("nsp"); }
std::vector<std::string> TOSSpecific::FindNSCs() { return FindNSServices("nsc"); }

void TOSSpecific::LoadNSPLibrary(std::string serviceName) {
  LoadService(PathOfService(serviceName, kNSPExtension), serviceName, "NSP");
}

INamespaceConsumer* TOSSpecific::LoadNSCLibrary(std::string serviceName) {
  const std::string path = PathOfService(serviceName, kNSCExtension);
  void* const handle = LoadService(path, serviceName, "NSC");
  using TCreateConsumer = INamespaceConsumer* (*)();
  const auto create = reinterpret_cast<TCreateConsumer>(
      ::dlsym(handle, (serviceName + "_CreateINamespaceConsumer").c_str()));
  if (create == nullptr) {
    LogErrorAndThrow(kQDXStatusNotFound, {"Couldn't find 'CreateINamespaceConsumer' in ", path});
  }
  return create();
}

std::vector<std::string> TOSSpecific::FindPlugins(std::string directory) {
  return FindPlugins(directory, kQDXPluginExtension);
}

std::vector<std::string> TOSSpecific::FindPlugins(std::string directory, std::string kind) {
  const std::string pattern = "." + kind + kDynamicModuleExtension;
  const TDir opened = OpenDir(directory);
  std::vector<std::string> plugins;
  while (const auto name = NextEntry(opened)) {
    if (IsSearchedForPlugins(*name)) {
      AppendPluginsOf(directory + kFileSeparator + *name, pattern, plugins);
    }
  }
  return plugins;
}

void* TOSSpecific::LoadPluginLibrary(std::string path) {
  // dlopen searches the system's folders for a bare name, and takes an empty one for the program.
  const bool isBareName = path.find(kFileSeparator) == std::string::npos;
  void* const handle = Load(isBareName ? "./" + path : path);
  if (handle == nullptr) {
    LogErrorAndThrow(kQDXStatusFileSystemError,
                     {"ERROR: Failed to load plugin.  Reason: ", LoaderError()});
  }
  return handle;
}

std::string TOSSpecific::BuildSpecificationPath(std::string pluginPath) {
  return BuildSpecificationPath(pluginPath, kQDXPluginExtension);
}

std::string TOSSpecific::BuildSpecificationPath(std::string pluginPath, std::string kind) {
  const std::size_t end = pluginPath.find("." + kind + kDynamicModuleExtension);
  if (end == std::string::npos) throw TQDXException(kQDXStatusFail);
  std::string specification = pluginPath.substr(0, end);
  if (kind != "cmpi") {
    // The first "lib" of the whole path, on purpose, even if that is /usr/lib.
    // Pinned by SpecificationPath.IsBuiltFromThePluginPath.
    const std::size_t prefix = pluginPath.find("lib");
    if (prefix >= end) throw TQDXException(kQDXStatusFail);
    specification.erase(prefix, kPrefixLength);
  }
  return specification + kSpecificationExtension;
}

}  // namespace NVORNQDX20
