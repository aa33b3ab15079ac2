// SPDX-License-Identifier: Apache-2.0
// The time and the names of this machine, and operations that do nothing on Linux.
#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>
#include <qdxsystem/thread_variable.h>
#include <qdxsystem/zone_generation.h>

#include <cerrno>
#include <ctime>

#include <unistd.h>

namespace NVORNQDX20 {
namespace {

/// A cache: the local time of one second. A changed TZ is noticed at once, and a replaced
/// /etc/localtime after the second.
class TLocalSecond {
 public:
  const tm& At(time_t second) {
    const std::uint32_t zone = ZoneGeneration();
    if (zone == 0 || zone != fZone || second != fSecond) {
      ::tzset();  // slow, since it looks at /etc/localtime; localtime_r does not look
      ::localtime_r(&second, &fLocal);
      fZone = zone;
      fSecond = second;
    }
    return fLocal;
  }

 private:
  std::uint32_t fZone = 0;
  time_t fSecond = 0;
  tm fLocal{};
};

thread_local TLocalSecond gLocalSecond;

TCIMDateTime MakePoint(const tm& local, long milliseconds, std::int16_t utcOffset) {
  return TCIMDateTime(
      static_cast<std::uint16_t>(local.tm_year + 1900),
      static_cast<std::uint16_t>(local.tm_mon + 1), static_cast<std::uint32_t>(local.tm_mday),
      static_cast<std::uint16_t>(local.tm_hour), static_cast<std::uint16_t>(local.tm_min),
      static_cast<std::uint16_t>(local.tm_sec), static_cast<std::uint32_t>(milliseconds * 1000),
      utcOffset);
}

}  // namespace

void TOSSpecific::USleep(std::uint32_t milliseconds) {
  // Computed in 32 bits on purpose: durations above 4294967 ms wrap around.
  const std::uint32_t microseconds = milliseconds * 1000U;
  timespec remaining{static_cast<time_t>(microseconds / 1000000U),
                     static_cast<long>(microseconds % 1000000U) * 1000};
  while (::nanosleep(&remaining, &remaining) != 0 && errno == EINTR) {
    // Interrupted by a signal: sleep for the remaining time.
  }
}

TCIMDateTime TOSSpecific::GetLocalTime() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const TZoneHold hold;
  const tm& local = FoundOnce(gLocalSecond).At(now.tv_sec);
  const long milliseconds = now.tv_nsec / 1000000;
  try {
    return MakePoint(local, milliseconds, static_cast<std::int16_t>(local.tm_gmtoff / 60));
  } catch (const TQDXException&) {
    // In the hour that a zone's standard time skips, mktime() rejects the current time. The logger
    // must work then, too.
    return TCIMDateTime();
  }
}

std::string TOSSpecific::GetMachineName() {
  char name[64];
  if (::gethostname(name, sizeof name) != 0) throw TQDXException(kQDXStatusFail);
  name[sizeof name - 1] = '\0';
  return name;
}

std::string TOSSpecific::GetOperatingSystemName() {
  return GetMachineName();  // the host name instead of the system's name, on purpose
}

void TOSSpecific::OutputLogString(std::string) {}

void TOSSpecific::ExpandCommandLineWildcards(std::int32_t count, char** arguments,
                                             std::int32_t& expandedCount,
                                             char**& expandedArguments) {
  expandedCount = count;
  expandedArguments = arguments;
}

}  // namespace NVORNQDX20
