// SPDX-License-Identifier: Apache-2.0
/// The time zone of the machine (tzfile(5), RFC 9636).
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_TIME_ZONE_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_TIME_ZONE_H_

#include <cstdint>
#include <optional>
#include <string_view>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// Returns the seconds east of UTC at a moment, given in seconds since 1970, by the contents of a
/// file of the time zone database. Null for a text in another format.
std::optional<std::int64_t> OffsetInZoneFile(std::string_view file, std::int64_t when);
/// Returns the same by a rule such as "CET-1CEST,M3.5.0,M10.5.0/3" (POSIX, environment variable
/// TZ).
std::optional<std::int64_t> OffsetByRule(std::string_view rule, std::int64_t when);

/// Returns the name, for example "Europe/Berlin".
TText ReadTimeZoneName(const TFiles& files);
/// Returns the minutes east of UTC at that moment.
TReading<std::int16_t> ReadTimeZoneOffset(const TFiles& files, std::int64_t when);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_TIME_ZONE_H_
