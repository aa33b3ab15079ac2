// SPDX-License-Identifier: Apache-2.0
#include "diff_parts.h"

#include <qdxdescribe/missing_values.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <set>

#include "record.h"

namespace NVORNQDX20 {
namespace {

using TParts = std::set<std::string>;

const char* const kReference = "reference";

/// Returns null if the class has no such property.
const TJSON& ValueOf(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                     const char* property) {
  static const TJSON none;
  for (std::size_t i = 0; i < cimClass.fProperties.size(); ++i) {
    if (cimClass.fProperties[i].fName == property) return instance.fValues[i];
  }
  return none;
}

TParts PartsLeftOutOf(const TComparedDocument& document) {
  TParts parts;
  for (const TNamespaceSnapshot& ns : document.fNamespaces) {
    if (!NModel::EqualIgnoringCase(ns.fName, kRecordNamespaceName)) continue;
    for (const TClassSnapshot& cimClass : ns.fClasses) {
      if (cimClass.fName != kRecordClass) continue;
      for (const TInstanceSnapshot& record : cimClass.fInstances) {
        for (const TJSON& part : ValueOf(cimClass, record, kPartsLeftOut)) {
          if (part.is_string()) parts.insert(part.get<std::string>());
        }
      }
    }
  }
  return parts;
}

/// Removes parts from documents.
class TRemoval {
 public:
  explicit TRemoval(TParts parts) : fParts(std::move(parts)) {}

  /// Remembers the classes to be removed, of which one document may have only the references.
  void Add(const TComparedDocument& document) {
    for (const TNamespaceSnapshot& ns : document.fNamespaces) {
      for (const TClassSnapshot& cimClass : ns.fClasses) {
        if (fParts.count(cimClass.fPart) != 0) fClasses.insert(cimClass.fName);
        if (HasReferences(cimClass)) fReferring.insert(cimClass.fName);
      }
    }
  }

  void RemoveFrom(TComparedDocument& document) const {
    for (TNamespaceSnapshot& ns : document.fNamespaces) {
      const auto isRemoved = [this](const TClassSnapshot& each) { return Has(each.fName); };
      ns.fClasses.erase(std::remove_if(ns.fClasses.begin(), ns.fClasses.end(), isRemoved),
                        ns.fClasses.end());
      for (TClassSnapshot& cimClass : ns.fClasses) RemoveFrom(cimClass);
    }
  }

 private:
  static bool HasReferences(const TClassSnapshot& cimClass) {
    return std::any_of(cimClass.fProperties.begin(), cimClass.fProperties.end(),
                       [](const TPropertySnapshot& each) { return each.fType == kReference; });
  }

  bool Has(const std::string& className) const { return fClasses.count(className) != 0; }

  void RemoveFrom(TClassSnapshot& cimClass) const {
    const bool isOfReasons = cimClass.fName == NDescribe::kMissingValueClass;
    const auto isRemoved = [&](TInstanceSnapshot& instance) {
      return isOfReasons ? ExplainsRemoved(cimClass, instance)
                         : RemoveReferences(cimClass, instance);
    };
    auto& instances = cimClass.fInstances;
    instances.erase(std::remove_if(instances.begin(), instances.end(), isRemoved), instances.end());
  }

  bool ExplainsRemoved(const TClassSnapshot& reasons, const TInstanceSnapshot& instance) const {
    const TJSON& owner = ValueOf(reasons, instance, "ClassName");
    const TJSON& reason = ValueOf(reasons, instance, "Reason");
    const std::string name = owner.is_string() ? owner.get<std::string>() : "";
    // Why there are none, or fewer, can be the missing part.
    const bool isOfClass = ValueOf(reasons, instance, "PropertyName") == "";
    return Has(name) || (isOfClass && !fParts.empty() && fReferring.count(name) != 0) ||
           std::any_of(fParts.begin(), fParts.end(), [&reason](const std::string& part) {
             return reason == NDescribe::ReasonOfPart(part);
           });
  }

  /// Returns whether a key refers to a removed class. Other references become null.
  bool RemoveReferences(const TClassSnapshot& cimClass, TInstanceSnapshot& instance) const {
    for (std::size_t i = 0; i < cimClass.fProperties.size(); ++i) {
      const TPropertySnapshot& property = cimClass.fProperties[i];
      TJSON& value = instance.fValues[i];
      if (property.fType != kReference || !value.is_string()) continue;
      const std::string path = value.get<std::string>();
      if (!Has(path.substr(0, path.find('.')))) continue;
      if (property.fIsKey) return true;
      value = nullptr;
    }
    return false;
  }

  const TParts fParts;
  std::set<std::string> fClasses;
  std::set<std::string> fReferring;  // classes with references
};

void AddLines(const TParts& leftOut, const TParts& others, const std::string& file,
              std::vector<std::string>& lines) {
  TParts unshared;
  std::set_difference(leftOut.begin(), leftOut.end(), others.begin(), others.end(),
                      std::inserter(unshared, unshared.end()));
  for (const std::string& part : unshared) {
    lines.push_back("not comparing part " + part + ": it is left out of " + file);
  }
}

}  // namespace

std::vector<std::string> RemoveUnsharedParts(TComparedDocument& a, TComparedDocument& b) {
  const TParts fromA = PartsLeftOutOf(a);
  const TParts fromB = PartsLeftOutOf(b);
  TParts parts = fromA;
  parts.insert(fromB.begin(), fromB.end());
  TRemoval removal(parts);
  removal.Add(a);
  removal.Add(b);
  removal.RemoveFrom(a);
  removal.RemoveFrom(b);
  std::vector<std::string> lines;
  AddLines(fromA, fromB, a.fFile, lines);
  AddLines(fromB, fromA, b.fFile, lines);
  return lines;
}

}  // namespace NVORNQDX20
