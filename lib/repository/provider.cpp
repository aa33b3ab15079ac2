// SPDX-License-Identifier: Apache-2.0
// A provider of namespaces that were made beforehand.
#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include "failure_reasons.h"

namespace NVORNQDX20 {

TRepositoryProvider::TRepositoryProvider(const std::string& name) : fName(name) {}

TRepositoryProvider::~TRepositoryProvider() = default;

void TRepositoryProvider::AddNamespace(boost::shared_ptr<ICIMNamespace> ns) {
  if (Find(ns->GetName({}))) {
    throw TExplainedException(
        kQDXStatusAlreadyExists,
        "namespace " + ns->GetName({}) + " of provider " + fName + " is there already");
  }
  fNamespaces.push_back(ns);
}

const std::string& TRepositoryProvider::GetName(TOptionsMap) const { return fName; }

boost::shared_ptr<ICIMNamespace> TRepositoryProvider::GetNamespace(const std::string& name,
                                                                   TOptionsMap) {
  boost::shared_ptr<ICIMNamespace> found = Find(name);
  if (!found) {
    throw TExplainedException(kQDXStatusNotFound,
                              "provider " + fName + " has no namespace " + NModel::Quoted(name));
  }
  return found;
}

void TRepositoryProvider::EnumerateNamespaceNames(const TNamespaceNameCallback& callback,
                                                  TOptionsMap) {
  for (std::size_t i = 0, end = fNamespaces.size(); i < end; ++i) {
    if (!callback(fNamespaces[i]->GetName({}))) return;
  }
}

boost::shared_ptr<ICIMNamespace> TRepositoryProvider::Find(const std::string& name) const {
  for (const auto& ns : fNamespaces) {
    if (NModel::EqualIgnoringCase(ns->GetName({}), name)) return ns;
  }
  return nullptr;
}

}  // namespace NVORNQDX20
