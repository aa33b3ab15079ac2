// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/snapshot.h>

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxdescribe/declaration.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/type.h>

#include <algorithm>
#include <tuple>

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

std::vector<TPropertySnapshot> PropertiesOf(const ICIMClass& cimClass,
                                            const std::string& ownNamespace, bool marksVolatile) {
  std::vector<TPropertySnapshot> properties;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
    const std::string& name = decl->GetName();
    const bool isVolatile = marksVolatile
                                ? NModel::IsQualified(*decl, NDescribe::kVolatileQualifier)
                                : HasVolatileName(name);
    properties.push_back({name, NModel::TypeText(decl->GetType()), isKey, isVolatile,
                          ToJSON(decl->GetDefaultValue(), ownNamespace)});
  }
  SortByName(properties);
  return properties;
}

std::string PartOf(const ICIMClass& cimClass) {
  try {
    const auto qualifier = cimClass.GetQualifier(NDescribe::kPartQualifier);
    if (qualifier) return qualifier->GetValue();
  } catch (const TQDXException&) {  // means that there is none
  }
  return "";
}

std::string PathOf(const ICIMInstance& instance, const TClass& cimClass,
                   const std::vector<TPropertySnapshot>& properties) {
  TCIMReference path(nullptr, {});
  path.SetClass(cimClass);
  for (const TPropertySnapshot& property : properties) {
    if (!property.fIsKey) continue;
    path.AddKeyValue(property.fName, instance.GetProperty(property.fName, {})->GetValue());
  }
  return path.GetPath();
}

TInstanceSnapshot SnapshotOf(const ICIMInstance& instance, const TClass& cimClass,
                             const std::vector<TPropertySnapshot>& properties,
                             const std::string& ownNamespace, EDepth depth) {
  TInstanceSnapshot snapshot{PathOf(instance, cimClass, properties), {}};
  if (depth < kValues) return snapshot;
  snapshot.fValues.reserve(properties.size());
  for (const TPropertySnapshot& property : properties) {
    const auto value = instance.GetProperty(property.fName, {});
    snapshot.fValues.push_back(ToJSON(value->GetValue(), ownNamespace));
  }
  return snapshot;
}

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
    TClassSnapshot& snapshot = Add(cimClass);
    NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& instance) {
      AddInstance(snapshot, instance, cimClass);
    });
  }
}

void TSnapshotReader::ReadInstance(const ICIMInstance& instance) {
  if (fDepth < kClasses) return;
  const TClass cimClass = instance.GetClass({});
  AddInstance(Add(cimClass), instance, cimClass);
}

TClassSnapshot& TSnapshotReader::Add(const TClass& cimClass) {
  const TClass superclass = NModel::SuperclassOf(*cimClass);
  fClasses.push_back({cimClass->GetName({}),
                      superclass ? superclass->GetName({}) : "",
                      PropertiesOf(*cimClass, fNamespaceName, fMarksVolatile),
                      0,
                      {},
                      PartOf(*cimClass)});
  return fClasses.back();
}

void TSnapshotReader::AddInstance(TClassSnapshot& snapshot, const ICIMInstance& instance,
                                  const TClass& cimClass) const {
  if (fDepth >= kInstances) {
    snapshot.fInstances.push_back(
        SnapshotOf(instance, cimClass, snapshot.fProperties, fNamespaceName, fDepth));
  }
  ++snapshot.fInstanceCount;
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
