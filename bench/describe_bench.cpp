// SPDX-License-Identifier: Apache-2.0
// 10,000 instances of ten properties, made from a table and by hand.
#include <qdxdescribe/provider.h>
#include <qdxrepository/repository.h>

#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using namespace NVORNQDX20;
using namespace NDescribe;

constexpr int kInstances = 10000;

struct TDisk {
  std::string fName;
  TReading<std::string> fModel;
  TReading<std::uint64_t> fSize;
  TReading<bool> fRemovable;
  std::uint32_t fErrors;
  double fLoad;
};

std::vector<TDisk> MakeDisks() {
  std::vector<TDisk> disks;
  for (std::uint32_t i = 0; i < kInstances; ++i) {
    disks.push_back(
        {"disk" + std::to_string(i), "a model of some length", i * 512UL, false, i, 0.5});
  }
  return disks;
}

const std::vector<TDisk>& Disks() {
  static const std::vector<TDisk> disks = MakeDisks();
  return disks;
}

TTable<TDisk> DiskTable() {
  return {"Bench_Disk",
          "A disk.",
          [](const TRequest&) { return Disks(); },
          {{"SystemName", "The machine.", Constant("server.example"), kKey},
           {"CreationClassName", "The class.", kClassName, kKey},
           {"DeviceID", "The disk.", &TDisk::fName, kKey},
           {"Name", "The disk.", &TDisk::fName},
           {"Model", "The model.", &TDisk::fModel},
           {"Size", "The size.", &TDisk::fSize, TUnit{"byte"}},
           {"Removable", "Whether it can be taken out.", &TDisk::fRemovable},
           {"ReadOnly", "Whether it refuses to be written.", &TDisk::fRemovable},
           {"Errors", "The errors.", &TDisk::fErrors, kCounter},
           {"Load", "The load.", &TDisk::fLoad, kGauge}}};
}

void DescribeByTable(benchmark::State& state) {
  const TDescriber describer("bench", "root/bench");
  const std::vector<TClassOf<TRequest>> classes = {DiskTable()};
  for (auto _ : state) benchmark::DoNotOptimize(Describe<TRequest>(describer, classes, {"/", {}}));
  state.SetItemsProcessed(state.iterations() * kInstances);
}
BENCHMARK(DescribeByTable)->Unit(benchmark::kMillisecond);

/// The calls of the interfaces without which there is no instance.
void LimitDescribeByHand(benchmark::State& state) {
  const TClassOf<TRequest> table = DiskTable();
  for (auto _ : state) {
    const auto ns = MakeRepositoryNamespace("root/bench");
    const auto disks = DeclareClass(*ns, table.fDeclaration);
    for (const TDisk& disk : Disks()) {
      const auto instance = disks->CreateInstance({});
      instance->SetPropertyValue("SystemName", "server.example", {});
      instance->SetPropertyValue("CreationClassName", "Bench_Disk", {});
      instance->SetPropertyValue("DeviceID", disk.fName, {});
      instance->SetPropertyValue("Name", disk.fName, {});
      instance->SetPropertyValue("Model", *disk.fModel, {});
      instance->SetPropertyValue("Size", *disk.fSize, {});
      instance->SetPropertyValue("Removable", *disk.fRemovable, {});
      instance->SetPropertyValue("ReadOnly", *disk.fRemovable, {});
      instance->SetPropertyValue("Errors", disk.fErrors, {});
      instance->SetPropertyValue("Load", disk.fLoad, {});
      instance->Commit({});
    }
  }
  state.SetItemsProcessed(state.iterations() * kInstances);
}
BENCHMARK(LimitDescribeByHand)->Unit(benchmark::kMillisecond);

}  // namespace
