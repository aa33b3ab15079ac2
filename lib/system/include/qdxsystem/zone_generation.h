// SPDX-License-Identifier: Apache-2.0
/// Notices a change of the process's time zone.
#ifndef QDXSYSTEM_ZONE_GENERATION_H_
#define QDXSYSTEM_ZONE_GENERATION_H_

#include <cstdint>

namespace NVORNQDX20 {

/// Returns a number for caches of what depends on the time zone: it differs from the last one that
/// this thread got if TZ has another text, or if TZ is not set and /etc/localtime was replaced.
/// Such a file is noticed within a second. Allocates nothing.
///
/// Returns 0 if TZ has a text that is too long to be remembered: nothing can be kept for it.
std::uint32_t ZoneGeneration();

/// Returns whether the zone was that of /etc/localtime at this thread's last call of
/// ZoneGeneration(), which may then be a second later than the C library.
bool IsZoneFromFile();

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_ZONE_GENERATION_H_
