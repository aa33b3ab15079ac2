// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <gtest/gtest.h>

namespace {

const char* gHostName = "";

}  // namespace

/// Stands before the C library's function, for the library under test too.
extern "C" QDXCORE_EXPORT int gethostname(char* name, std::size_t size) noexcept {
  if (std::strlen(gHostName) >= size) {
    errno = ENAMETOOLONG;
    return -1;
  }
  std::strcpy(name, gHostName);
  return 0;
}

namespace NVORNQDX20 {
namespace {

TEST(HostClock, CarriesTheOffsetInForce) {
  const struct {
    const char* fZone;
    std::int16_t fOffset;
  } rows[] = {{"ABC5", -300},
              {"ABC5DEF4,0/0,J365/25", -240},  // daylight saving all the year
              {"ABC-5:30", 330},
              {"UTC", 0}};
  for (const auto& row : rows) {
    ::setenv("TZ", row.fZone, 1);
    const TCIMDateTime now = TOSSpecific::GetLocalTime();
    EXPECT_EQ(now.GetUTCOffset(), row.fOffset) << row.fZone;
    EXPECT_EQ(now.GetMicroSeconds() % 1000, 0U);

    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    char text[16];
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &local);
    EXPECT_LE(now.ToString().substr(0, 14), text);
    local.tm_sec -= 2;
    local.tm_isdst = -1;
    std::mktime(&local);
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &local);
    EXPECT_GE(now.ToString().substr(0, 14), text);
  }
  ::unsetenv("TZ");
}

TEST(HostClock, CountsMilliseconds) {
  std::uint32_t all = 0;
  for (int i = 0; i < 3; ++i) {
    all |= TOSSpecific::GetLocalTime().GetMicroSeconds();
    TOSSpecific::USleep(2);
  }
  EXPECT_NE(all, 0U);
}

TEST(HostName, ServesAsTheNameOfTheSystemToo) {
  gHostName = "a-host";
  EXPECT_EQ(TOSSpecific::GetMachineName(), "a-host");
  EXPECT_EQ(TOSSpecific::GetOperatingSystemName(), "a-host");
  const std::string longest(63, 'x');
  gHostName = longest.c_str();
  EXPECT_EQ(TOSSpecific::GetMachineName(), longest);
  const std::string tooLong(64, 'x');
  gHostName = tooLong.c_str();
  EXPECT_QDX_STATUS(TOSSpecific::GetMachineName(), kQDXStatusFail);
  EXPECT_QDX_STATUS(TOSSpecific::GetOperatingSystemName(), kQDXStatusFail);
}

TEST(HostSleep, TakesMillisecondsAndWraps) {
  const auto measure = [](std::uint32_t milliseconds) {
    const auto start = std::chrono::steady_clock::now();
    TOSSpecific::USleep(milliseconds);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
  };
  EXPECT_GE(measure(30), 30.0);
  EXPECT_LT(measure(4294968), 1000.0);  // 704 microseconds beyond 2^32
}

TEST(HostWildcards, AreHandedOn) {
  char* arguments[] = {nullptr};
  std::int32_t count = 0;
  char** expanded = nullptr;
  TOSSpecific::ExpandCommandLineWildcards(7, arguments, count, expanded);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(expanded, arguments);
}

}  // namespace
}  // namespace NVORNQDX20
