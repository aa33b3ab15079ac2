// SPDX-License-Identifier: Apache-2.0
/// What the host's time zone does around a reading of the wall clock.
#ifndef SRC_CORE_TIME_ZONE_H_
#define SRC_CORE_TIME_ZONE_H_

#include <cstdint>

namespace NVORNQDX20 {

/// Whether mktime() takes every reading of the wall clock from three days before this one to three
/// days after it, and subtracts the same offset from each, so that they come in the order of their
/// instants. Readings are in seconds since 1970 and without daylight saving.
///
/// Each thread has a table of some years, which is dropped when TZ changes. That a host replaces
/// its /etc/localtime is only noticed for readings that are not in the table yet.
bool IsOffsetSteadyAround(std::int64_t reading);

}  // namespace NVORNQDX20

#endif  // SRC_CORE_TIME_ZONE_H_
