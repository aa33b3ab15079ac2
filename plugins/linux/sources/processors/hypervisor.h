// SPDX-License-Identifier: Apache-2.0
/// Finds out whether the machine is a virtual one.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_HYPERVISOR_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_HYPERVISOR_H_

#include <string>

#include "sources/host.h"

namespace NVORNQDX20 {

struct THypervisor {
  TText fName;     ///< "KVM"
  TText fVendor;   ///< "Oracle"
  TText fVersion;  ///< Only some tell it.
  TText fType;     ///< "full" or "para"
  std::string fEvidence;
};

/// What runs the machine. Missing if nothing speaks for a hypervisor.
struct TFoundHypervisor {
  explicit TFoundHypervisor(const THost& host);

  TReading<THypervisor> fHypervisor;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_HYPERVISOR_H_
