// SPDX-License-Identifier: Apache-2.0
/// Points in time of the running system.
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_BOOT_TIME_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_BOOT_TIME_H_

#include <qdxcore/datetime.h>

#include "sources/host.h"

namespace NVORNQDX20 {

/// When the system was started; for THost::Shared.
struct TBootTime {
  explicit TBootTime(const THost& host);

  TNumber fSeconds;  ///< Since 1970.
};

/// The reason names the source if no date-time can have that moment.
TReading<TCIMDateTime> ToDateTime(std::uint64_t secondsSince1970, const std::string& source);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_BOOT_TIME_H_
