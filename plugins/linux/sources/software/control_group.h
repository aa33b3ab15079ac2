// SPDX-License-Identifier: Apache-2.0
/// The limits of the control group in which the whole system runs: those of its container.
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_CONTROL_GROUP_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_CONTROL_GROUP_H_

#include <cstdint>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// What the first process and its descendants may use. Missing where nothing is limited.
struct TControlGroup {
  TReading<std::uint16_t> fVersion;  ///< 1 or 2.
  TNumber fMemory;                   ///< In bytes.
  TReading<float> fProcessors;       ///< Processor time per time: 1.5 is one and a half of them.
  TNumber fProcesses;
  TText fProcessorSet;  ///< As in "0-3,8".
};

TControlGroup ReadControlGroup(const TFiles& files);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_CONTROL_GROUP_H_
