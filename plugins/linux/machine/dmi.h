// SPDX-License-Identifier: Apache-2.0
/// What the firmware says about the machine in its DMI table (DMTF DSP0134).
#ifndef PLUGINS_LINUX_MACHINE_DMI_H_
#define PLUGINS_LINUX_MACHINE_DMI_H_

#include <string>

#include "host_files.h"
#include "reading.h"

namespace NVORNQDX20 {

/// A DMI string by the name of its file, for example "product_name". A text that makers leave
/// where nobody entered a value ("To be filled by O.E.M.") counts as missing.
TReading ReadDMIString(const THostFiles& files, const std::string& name);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_DMI_H_
