// SPDX-License-Identifier: Apache-2.0
#include "declared.h"

#include <qdxcore/status.h>

namespace NVORNQDX20::NCIMXML {
namespace {

boost::shared_ptr<ICIMClass> SuperclassOf(const ICIMClass& cimClass) {
  return cimClass.IsRootClass({}) ? nullptr : cimClass.GetSuperclass({});
}

/// Null if the class has no such property.
boost::shared_ptr<const ICIMPropertyDecl> FindDecl(const ICIMClass& cimClass,
                                                   const std::string& name) {
  try {
    return cimClass.GetPropertyDecl(name, {});
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() != kQDXStatusNotFound) throw;
    return nullptr;
  }
}

bool SaysKey(const ICIMPropertyDecl& decl) {
  try {
    return decl.GetQualifier("Key")->GetValue() == TCIMValue(true);
  } catch (const TQDXException&) {
    return false;  // any exception means that there is none
  }
}

}  // namespace

void ForEachOwnPropertyDecl(const ICIMClass& cimClass,
                            const boost::function<void(const ICIMPropertyDecl&)>& visit) {
  const auto superclass = SuperclassOf(cimClass);
  cimClass.EnumeratePropertyDecls(
      [&](const boost::shared_ptr<ICIMPropertyDecl>& decl) {
        if (!superclass || FindDecl(*superclass, decl->GetName()) != decl) visit(*decl);
        return true;
      },
      {});
}

bool IsKey(const ICIMClass& cimClass, const std::string& property) {
  auto decl = FindDecl(cimClass, property);
  for (auto above = SuperclassOf(cimClass); decl && !SaysKey(*decl); above = SuperclassOf(*above)) {
    if (!above) return false;
    decl = FindDecl(*above, property);
  }
  return decl != nullptr;
}

}  // namespace NVORNQDX20::NCIMXML
