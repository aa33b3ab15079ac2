// SPDX-License-Identifier: Apache-2.0
// Values, each next to its limit: the same work without the library.
#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>

#include <charconv>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using NVORNQDX20::ICIMNamespace;
using NVORNQDX20::TCIMValue;
using TCIMType = TCIMValue::TCIMType;

void ValueMakeUint32(benchmark::State& state) {
  unsigned int number = 7;
  for (auto _ : state) {
    benchmark::DoNotOptimize(number);
    TCIMValue value(number);
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(ValueMakeUint32);

/// A value that is not null owns one allocation.
void LimitMallocAndFreeOfANumber(benchmark::State& state) {
  for (auto _ : state) {
    void* memory = std::malloc(24);
    benchmark::DoNotOptimize(memory);
    std::free(memory);
  }
}
BENCHMARK(LimitMallocAndFreeOfANumber);

void ValueCopyUint32(benchmark::State& state) {
  const TCIMValue value(7U);
  for (auto _ : state) {
    TCIMValue copy(value);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(ValueCopyUint32);

void ValueReadUint32(benchmark::State& state) {
  const TCIMValue value(7U);
  for (auto _ : state) {
    const unsigned int number = value;
    benchmark::DoNotOptimize(number);
  }
}
BENCHMARK(ValueReadUint32);

void ValueCompareStrings(benchmark::State& state) {
  const TCIMValue left("a string that is longer than any buffer");
  const TCIMValue right("a string that is longer than any buffet");
  for (auto _ : state) benchmark::DoNotOptimize(left < right);
}
BENCHMARK(ValueCompareStrings);

void ValueFormatUint32(benchmark::State& state) {
  const TCIMValue value(4294967295U);
  for (auto _ : state) benchmark::DoNotOptimize(value.ToString(10));
}
BENCHMARK(ValueFormatUint32);

void LimitToChars(benchmark::State& state) {
  unsigned int number = 4294967295U;
  char text[16];
  for (auto _ : state) {
    benchmark::DoNotOptimize(number);
    const auto end = std::to_chars(text, text + sizeof text, number);
    benchmark::DoNotOptimize(std::string(text, end.ptr));
  }
}
BENCHMARK(LimitToChars);

void ValueFormatReal64(benchmark::State& state) {
  const TCIMValue value(3.14159265);
  for (auto _ : state) benchmark::DoNotOptimize(value.ToString(10));
}
BENCHMARK(ValueFormatReal64);

void ValueParseUint32(benchmark::State& state) {
  std::string text = "4294967295";
  for (auto _ : state) {
    TCIMValue value(TCIMType::kCIMTypeUint32, text, boost::shared_ptr<ICIMNamespace>());
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(ValueParseUint32);

void ValueParseReal64(benchmark::State& state) {
  std::string text = "3.14159265";
  for (auto _ : state) {
    TCIMValue value(TCIMType::kCIMTypeReal64, text, boost::shared_ptr<ICIMNamespace>());
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(ValueParseReal64);

void ValueCopyArrayOf100(benchmark::State& state) {
  const TCIMValue value(TCIMType::kCIMTypeUint32, 0, std::vector<TCIMValue>(100, TCIMValue(7U)));
  for (auto _ : state) {
    TCIMValue copy(value);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(ValueCopyArrayOf100);

}  // namespace
