// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <set>

#include <dlfcn.h>
#include <unistd.h>

static std::string gHostName;

/// Stands before the C library's function, for the library under test too.
extern "C" QDXCORE_EXPORT int gethostname(char* name, std::size_t size) noexcept {
  if (gHostName.size() >= size) return -1;
  name[gHostName.copy(name, size)] = '\0';
  return 0;
}

static int gLooksAtTheZone = 0;

extern "C" QDXCORE_EXPORT void tzset() noexcept {
  ++gLooksAtTheZone;
  reinterpret_cast<void (*)()>(::dlsym(RTLD_NEXT, "tzset"))();
}

using namespace NVORNQDX20;

/// The local time as "20040315143000". The clock of time() is coarser than the library's.
std::string Now() {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char text[16];
  std::strftime(text, sizeof text, "%Y%m%d%H%M%S", std::localtime(&now));
  return text;
}

TEST(HostClock, CarriesTheOffsetInForce) {
  const std::pair<const char*, int> rows[] = {
      {"ABC5", -300},
      {"ABC5DEF4,0/0,J365/25", -240},  // daylight saving all the year
      {"ABC-5:30", 330}};
  std::uint32_t microseconds = 0;
  for (const auto& [zone, offset] : rows) {
    ::setenv("TZ", zone, 1);
    const std::string before = Now();
    const TCIMDateTime now = TOSSpecific::GetLocalTime();
    EXPECT_EQ(now.GetUTCOffset(), offset) << zone;
    const std::string text = now.ToString().substr(0, 14);
    EXPECT_TRUE(before <= text && text <= Now()) << text;
    EXPECT_EQ(now.GetMicroSeconds() % 1000, 0U);
    microseconds |= now.GetMicroSeconds();
    TOSSpecific::USleep(2);
  }
  EXPECT_NE(microseconds, 0U);
}

TEST(HostClock, LooksAtTheZoneOncePerSecond) {
  ::unsetenv("TZ");
  const auto now = [] { return TOSSpecific::GetLocalTime().ToString().substr(0, 14); };
  std::set<std::string> seconds = {now()};
  gLooksAtTheZone = 0;
  for (int i = 0; i < 1000; ++i) {
    seconds.insert(now());
    if (i == 500) TOSSpecific::USleep(1000);
  }
  EXPECT_GE(seconds.size(), 2U);
  EXPECT_EQ(gLooksAtTheZone, static_cast<int>(seconds.size()) - 1);
}

TEST(HostName, ServesAsTheNameOfTheSystemToo) {
  gHostName = std::string(64, 'x');
  EXPECT_QDX_STATUS(TOSSpecific::GetMachineName(), kQDXStatusFail);
  gHostName.pop_back();
  EXPECT_EQ(TOSSpecific::GetMachineName(), gHostName);
  EXPECT_EQ(TOSSpecific::GetOperatingSystemName(), gHostName);
}

TEST(HostSleep, TakesMillisecondsThroughSignalsAndWraps) {
  const auto measure = [](std::uint32_t milliseconds) {
    const auto start = std::chrono::steady_clock::now();
    TOSSpecific::USleep(milliseconds);
    return std::chrono::steady_clock::now() - start;
  };
  static int signals = 0;
  std::signal(SIGALRM, [](int) {
    if (++signals == 300) ::ualarm(0, 0);
  });
  ::ualarm(10000, 10000);  // for three seconds, unless the sleep ends before
  const auto slept = measure(30);
  ::ualarm(0, 0);
  EXPECT_GE(slept, std::chrono::milliseconds(30));
  EXPECT_LT(slept, std::chrono::seconds(2)) << "slept again after each signal";
  EXPECT_LT(measure(4294968), std::chrono::minutes(1));  // 704 microseconds beyond 2^32
}

TEST(HostWildcards, AreHandedOn) {
  char* arguments[] = {nullptr};
  std::int32_t count = 0;
  char** expanded = nullptr;
  TOSSpecific::ExpandCommandLineWildcards(7, arguments, count, expanded);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(expanded, arguments);
}
