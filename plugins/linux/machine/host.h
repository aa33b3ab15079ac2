// SPDX-License-Identifier: Apache-2.0
/// The machine that is described.
#ifndef PLUGINS_LINUX_MACHINE_HOST_H_
#define PLUGINS_LINUX_MACHINE_HOST_H_

#include <string>

#include "host_files.h"
#include "reading.h"

namespace NVORNQDX20 {

/// The machine's files, and the names that more than one class needs.
struct THost {
  /// Throws as THostFiles does.
  explicit THost(const std::string& root);

  /// What the firmware says in its DMI table (DMTF DSP0134): a string by the name of its file, for
  /// example "product_name". A text that makers leave where nobody entered a value ("To be filled
  /// by O.E.M.") counts as missing.
  TReading ReadDMIString(const std::string& name) const;

  THostFiles fFiles;
  TReading fKernelName;     ///< "Linux"
  TReading fKernelRelease;  ///< "6.1.0-18-amd64"
  TReading fName;           ///< The host name.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_HOST_H_
