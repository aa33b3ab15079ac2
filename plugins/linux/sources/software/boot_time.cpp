// SPDX-License-Identifier: Apache-2.0
#include "boot_time.h"

#include <qdxcore/status.h>

#include <algorithm>
#include <ctime>

#include "sources/fields.h"

namespace NVORNQDX20 {
namespace {

/// The latest date of a CIM datetime: the end of the year 9999.
constexpr std::uint64_t kLastSecond = 253'402'300'799;

}  // namespace

TBootTime::TBootTime(const THost& host) {
  const std::string path = "/proc/stat";
  const TFields fields(path, host.Read(path, TFiles::kMaxTableSize), ' ');
  fSeconds = fields.GetNumber("btime");
}

TReading<TCIMDateTime> ToDateTime(std::uint64_t secondsSince1970, const std::string& source) {
  const auto seconds = static_cast<std::time_t>(std::min(secondsSince1970, kLastSecond));
  std::tm utc{};
  if (secondsSince1970 <= kLastSecond && ::gmtime_r(&seconds, &utc) != nullptr) {
    try {
      return TCIMDateTime(
          static_cast<std::uint16_t>(utc.tm_year + 1900),
          static_cast<std::uint16_t>(utc.tm_mon + 1), static_cast<std::uint32_t>(utc.tm_mday),
          static_cast<std::uint16_t>(utc.tm_hour), static_cast<std::uint16_t>(utc.tm_min),
          static_cast<std::uint16_t>(utc.tm_sec), 0, 0);
    } catch (const TQDXException&) {
      // The local time zone may skip that moment; the reason below fits that case, too.
    }
  }
  return Missing(source + " is no valid date");
}

}  // namespace NVORNQDX20
