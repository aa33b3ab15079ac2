// SPDX-License-Identifier: Apache-2.0
// Instances that a table describes, beside the calls without which there is no instance.
#include <qdxdescribe/provider.h>
#include <qdxrepository/repository.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "operation.h"

namespace NBench {
namespace {

using namespace NVORNQDX20;
using namespace NDescribe;

struct TDisk {
  std::string fName;
  TReading<std::string> fModel;
  TReading<std::uint64_t> fSize;
  TReading<bool> fRemovable;
  std::uint32_t fErrors;
  double fLoad;
};
using TDisks = std::shared_ptr<std::vector<TDisk>>;

TDisks MakeDisks(std::uint32_t count) {
  const auto disks = std::make_shared<std::vector<TDisk>>();
  disks->reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    disks->push_back(
        {"disk" + std::to_string(i), "a model of some length", i * 512UL, false, i, 0.5});
  }
  return disks;
}

TTable<TDisk> DiskTable(const TDisks& disks) {
  return {"Bench_Disk",
          "A disk.",
          [disks](const TRequest&) { return *disks; },
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

TLoop ByTable(std::uint32_t count) {
  const auto describer = std::make_shared<TDescriber>("bench", "root/bench");
  const std::vector<TClassOf<TRequest>> classes = {DiskTable(MakeDisks(count))};
  return Repeat([describer, classes] {
    return Describe<TRequest>(*describer, classes, {"/", {}});
  });
}

TLoop ByHand(std::uint32_t count) {
  const TDisks all = MakeDisks(count);
  const TClassOf<TRequest> table = DiskTable(all);
  return Repeat([all, table] {
    const auto ns = MakeRepositoryNamespace("root/bench");
    const auto disks = DeclareClass(*ns, table.fDeclaration);
    for (const TDisk& disk : *all) {
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
    return ns;
  });
}

}  // namespace

TOperations TableOperations(bool isCounted) {
  const std::uint32_t count = isCounted ? 1000 : 10000;
  TOperations all = {{"an instance from a table", [count] { return ByTable(count); },
                      "the bare interfaces", [count] { return ByHand(count); }}};
  all.front().fInstances = count;
  all.front().fCountedRuns = 3;
  return all;
}

}  // namespace NBench
