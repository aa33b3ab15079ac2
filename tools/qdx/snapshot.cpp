// SPDX-License-Identifier: Apache-2.0
#include "snapshot.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <locale>
#include <tuple>

#include <boost/algorithm/string/predicate.hpp>

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

/// A class may or may not enumerate what it inherits; the declaration nearest to it counts.
std::vector<TPropertySnapshot> PropertiesOf(const TClass& cimClass) {
  std::vector<TPropertySnapshot> properties;
  const auto add = [&properties](const boost::shared_ptr<ICIMPropertyDecl>& decl) {
    const auto isSame = [&](const TPropertySnapshot& known) {
      return boost::algorithm::iequals(known.fName, decl->GetName(), std::locale::classic());
    };
    if (std::none_of(properties.begin(), properties.end(), isSame)) {
      properties.push_back({decl->GetName(), TypeName(decl->GetType()), IsKey(*decl)});
    }
    return true;
  };
  for (TClass from = cimClass; from;) {
    from->EnumeratePropertyDecls(add, TOptionsMap());
    from = from->IsRootClass(TOptionsMap()) ? nullptr : from->GetSuperclass(TOptionsMap());
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
                             const std::vector<TPropertySnapshot>& properties, EDepth depth) {
  TInstanceSnapshot snapshot{PathOf(instance, cimClass, properties), {}};
  if (depth < kValues) return snapshot;
  snapshot.fValues.reserve(properties.size());
  for (const TPropertySnapshot& property : properties) {
    const auto value = instance->GetProperty(property.fName, TOptionsMap());
    snapshot.fValues.push_back(ToJSON(value->GetValue()));
  }
  return snapshot;
}

TClassSnapshot ReadClass(const TClass& cimClass, EDepth depth) {
  TClassSnapshot snapshot{cimClass->GetName(TOptionsMap()), PropertiesOf(cimClass), 0, {}};
  cimClass->EnumerateInstances(
      [&](const TInstance& instance) {
        ++snapshot.fInstanceCount;
        if (depth < kInstances) return true;
        snapshot.fInstances.push_back(SnapshotOf(instance, cimClass, snapshot.fProperties, depth));
        return true;
      },
      false, TOptionsMap());
  std::sort(snapshot.fInstances.begin(), snapshot.fInstances.end(),
            [](const TInstanceSnapshot& a, const TInstanceSnapshot& b) {
              return std::tie(a.fPath, a.fValues) < std::tie(b.fPath, b.fValues);
            });
  return snapshot;
}

}  // namespace

std::vector<TClassSnapshot> ReadClassTree(const TClass& root, EDepth depth) {
  std::vector<TClass> classes{root};
  root->EnumerateSubclasses(TAddToVectorCallback<ICIMClass>(classes), true, TOptionsMap());
  std::vector<TClassSnapshot> snapshots;
  snapshots.reserve(classes.size());
  for (const TClass& cimClass : classes) snapshots.push_back(ReadClass(cimClass, depth));
  SortByName(snapshots);
  return snapshots;
}

TClassSnapshot ReadInstance(const TInstance& instance, EDepth depth) {
  const TClass cimClass = instance->GetClass(TOptionsMap());
  TClassSnapshot snapshot{cimClass->GetName(TOptionsMap()), PropertiesOf(cimClass), 1, {}};
  if (depth >= kInstances) {
    snapshot.fInstances.push_back(SnapshotOf(instance, cimClass, snapshot.fProperties, depth));
  }
  return snapshot;
}

std::vector<TClassSnapshot> ReadClasses(const ICIMNamespace& ns, EDepth depth) {
  std::vector<TClassSnapshot> classes;
  if (depth < kClasses) return classes;
  ns.EnumerateClasses(
      [&](const TClass& root) {
        std::vector<TClassSnapshot> tree = ReadClassTree(root, depth);
        std::move(tree.begin(), tree.end(), std::back_inserter(classes));
        return true;
      },
      TOptionsMap());
  SortByName(classes);
  return classes;
}

}  // namespace NVORNQDX20
