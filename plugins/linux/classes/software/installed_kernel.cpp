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
  TText fImage = std::string();
  TText fInitialFiles = std::string();
  TText fModules = std::string();
};

struct TImage {
  const char* fBeginning;
  const char* fEnd;
  TText TKernel::*fPlace;
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
    TText& path = kernels[name.substr(begin, size)].*place;
    if (path->empty()) path = folder + "/" + name;
    return;
  }
}

/// A kernel is what has modules or an image; initial files alone are not one.
TInstances<TKernel> ListKernels(const THost& host) {
  TKernels kernels;
  TInstances<TKernel> all;
  const char* const boot = "/boot";
  const auto images = host.List(boot);
  for (const std::string& name : images.ValueOr({})) AddImage(boot, name, kernels);
  const TText modules = host.FirstOf({"/lib/modules", "/usr/lib/modules"});
  const auto releases =
      modules.and_then([&](const std::string& folder) { return host.List(folder); });
  for (const std::string& name : releases.ValueOr({})) {
    kernels[name].fModules = *modules + "/" + name;
  }
  for (auto& [release, kernel] : kernels) {
    // A key must be printable.
    if (PrintableText(release) != release || (kernel.fImage->empty() && kernel.fModules->empty())) {
      continue;
    }
    kernel.fRelease = release;
    if (images.GetReason().IsError()) {
      kernel.fImage = kernel.fInitialFiles = Missing(images.GetReason());
    }
    if (releases.GetReason().IsError()) kernel.fModules = Missing(releases.GetReason());
    all.fAll.push_back(kernel);
  }
  for (const TReason& reason : {images.GetReason(), releases.GetReason()}) {
    const bool explainsNone = all.fAll.empty() && !reason.empty();
    if (reason.IsError() || explainsNone) all.Miss(reason);
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
