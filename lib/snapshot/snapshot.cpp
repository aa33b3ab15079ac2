// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/snapshot.h>

#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <locale>
#include <tuple>
#include <unordered_set>

#include <boost/algorithm/string/case_conv.hpp>

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;
using TClass = boost::shared_ptr<ICIMClass>;
using TInstance = boost::shared_ptr<ICIMInstance>;

std::string TypeName(TType type) {
  const bool isArray = (type & TType::kCIMTypeArray) != 0;
  return type.ToString() + (isArray ? "[]" : "");
}

/// A declaration throws for a qualifier that it does not have.
bool IsKey(const ICIMPropertyDecl& decl) {
  try {
    return decl.GetQualifier("Key")->GetValue() == TCIMValue(true);
  } catch (const TQDXException&) {
    return false;
  }
}

template <typename T>
void SortByName(std::vector<T>& elements) {
  std::sort(elements.begin(), elements.end(),
            [](const T& a, const T& b) { return a.fName < b.fName; });
}

TPropertySnapshot SnapshotOf(const ICIMPropertyDecl& decl, const std::string& home) {
  return {decl.GetName(), TypeName(decl.GetType()), IsKey(decl),
          ToJSON(decl.GetDefaultValue(), home)};
}

TClass SuperclassOf(const ICIMClass& cimClass) {
  return cimClass.IsRootClass(TOptionsMap()) ? nullptr : cimClass.GetSuperclass(TOptionsMap());
}

/// A class may or may not enumerate what it inherits; the declaration nearest to it counts.
std::vector<TPropertySnapshot> PropertiesOf(const TClass& cimClass, const std::string& home) {
  std::vector<TPropertySnapshot> properties;
  std::unordered_set<std::string> known;  // folded names
  const auto add = [&](const boost::shared_ptr<ICIMPropertyDecl>& decl) {
    const bool isNew =
        known.insert(boost::algorithm::to_lower_copy(decl->GetName(), std::locale::classic()))
            .second;
    if (isNew) properties.push_back(SnapshotOf(*decl, home));
    return true;
  };
  for (TClass from = cimClass; from; from = SuperclassOf(*from)) {
    from->EnumeratePropertyDecls(add, TOptionsMap());
  }
  SortByName(properties);
  return properties;
}

std::string PathOf(const TInstance& instance, const TClass& cimClass,
                   const std::vector<TPropertySnapshot>& properties) {
  TCIMReference path(nullptr, TOptionsMap());
  path.SetClass(cimClass);
  for (const TPropertySnapshot& property : properties) {
    if (!property.fIsKey) continue;
    path.AddKeyValue(property.fName,
                     instance->GetProperty(property.fName, TOptionsMap())->GetValue());
  }
  return path.GetPath();
}

TInstanceSnapshot SnapshotOf(const TInstance& instance, const TClass& cimClass,
                             const std::vector<TPropertySnapshot>& properties,
                             const std::string& home, EDepth depth) {
  TInstanceSnapshot snapshot{PathOf(instance, cimClass, properties), {}};
  if (depth < kValues) return snapshot;
  snapshot.fValues.reserve(properties.size());
  for (const TPropertySnapshot& property : properties) {
    const auto value = instance->GetProperty(property.fName, TOptionsMap());
    snapshot.fValues.push_back(ToJSON(value->GetValue(), home));
  }
  return snapshot;
}

}  // namespace

void TSnapshotReader::ReadAll() {
  if (fDepth < kClasses) return;
  fNamespace.EnumerateClasses(
      [this](const TClass& root) {
        ReadTree(root);
        return true;
      },
      TOptionsMap());
}

void TSnapshotReader::ReadTree(const TClass& root) {
  if (fDepth < kClasses) return;
  std::vector<TClass> classes{root};
  root->EnumerateSubclasses(TAddToVectorCallback<ICIMClass>(classes), true, TOptionsMap());
  for (const TClass& cimClass : classes) {
    TClassSnapshot& snapshot = Add(cimClass);
    cimClass->EnumerateInstances(
        [&](const TInstance& instance) {
          AddInstance(snapshot, instance, cimClass);
          return true;
        },
        false, TOptionsMap());
  }
}

void TSnapshotReader::ReadInstance(const TInstance& instance) {
  if (fDepth < kClasses) return;
  const TClass cimClass = instance->GetClass(TOptionsMap());
  AddInstance(Add(cimClass), instance, cimClass);
}

TClassSnapshot& TSnapshotReader::Add(const TClass& cimClass) {
  const TClass superclass = SuperclassOf(*cimClass);
  fClasses.push_back({cimClass->GetName(TOptionsMap()),
                      superclass ? superclass->GetName(TOptionsMap()) : "",
                      PropertiesOf(cimClass, fHome),
                      0,
                      {}});
  return fClasses.back();
}

void TSnapshotReader::AddInstance(TClassSnapshot& snapshot, const TInstance& instance,
                                  const TClass& cimClass) const {
  if (fDepth >= kInstances) {
    snapshot.fInstances.push_back(
        SnapshotOf(instance, cimClass, snapshot.fProperties, fHome, fDepth));
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
