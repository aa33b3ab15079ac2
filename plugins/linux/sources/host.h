// SPDX-License-Identifier: Apache-2.0
/// The described machine: its files and its names.
#ifndef PLUGINS_LINUX_SOURCES_HOST_H_
#define PLUGINS_LINUX_SOURCES_HOST_H_

#include <qdxdescribe/table.h>

#include <string>

#include "reading.h"

namespace NVORNQDX20 {

/// The files of the machine, and names that several classes need.
struct THost : TFiles {
  /// Throws what the constructor of TFiles throws.
  explicit THost(const TRequest& request);

  /// Returns the host name, or an empty text without a reason, for keys that refer to the instance
  /// of VORNSG_ComputerSystem, which explains a missing name.
  std::string GetNameAsKey() const { return fName.ValueOr(""); }

  /// Returns a string of the firmware's DMI table (DMTF DSP0134) by the name of its sysfs file, for
  /// example "product_name". A placeholder such as "To be filled by O.E.M." counts as missing.
  TText ReadDMIString(const std::string& name) const;

  TText fKernelName;     ///< "Linux"
  TText fKernelRelease;  ///< "6.1.0-18-amd64"
  TText fName;           ///< The host name.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_HOST_H_
