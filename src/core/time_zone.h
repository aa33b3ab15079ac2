// SPDX-License-Identifier: Apache-2.0
/// What the host's time zone does around a reading of the wall clock.
#ifndef SRC_CORE_TIME_ZONE_H_
#define SRC_CORE_TIME_ZONE_H_

#include <cstdint>

namespace NVORNQDX20 {

/// Whether the zone's offset from UTC stays as it is for three days before and after a reading of
/// the wall clock, in seconds since 1970. Then mktime() takes it, and readings nearby come in the
/// order of their instants.
///
/// Answers from a table of some years for each thread, which it drops when TZ changes. That a host
/// replaces its /etc/localtime is only noticed for readings that are not in the table yet.
bool IsOffsetSteadyAround(std::int64_t reading);

}  // namespace NVORNQDX20

#endif  // SRC_CORE_TIME_ZONE_H_
