// SPDX-License-Identifier: Apache-2.0
// Copies many instances of ten properties of mixed types, next to the cost of the two repositories.
// The largest size needs 3 GB and half a minute, and only runs if QDX_BENCH_MILLION is set.
#include <qdxcore/copy.h>
#include <qdxcore/reference.h>

#include "support/class_builder.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include <malloc.h>

#include <benchmark/benchmark.h>

namespace {

using namespace NVORNQDX20;

const std::string kClass = "CIM_Sensor";

TCIMValue Bus(const TNamespace& ns) {
  TCIMReference bus(ns, {});
  bus.SetClassName("CIM_Bus");
  bus.AddKeyValue("Id", 7U);
  return TCIMValue(bus);
}

TProperties Sensor(std::uint64_t number, const TCIMValue& bus) {
  const auto low = static_cast<std::uint32_t>(number);
  return {{"DeviceID", "sensor-" + std::to_string(number)},
          {"SystemName", "server.example"},
          {"Enabled", true},
          {"State", static_cast<std::uint16_t>(low)},
          {"Reading", static_cast<std::int32_t>(low)},
          {"Operations", number},
          {"Scale", 0.5},
          {"Installed", TCIMDateTime("20040315143000.000000+060")},
          {"Levels", TCIMValue(TCIMValue::TCIMType::kCIMTypeUint32, 0, {1U, 2U, low})},
          {"Bus", bus}};
}

/// Returns a namespace with the classes and `count` instances.
TNamespace MakeSensors(std::int64_t count) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_Bus", {{"Id", 0U}});
  TProperties others = Sensor(0, NullReference(ns, "CIM_Bus"));
  const TProperties keys(others.begin(), others.begin() + 2);
  others.erase(others.begin(), others.begin() + 2);
  AddClass(ns, kClass, keys, others);
  const TCIMValue bus = Bus(ns);
  for (std::int64_t i = 0; i < count; ++i) {
    AddInstance(ns, kClass, Sensor(static_cast<std::uint64_t>(i), bus));
  }
  return ns;
}

std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const TNamespace& ns) {
  std::vector<boost::shared_ptr<ICIMInstance>> instances;
  ns->GetClass(kClass, {})->EnumerateInstances(TAddToVectorCallback(instances), false, {});
  return instances;
}

/// Leaves the pages that a target needs free in the heap, in one piece. The time of the system to
/// provide them varies tenfold between machines, and small targets would not need it.
void PrepareHeap(std::int64_t count) {
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  mallopt(M_MMAP_MAX, 0);
  std::vector<char> pages(static_cast<std::size_t>(count) * 1600);
  benchmark::DoNotOptimize(pages.data());
}

/// Restores the defaults of the C library for the benchmarks that follow.
void RestoreHeap() {
  mallopt(M_TRIM_THRESHOLD, 128 * 1024);
  mallopt(M_MMAP_MAX, 65536);
}

/// Times `fill`, which fills a target from a source, but not their creation and destruction.
template <typename TMakeTarget, typename TFill>
void MeasureFilling(benchmark::State& state, TMakeTarget&& makeTarget, TFill&& fill) {
  const TNamespace source = MakeSensors(state.range(0));
  for (auto _ : state) {
    PrepareHeap(state.range(0));
    const TNamespace target = makeTarget();
    const auto start = std::chrono::steady_clock::now();
    fill(source, target);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(taken.count());
  }
  RestoreHeap();
  state.counters["per_instance"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void CopyClasses(benchmark::State& state) {
  MeasureFilling(
      state, [] { return MakeRepositoryNamespace("target"); },
      [](const TNamespace& source, const TNamespace& target) {
        TCIMCopy::CopyClasses(source, target);
      });
}

/// Reads every property of every instance, and creates as many instances.
void LimitReadAndFillTheRepositories(benchmark::State& state) {
  MeasureFilling(
      state, [] { return MakeSensors(0); },
      [](const TNamespace& source, const TNamespace& target) {
        const auto targetClass = target->GetClass(kClass, {});
        const TCIMValue bus = Bus(target);
        for (const auto& instance : InstancesOf(source)) {
          const auto copy = targetClass->CreateInstance({});
          instance->EnumerateProperties(
              [&](const boost::shared_ptr<ICIMProperty>& property) {
                const TCIMValue& value = property->GetValue();
                copy->SetPropertyValue(property->GetDecl()->GetName(),
                                       value.IsReference() ? bus : value, {});
                return true;
              },
              {});
          copy->Commit({});
        }
      });
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(1000)->Arg(100000)->UseManualTime();
  if (std::getenv("QDX_BENCH_MILLION") != nullptr) benchmark->Arg(1000000);
}
BENCHMARK(CopyClasses)->Apply(Sizes);
BENCHMARK(LimitReadAndFillTheRepositories)->Apply(Sizes);

}  // namespace
