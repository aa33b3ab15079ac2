// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"

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
  if (std::strlen(gHostName) >= size) return -1;
  std::strcpy(name, gHostName);
  return 0;
}

namespace NVORNQDX20 {
namespace {

/// What the local clock shows, as a date-time's text begins.
std::string ShownNow() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char text[16];
  std::strftime(text, sizeof text, "%Y%m%d%H%M%S", std::localtime(&now));
  return text;
}

TEST(HostClock, CarriesTheOffsetInForce) {
  const std::pair<const char*, int> rows[] = {
      {"ABC5", -300},
      {"ABC5DEF4,0/0,J365/25", -240},  // daylight saving all the year
      {"ABC-5:30", 330},
      {"UTC", 0}};
  std::uint32_t microseconds = 0;
  for (const auto& [zone, offset] : rows) {
    ::setenv("TZ", zone, 1);
    const TCIMDateTime now = TOSSpecific::GetLocalTime();
    EXPECT_EQ(now.GetUTCOffset(), offset) << zone;
    EXPECT_GE(ShownNow(), now.ToString().substr(0, 14));
    const std::string before = ShownNow();
    EXPECT_LE(before, TOSSpecific::GetLocalTime().ToString().substr(0, 14));
    EXPECT_EQ(now.GetMicroSeconds() % 1000, 0U);
    microseconds |= now.GetMicroSeconds();
    TOSSpecific::USleep(2);
  }
  EXPECT_NE(microseconds, 0U);
}

TEST(HostName, ServesAsTheNameOfTheSystemToo) {
  const std::string tooLong(64, 'x'), longest(63, 'x');
  gHostName = tooLong.c_str();
  EXPECT_QDX_STATUS(TOSSpecific::GetMachineName(), kQDXStatusFail);
  gHostName = longest.c_str();
  EXPECT_EQ(TOSSpecific::GetMachineName(), longest);
  EXPECT_EQ(TOSSpecific::GetOperatingSystemName(), longest);
}

TEST(HostSleep, TakesMillisecondsAndWraps) {
  const auto measure = [](std::uint32_t milliseconds) {
    const auto start = std::chrono::steady_clock::now();
    TOSSpecific::USleep(milliseconds);
    return std::chrono::steady_clock::now() - start;
  };
  EXPECT_GE(measure(30), std::chrono::milliseconds(30));
  EXPECT_LT(measure(4294968), std::chrono::seconds(1));  // 704 microseconds beyond 2^32
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
