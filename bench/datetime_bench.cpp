// SPDX-License-Identifier: Apache-2.0
// Date-times, each next to its limit: the C library alone, or hand-written code.
#include <qdxcore/datetime.h>
#include <qdxcore/os_specific.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include <benchmark/benchmark.h>

namespace {

using NVORNQDX20::TCIMDateTime;
using NVORNQDX20::TOSSpecific;

const std::string kText = "20040315143000.000000+060";

void DateTimeParse(benchmark::State& state) {
  for (auto _ : state) {
    TCIMDateTime value(kText);
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(DateTimeParse);

/// What each log line needs. With TZ unset, the C library looks at /etc/localtime each time.
void DateTimeNow(benchmark::State& state) {
  ::unsetenv("TZ");
  for (auto _ : state) benchmark::DoNotOptimize(TOSSpecific::GetLocalTime());
}
BENCHMARK(DateTimeNow);

/// Every operation that creates a date-time allocates once.
void LimitMallocAndFree(benchmark::State& state) {
  for (auto _ : state) {
    void* memory = std::malloc(48);
    benchmark::DoNotOptimize(memory);
    std::free(memory);
  }
}
BENCHMARK(LimitMallocAndFree);

void DateTimeFormat(benchmark::State& state) {
  const TCIMDateTime value(kText);
  for (auto _ : state) benchmark::DoNotOptimize(value.ToString());
}
BENCHMARK(DateTimeFormat);

void LimitCopyTheText(benchmark::State& state) {
  for (auto _ : state) {
    std::string copy(kText);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(LimitCopyTheText);

void LimitPrintf(benchmark::State& state) {
  char text[32];
  for (auto _ : state) {
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d.%06d+%03d", 2004, 3, 15, 14, 30, 0,
                  0, 60);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(LimitPrintf);

void DateTimeCopy(benchmark::State& state) {
  const TCIMDateTime value(kText);
  for (auto _ : state) {
    TCIMDateTime copy(value);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(DateTimeCopy);

void DateTimeCompareFarApart(benchmark::State& state) {
  const TCIMDateTime left(kText);
  const TCIMDateTime right("20050315143000.000000+060");
  for (auto _ : state) benchmark::DoNotOptimize(left < right);
}
BENCHMARK(DateTimeCompareFarApart);

void DateTimeCompareClose(benchmark::State& state) {
  const TCIMDateTime left(kText);
  const TCIMDateTime right("20040315153000.000000+060");
  for (auto _ : state) benchmark::DoNotOptimize(left < right);
}
BENCHMARK(DateTimeCompareClose);

void DateTimeAddInterval(benchmark::State& state) {
  const TCIMDateTime point(kText);
  const TCIMDateTime interval(1, 2, 3, 4, 5);
  for (auto _ : state) benchmark::DoNotOptimize(point + interval);
}
BENCHMARK(DateTimeAddInterval);

/// Each point that is compared or moved needs at most one call.
void LimitMktime(benchmark::State& state) {
  for (auto _ : state) {
    std::tm fields{};
    fields.tm_year = 104;
    fields.tm_mon = 2;
    fields.tm_mday = 15;
    benchmark::DoNotOptimize(std::mktime(&fields));
  }
}
BENCHMARK(LimitMktime);

}  // namespace
