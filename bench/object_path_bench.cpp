// SPDX-License-Identifier: Apache-2.0
// Parses and formats object paths of two keys with a repository.
#include <qdxcore/reference.h>

#include "support/class_builder.h"

#include <string>

#include <benchmark/benchmark.h>

using namespace NVORNQDX20;

namespace {

const std::string kPath = "CIM_DiskDrive.DeviceID=\"sda\",Number=\"7\"";

TNamespace MakeDisks() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_DiskDrive", {{"DeviceID", ""}, {"Number", 0U}});
  AddInstance(ns, "CIM_DiskDrive", {{"DeviceID", "sda"}, {"Number", 7U}});
  return ns;
}

void ObjectPathParse(benchmark::State& state) {
  const TNamespace ns = MakeDisks();
  for (auto _ : state) {
    TCIMReference reference(ns, kPath, TOptionsMap());
    benchmark::DoNotOptimize(reference);
  }
}
BENCHMARK(ObjectPathParse);

/// The repository's share: looks up the class once, and each declaration twice.
void LimitLookupsOfTheNamespace(benchmark::State& state) {
  const TNamespace ns = MakeDisks();
  for (auto _ : state) {
    const auto disks = ns->GetClass("CIM_DiskDrive", TOptionsMap());
    for (const char* name : {"DeviceID", "Number"}) {
      benchmark::DoNotOptimize(disks->GetPropertyDecl(name, TOptionsMap()));
      benchmark::DoNotOptimize(disks->GetPropertyDecl(name, TOptionsMap()));
    }
  }
}
BENCHMARK(LimitLookupsOfTheNamespace);

void ObjectPathFormat(benchmark::State& state) {
  const TNamespace ns = MakeDisks();
  const TCIMReference reference(ns, kPath, TOptionsMap());
  for (auto _ : state) benchmark::DoNotOptimize(reference.GetPath());
}
BENCHMARK(ObjectPathFormat);

void LimitCopyThePath(benchmark::State& state) {
  for (auto _ : state) {
    std::string copy(kPath);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(LimitCopyThePath);

void ObjectPathFindInstance(benchmark::State& state) {
  const TNamespace ns = MakeDisks();
  const TCIMReference reference(ns, kPath, TOptionsMap());
  const auto disks = ns->GetClass("CIM_DiskDrive", TOptionsMap());
  for (auto _ : state) benchmark::DoNotOptimize(disks->GetInstance(reference, TOptionsMap()));
}
BENCHMARK(ObjectPathFindInstance);

}  // namespace
