// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/class_reader.h>

#include <qdxmodel/classes.h>

#include <algorithm>
#include <tuple>

#include "instance_reader.h"

namespace NVORNQDX20 {
namespace {

/// As many instances as are worth the calls.
constexpr std::size_t kAtOnce = 256;

TClassSnapshot Declaration(const ICIMNamespace& ns, const boost::shared_ptr<ICIMClass>& cimClass,
                           EDepth depth) {
  std::vector<TClassSnapshot> classes;
  TSnapshotReader(ns, std::max(depth, kClasses), classes).ReadInstances(cimClass, {});
  return std::move(classes.front());
}

}  // namespace

TClassReader::TClassReader(const ICIMNamespace& ns, const boost::shared_ptr<ICIMClass>& cimClass,
                           EDepth depth)
    : TClassReader(ns, cimClass, depth, NModel::InstancesOf(*cimClass)) {}

TClassReader::TClassReader(const ICIMNamespace& ns, const boost::shared_ptr<ICIMClass>& cimClass,
                           EDepth depth,
                           const std::vector<boost::shared_ptr<ICIMInstance>>& instances)
    : fDepth(depth),
      fSnapshot(Declaration(ns, cimClass, depth)),
      fReader(std::make_unique<TInstanceReader>(cimClass, fSnapshot, ns.GetName({}))) {
  fSnapshot.fInstanceCount = instances.size();
  if (depth < kInstances) return;
  fByPath.reserve(instances.size());
  for (const auto& instance : instances) {
    fReader->Begin(*instance);
    fByPath.emplace_back(fReader->ReadPath(), instance);
  }
  // Not by the pairs, which would compare addresses.
  std::stable_sort(fByPath.begin(), fByPath.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
}

TClassReader::~TClassReader() = default;

std::vector<TInstanceSnapshot> TClassReader::ReadNext() {
  std::vector<TInstanceSnapshot> read;
  const auto isSamePath = [this](std::size_t index) {
    return index > 0 && fByPath[index].first == fByPath[index - 1].first;
  };
  // Those of one path, as of a class without keys, stay together: they are sorted by their values.
  while (fNext < fByPath.size() && (read.size() < kAtOnce || isSamePath(fNext))) {
    auto& [path, instance] = fByPath[fNext++];
    fReader->Begin(*instance);
    read.push_back({path, fDepth >= kValues ? fReader->ReadValues() : std::vector<TJSON>()});
  }
  std::stable_sort(read.begin(), read.end(),
                   [](const TInstanceSnapshot& a, const TInstanceSnapshot& b) {
                     return std::tie(a.fPath, a.fValues) < std::tie(b.fPath, b.fValues);
                   });
  return read;
}

}  // namespace NVORNQDX20
