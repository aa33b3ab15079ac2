// SPDX-License-Identifier: Apache-2.0
/// Queries of the host's time zone.
#ifndef SRC_CORE_TIME_ZONE_H_
#define SRC_CORE_TIME_ZONE_H_

#include <cstdint>

namespace NVORNQDX20 {

/// Returns whether mktime() accepts every reading of the wall clock from three days before to three
/// days after this one, and subtracts the same offset from each, so that they are ordered like
/// their instants. Readings are in seconds since 1970 without daylight saving.
///
/// Each thread has a cache of some years, which is cleared when TZ changes. A replaced
/// /etc/localtime is only noticed for readings that are not in the cache yet.
bool IsOffsetSteadyAround(std::int64_t reading);

}  // namespace NVORNQDX20

#endif  // SRC_CORE_TIME_ZONE_H_
