// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/snapshot.h>

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxdescribe/declaration.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/property_reader.h>
#include <qdxmodel/type.h>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

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
class TInstanceReader {
 public:
  TInstanceReader(const TClass& cimClass, TClassSnapshot& snapshot, const std::string& ownNamespace,
                  EDepth depth)
      : fClass(cimClass),
        fSnapshot(snapshot),
        fOwnNamespace(ownNamespace),
        fDepth(depth),
        fReader(*cimClass) {
    fPositions.reserve(snapshot.fProperties.size());
    for (const TPropertySnapshot& property : snapshot.fProperties) {
      fPositions.push_back(fReader.PositionOf(property.fName));
    }
  }

  void Add(const ICIMInstance& instance) {
    if (fDepth >= kInstances) {
      fReader.Begin(instance);
      TInstanceSnapshot read{ReadPath(), {}};
      if (fDepth >= kValues) ReadValues(read.fValues);
      fSnapshot.fInstances.push_back(std::move(read));
    }
    ++fSnapshot.fInstanceCount;
  }

 private:
  std::string ReadPath() const {
    TCIMReference path(nullptr, {});
    path.SetClass(fClass);
    for (std::size_t i = 0; i < fPositions.size(); ++i) {
      const TPropertySnapshot& property = fSnapshot.fProperties[i];
      if (!property.fIsKey) continue;
      fReader.Read(fPositions[i],
                   [&](const TCIMValue& value) { path.AddKeyValue(property.fName, value); });
    }
    return path.GetPath();
  }

  void ReadValues(std::vector<TJSON>& values) const {
    values.reserve(fPositions.size());
    for (const std::size_t position : fPositions) {
      fReader.Read(position,
                   [&](const TCIMValue& value) { values.push_back(ToJSON(value, fOwnNamespace)); });
    }
  }

  const TClass fClass;
  TClassSnapshot& fSnapshot;
  const std::string& fOwnNamespace;
  const EDepth fDepth;
  NModel::TPropertyReader fReader;
  std::vector<std::size_t> fPositions;  // in the reader, of the snapshot's properties
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
    TInstanceReader reader(cimClass, Add(cimClass), fNamespaceName, fDepth);
    NModel::ForEachInstance(*cimClass,
                            [&reader](const ICIMInstance& instance) { reader.Add(instance); });
  }
}

void TSnapshotReader::ReadInstance(const ICIMInstance& instance) {
  if (fDepth < kClasses) return;
  const TClass cimClass = instance.GetClass({});
  TInstanceReader(cimClass, Add(cimClass), fNamespaceName, fDepth).Add(instance);
}

void TSnapshotReader::ReadInstances(const TClass& cimClass,
                                    const std::vector<boost::shared_ptr<ICIMInstance>>& instances) {
  if (fDepth < kClasses) return;
  TInstanceReader reader(cimClass, Add(cimClass), fNamespaceName, fDepth);
  for (const auto& instance : instances) reader.Add(*instance);
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
