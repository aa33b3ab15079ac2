// SPDX-License-Identifier: Apache-2.0
/// The described machine: its files and its names.
#ifndef PLUGINS_LINUX_MACHINE_HOST_H_
#define PLUGINS_LINUX_MACHINE_HOST_H_

#include <qdxdescribe/table.h>

#include <string>

#include "host_files.h"
#include "reading.h"

namespace NVORNQDX20 {

/// The files of the machine, and names that several classes need.
struct THost {
  /// Throws what the constructor of THostFiles throws.
  explicit THost(const NDescribe::TRequest& request);

  /// Returns a string of the firmware's DMI table (DMTF DSP0134) by the name of its sysfs file, for
  /// example "product_name". A placeholder such as "To be filled by O.E.M." counts as missing.
  TText ReadDMIString(const std::string& name) const;

  THostFiles fFiles;
  TText fKernelName;     ///< "Linux"
  TText fKernelRelease;  ///< "6.1.0-18-amd64"
  TText fName;           ///< The host name.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_HOST_H_
