// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_InstalledKernel: the kernels that the machine can start.
#include <map>

#include <boost/algorithm/string/predicate.hpp>

#include "classes/catalogue.h"

namespace NVORNQDX20 {
namespace {

/// Kernels by their releases, as in "6.1.0-18-amd64".
struct TKernel {
  std::string fRelease;
  std::string fImage;
  std::string fInitialFiles;
  std::string fModules;
};

struct TImage {
  const char* fBeginning;
  const char* fEnd;
  std::string TKernel::*fPlace;
};

/// How distributions name the files of a kernel in /boot.
constexpr TImage kImages[] = {{"vmlinuz-", "", &TKernel::fImage},
                              {"vmlinux-", "", &TKernel::fImage},
                              {"kernel-", "", &TKernel::fImage},
                              {"Image-", "", &TKernel::fImage},
                              {"initrd.img-", "", &TKernel::fInitialFiles},
                              {"initramfs-", ".img", &TKernel::fInitialFiles},
                              {"initrd-", "", &TKernel::fInitialFiles}};

using TKernels = std::map<std::string, TKernel>;

void AddImage(const std::string& folder, const std::string& name, TKernels& kernels) {
  for (const auto& [beginning, end, place] : kImages) {
    if (!boost::algorithm::starts_with(name, beginning) ||
        !boost::algorithm::ends_with(name, end)) {
      continue;
    }
    const std::size_t begin = std::string_view(beginning).size();
    const std::size_t size = name.size() - begin - std::string_view(end).size();
    std::string& path = kernels[name.substr(begin, size)].*place;
    if (path.empty()) path = folder + "/" + name;
    return;
  }
}

/// A kernel is what has modules or an image; initial files alone are not one.
TInstances<TKernel> ListKernels(const THost& host) {
  TKernels kernels;
  TInstances<TKernel> all;
  const char* const boot = "/boot";
  const auto images = host.List(boot);
  if (images) {
    for (const std::string& name : *images) AddImage(boot, name, kernels);
  }
  const std::string modules = host.FirstOf({"/lib/modules", "/usr/lib/modules"}).ValueOr("");
  const auto releases = host.List(modules.empty() ? "/lib/modules" : modules);
  if (releases) {
    for (const std::string& name : *releases) kernels[name].fModules = modules + "/" + name;
  }
  for (auto& [release, kernel] : kernels) {
    // A key must be printable.
    if (PrintableText(release) != release || (kernel.fImage.empty() && kernel.fModules.empty())) {
      continue;
    }
    kernel.fRelease = release;
    all.fAll.push_back(kernel);
  }
  if (!all.fAll.empty()) return all;
  for (const TReason& reason : {images.GetReason(), releases.GetReason()}) {
    if (!reason.empty()) all.Miss(reason);
  }
  return all;
}

TReading<bool> IsRunning(const TKernel& kernel, const THost& host) {
  return host.fKernelRelease.map(
      [&kernel](const std::string& release) { return release == kernel.fRelease; });
}

}  // namespace

TClass InstalledKernelClass() {
  return THostTable<TKernel>{
      "VORNSG_InstalledKernel",
      "A kernel that is installed, whether it runs or not.",
      ListKernels,
      {{"Release", "The release of the kernel.", &TKernel::fRelease, kKey},
       {"Image", "Where the kernel itself is; empty if it is not in /boot.", &TKernel::fImage},
       {"InitialFiles", "Where the files are that it starts with; empty if there are none.",
        &TKernel::fInitialFiles},
       {"Modules", "Where its modules are; empty if there are none.", &TKernel::fModules},
       {"Running", "Whether it is the one that runs.", IsRunning}}};
}

}  // namespace NVORNQDX20
