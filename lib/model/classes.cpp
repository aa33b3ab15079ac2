// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/classes.h>

#include <qdxcore/status.h>
#include <qdxmodel/names.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace NVORNQDX20::NModel {
namespace {

using TDecl = boost::shared_ptr<ICIMPropertyDecl>;

bool Declares(const ICIMClass& cimClass, const TDecl& decl) {
  try {
    return cimClass.GetPropertyDecl(decl->GetName(), {}) == decl;
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() != kQDXStatusNotFound) throw;
    return false;
  }
}

/// Collects declarations from the class up to its root class.
class TPropertyCollector {
 public:
  void Add(const TDecl& decl) {
    const auto [found, isNew] = fPositions.emplace(decl->GetName(), fProperties.size());
    if (isNew) fProperties.push_back({decl, false});
    TClassProperty& property = fProperties[found->second];
    // A superclass enumerates again what the class has enumerated as inherited.
    const bool isAsked = !isNew && property.fDecl == decl;
    if (!isAsked && !property.fIsKey) property.fIsKey = IsQualified(*decl, "Key");
  }

  std::vector<TClassProperty> fProperties;

 private:
  // Views of names that the declarations in fProperties own.
  std::unordered_map<std::string_view, std::size_t, TNameHash, TNameEqual> fPositions;
};

}  // namespace

bool IsQualified(const ICIMPropertyDecl& decl, const std::string& qualifier) {
  // Not by GetQualifier, which throws if there is none: that takes most of the time.
  bool isTrue = false;
  decl.EnumerateQualifiers([&](const boost::shared_ptr<ICIMQualifier>& each) {
    if (EqualIgnoringCase(each->GetDecl()->GetName(), qualifier)) {
      isTrue = each->GetValue() == TCIMValue(true);
    }
    return true;
  });
  return isTrue;
}

boost::shared_ptr<ICIMClass> SuperclassOf(const ICIMClass& cimClass) {
  return cimClass.IsRootClass({}) ? nullptr : cimClass.GetSuperclass({});
}

std::vector<boost::shared_ptr<ICIMClass>> WithSubclasses(
    const boost::shared_ptr<ICIMClass>& cimClass) {
  std::vector<boost::shared_ptr<ICIMClass>> classes{cimClass};
  cimClass->EnumerateSubclasses(TAddToVectorCallback(classes), true, {});
  return classes;
}

std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const ICIMClass& cimClass) {
  std::vector<boost::shared_ptr<ICIMInstance>> instances;
  cimClass.EnumerateInstances(TAddToVectorCallback(instances), false, {});
  return instances;
}

std::vector<TDecl> OwnPropertyDeclsOf(const ICIMClass& cimClass) {
  const auto superclass = SuperclassOf(cimClass);
  // GetPropertyDecl throws for the others, which takes most of the time.
  std::unordered_set<std::string, TNameHash, TNameEqual> inherited;
  for (auto above = superclass; above; above = SuperclassOf(*above)) {
    above->EnumeratePropertyDecls(
        [&inherited](const TDecl& decl) {
          inherited.insert(decl->GetName());
          return true;
        },
        {});
  }
  std::vector<TDecl> own;
  cimClass.EnumeratePropertyDecls(
      [&](const TDecl& decl) {
        if (inherited.count(decl->GetName()) == 0 || !Declares(*superclass, decl)) {
          own.push_back(decl);
        }
        return true;
      },
      {});
  return own;
}

std::vector<TClassProperty> PropertiesOf(const ICIMClass& cimClass) {
  TPropertyCollector collector;
  const auto add = [&collector](const TDecl& decl) {
    collector.Add(decl);
    return true;
  };
  cimClass.EnumeratePropertyDecls(add, {});
  for (auto above = SuperclassOf(cimClass); above; above = SuperclassOf(*above)) {
    above->EnumeratePropertyDecls(add, {});
  }
  return collector.fProperties;
}

}  // namespace NVORNQDX20::NModel
