// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/snapshot.h>

#include <qdxcore/status.h>
#include <qdxdescribe/declaration.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/type.h>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "instance_reader.h"
#include "property_details.h"
#include "volatile_names.h"

namespace NVORNQDX20 {
namespace {

using TClass = boost::shared_ptr<ICIMClass>;

template <typename T>
void SortByName(std::vector<T>& elements) {
  std::sort(elements.begin(), elements.end(),
            [](const T& a, const T& b) { return a.fName < b.fName; });
}

bool HasQualifierDecl(const ICIMNamespace& ns, const char* name) {
  try {
    return ns.GetQualifierDecl(name, {}) != nullptr;
  } catch (const TQDXException&) {
    return false;  // an exception means that there is none
  }
}

std::string PartOf(const ICIMClass& cimClass) {
  try {
    const auto qualifier = cimClass.GetQualifier(NDescribe::kPartQualifier);
    if (qualifier) return qualifier->GetValue();
  } catch (const TQDXException&) {  // means that there is none
  }
  return "";
}

/// Adds instances of one class to its snapshot.
class TInstanceAdder {
 public:
  TInstanceAdder(const TClass& cimClass, TClassSnapshot& snapshot, const std::string& ownNamespace,
                 EDepth depth)
      : fSnapshot(snapshot), fDepth(depth), fReader(cimClass, snapshot, ownNamespace) {}

  void Add(const ICIMInstance& instance) {
    ++fSnapshot.fInstanceCount;
    if (fDepth < kInstances) return;
    fReader.Begin(instance);
    fSnapshot.fInstances.push_back({fReader.ReadPath(), {}});
    if (fDepth >= kValues) fSnapshot.fInstances.back().fValues = fReader.ReadValues();
  }

 private:
  TClassSnapshot& fSnapshot;
  const EDepth fDepth;
  TInstanceReader fReader;
};

}  // namespace

TSnapshotReader::TSnapshotReader(const ICIMNamespace& ns, EDepth depth,
                                 std::vector<TClassSnapshot>& classes)
    : fNamespace(ns),
      fNamespaceName(ns.GetName({})),
      fMarksVolatile(HasQualifierDecl(ns, NDescribe::kVolatileQualifier)),
      fDepth(depth),
      fClasses(classes) {}

void TSnapshotReader::ReadAll() {
  if (fDepth < kClasses) return;
  fNamespace.EnumerateClasses(
      [this](const TClass& root) {
        ReadTree(root);
        return true;
      },
      {});
}

void TSnapshotReader::ReadTree(const TClass& root) {
  if (fDepth < kClasses) return;
  for (const TClass& cimClass : NModel::WithSubclasses(root)) {
    TInstanceAdder reader(cimClass, Add(cimClass), fNamespaceName, fDepth);
    NModel::ForEachInstance(*cimClass,
                            [&reader](const ICIMInstance& instance) { reader.Add(instance); });
  }
}

void TSnapshotReader::ReadInstance(const ICIMInstance& instance) {
  if (fDepth < kClasses) return;
  const TClass cimClass = instance.GetClass({});
  TInstanceAdder(cimClass, Add(cimClass), fNamespaceName, fDepth).Add(instance);
}

void TSnapshotReader::ReadInstances(const TClass& cimClass,
                                    const std::vector<boost::shared_ptr<ICIMInstance>>& instances) {
  if (fDepth < kClasses) return;
  TClassSnapshot& snapshot = Add(cimClass);
  if (instances.empty()) return;
  TInstanceAdder adder(cimClass, snapshot, fNamespaceName, fDepth);
  for (const auto& instance : instances) adder.Add(*instance);
}

std::vector<TPropertySnapshot> TSnapshotReader::PropertiesOf(const TClass& cimClass) const {
  std::vector<TPropertySnapshot> properties;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(*cimClass)) {
    const std::string& name = decl->GetName();
    const bool isVolatile = fMarksVolatile
                                ? NModel::IsQualified(*decl, NDescribe::kVolatileQualifier)
                                : HasVolatileName(name);
    properties.push_back({name, NModel::TypeText(decl->GetType()), isKey, isVolatile,
                          ToJSON(decl->GetDefaultValue(), fNamespaceName)});
  }
  ReadPropertyDetails(cimClass, fDepth >= kValues, properties);
  SortByName(properties);
  return properties;
}

TClassSnapshot& TSnapshotReader::Add(const TClass& cimClass) {
  const TClass superclass = NModel::SuperclassOf(*cimClass);
  fClasses.push_back({cimClass->GetName({}),
                      superclass ? superclass->GetName({}) : "",
                      PropertiesOf(cimClass),
                      0,
                      {},
                      PartOf(*cimClass)});
  return fClasses.back();
}

std::vector<std::size_t> InOrderOfDeclaration(const TClassSnapshot& cimClass) {
  const std::vector<TPropertySnapshot>& properties = cimClass.fProperties;
  std::vector<std::size_t> indexes(properties.size());
  std::iota(indexes.begin(), indexes.end(), std::size_t{0});
  std::stable_sort(indexes.begin(), indexes.end(), [&properties](std::size_t a, std::size_t b) {
    return properties[a].fPosition < properties[b].fPosition;
  });
  return indexes;
}

void SortSnapshot(std::vector<TClassSnapshot>& classes) {
  SortByName(classes);
  for (TClassSnapshot& cimClass : classes) {
    std::sort(cimClass.fInstances.begin(), cimClass.fInstances.end(),
              [](const TInstanceSnapshot& a, const TInstanceSnapshot& b) {
                return std::tie(a.fPath, a.fValues) < std::tie(b.fPath, b.fValues);
              });
  }
}

}  // namespace NVORNQDX20
