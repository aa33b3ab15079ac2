// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/schema_helper.h>

#include <algorithm>
#include <iterator>

#include "machine/os_release.h"
#include "system_load.h"
#include "topics.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

/// LINUX in the value map of CIM_OperatingSystem.OSType.
constexpr std::uint16_t kLinux = 36;

std::map<std::string, std::string> ReadOSRelease(const THostFiles& files) {
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    const TReading file = files.Read(path);
    if (file) return ParseOSRelease(*file.fValue);
  }
  return {};
}

/// What the distribution says of itself, else what the kernel says.
TReading Choose(const std::map<std::string, std::string>& release, const char* variable,
                const TReading& ofKernel) {
  const auto found = release.find(variable);
  if (found != release.end() && !found->second.empty()) return TReading::Of(found->second);
  if (ofKernel) return ofKernel;
  return TReading::Missing(std::string("no ") + variable + " in os-release, and " +
                           ofKernel.fReason);
}

/// Only the kernel's own word counts: there are distributions with other kernels, and their
/// os-release looks the same.
TPropertyValue OSType(const TReading& kernelName) {
  if (!kernelName) return {"OSType", kernelName};
  if (*kernelName.fValue == "Linux") return {"OSType", TCIMValue(kLinux)};
  return {"OSType", TReading::Missing("the kernel is '" + *kernelName.fValue + "', not Linux")};
}

TClassSpec OperatingSystemClass() {
  TClassSpec spec{
      TCIMSchemaHelper::kOperatingSystemCreationClassName.c_str(),
      "The operating system that runs on the machine.",
      {{"CSCreationClassName", TType::kCIMTypeString, true, "The class of the machine."},
       {"CSName", TType::kCIMTypeString, true, "The name of the machine."},
       {"CreationClassName", TType::kCIMTypeString, true, "The name of this class."},
       {"Name", TType::kCIMTypeString, true, "The distribution, else the kernel."},
       {"Version", TType::kCIMTypeString, false,
        "The version of the distribution, else the release of the kernel."},
       {"KernelRelease", TType::kCIMTypeString, false, "The release of the kernel."},
       {"OSType", TType::kCIMTypeUint16, false, "The kind of system; 36 is LINUX."}}};
  const std::vector<TPropertySpec> load = SystemLoadProperties();
  std::copy(load.begin(), load.end(), std::back_inserter(spec.fProperties));
  return spec;
}

}  // namespace

void AddOperatingSystem(TNamespaceBuilder& builder, const THost& host) {
  const auto release = ReadOSRelease(host.fFiles);
  std::vector<TPropertyValue> values = {
      {"CSCreationClassName", TCIMSchemaHelper::kSystemCreationClassName},
      TPropertyValue::Key("CSName", host.fName),
      {"CreationClassName", TCIMSchemaHelper::kOperatingSystemCreationClassName},
      TPropertyValue::Key("Name", Choose(release, "NAME", host.fKernelName)),
      {"Version", Choose(release, "VERSION_ID", host.fKernelRelease)},
      {"KernelRelease", host.fKernelRelease},
      OSType(host.fKernelName)};
  const std::vector<TPropertyValue> load = ReadSystemLoad(host.fFiles);
  std::copy(load.begin(), load.end(), std::back_inserter(values));
  builder.AddInstance(*builder.DeclareClass(OperatingSystemClass()), values);
}

}  // namespace NVORNQDX20
