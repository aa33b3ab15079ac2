// SPDX-License-Identifier: Apache-2.0
#include "schema_copy.h"

#include <qdxcore/copy.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/type.h>

namespace NVORNQDX20::NRedact {
namespace {

using TType = TCIMValue::TCIMType;

/// A reference refers to its own class until all classes are there.
TCIMValue FirstDefaultOf(const ICIMPropertyDecl& decl, const boost::shared_ptr<ICIMClass>& target,
                         const TMapDefault& mapDefault) {
  const TType type = decl.GetType();
  if (NModel::ElementType(type) != TType::kCIMTypeReference) return mapDefault(decl);
  TCIMValue value(type, 0);
  value.SetReferencedClass(target);
  return value;
}

boost::shared_ptr<ICIMClass> CopyClass(const boost::shared_ptr<ICIMClass>& source,
                                       const boost::shared_ptr<ICIMNamespace>& target,
                                       const TMapDefault& mapDefault) {
  const auto superclass = NModel::SuperclassOf(*source);
  const auto above = superclass ? target->GetClass(superclass->GetName({}), {}) : nullptr;
  auto copy = target->CreateClass(source->GetName({}), above, {});
  source->EnumerateQualifiers(TCopyQualifier{copy, target});
  for (const auto& decl : NModel::OwnPropertyDeclsOf(*source)) {
    const auto property =
        copy->CreatePropertyDecl(decl->GetName(), FirstDefaultOf(*decl, copy, mapDefault), {});
    decl->EnumerateQualifiers(TCopyQualifier{property, target});
    property->Commit();
  }
  source->EnumerateMethodDecls(TCopyMethodDecl{copy, target}, {});
  copy->Commit({});
  return copy;
}

}  // namespace

std::vector<boost::shared_ptr<ICIMClass>> ClassesOf(const ICIMNamespace& ns) {
  std::vector<boost::shared_ptr<ICIMClass>> roots;
  ns.EnumerateClasses(TAddToVectorCallback<ICIMClass>(roots), {});
  std::vector<boost::shared_ptr<ICIMClass>> all;
  for (const auto& root : roots) {
    const auto tree = NModel::WithSubclasses(root);
    all.insert(all.end(), tree.begin(), tree.end());
  }
  return all;
}

std::vector<TCopiedClass> CopySchema(const ICIMNamespace& source,
                                     const boost::shared_ptr<ICIMNamespace>& target,
                                     const TMapDefault& mapDefault) {
  source.EnumerateQualifierDecls(TCopyQualifierDecls{target}, {});
  std::vector<TCopiedClass> copied;
  for (const auto& each : ClassesOf(source)) {
    copied.push_back({each, CopyClass(each, target, mapDefault)});
  }
  return copied;
}

}  // namespace NVORNQDX20::NRedact
