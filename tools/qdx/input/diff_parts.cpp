// SPDX-License-Identifier: Apache-2.0
#include "diff_parts.h"

#include <qdxdescribe/declaration.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/type.h>

#include <algorithm>
#include <iterator>
#include <set>

#include <qdxsnapshot/record.h>

namespace NVORNQDX20 {
namespace {

using TParts = std::set<std::string>;
using TClass = boost::shared_ptr<ICIMClass>;

/// Returns the parts that a document lacks, as its record says.
TParts PartsLeftOutOf(const TComparedDocument& document) {
  TParts parts;
  for (const TComparedNamespace& ns : document.fNamespaces) {
    if (!IsRecordNamespace(*ns.fNamespace)) continue;
    const std::vector<std::string> leftOut = ReadRecord(*ns.fNamespace).fPartsLeftOut;
    parts.insert(leftOut.begin(), leftOut.end());
  }
  return parts;
}

std::string PartOf(const ICIMClass& cimClass) {
  std::string part;
  (void)TryUnlessOutOfMemory([&] {
    const auto qualifier = cimClass.GetQualifier(NDescribe::kPartQualifier);
    const std::string* const name = qualifier ? qualifier->GetValue().FindString() : nullptr;
    if (name != nullptr) part = *name;
  });
  return part;
}

bool HasReferences(const ICIMClass& cimClass) {
  const auto properties = NModel::PropertiesOf(cimClass);
  return std::any_of(properties.begin(), properties.end(), [](const auto& each) {
    return each.fDecl->GetType() == TCIMValue::TCIMType::kCIMTypeReference;
  });
}

/// Adds the classes of the parts, of which one document may have only the references.
void AddClasses(const TComparedDocument& document, TLeftOut& leftOut) {
  for (const TComparedNamespace& ns : document.fNamespaces) {
    ns.fNamespace->EnumerateClasses(
        [&leftOut](const TClass& root) {
          for (const TClass& each : NModel::WithSubclasses(root)) {
            const std::string name = NModel::Folded(each->GetName({}));
            if (leftOut.fParts.count(PartOf(*each)) != 0) leftOut.fClasses.insert(name);
            if (HasReferences(*each)) leftOut.fReferring.insert(name);
          }
          return true;
        },
        {});
  }
}

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

TLeftOut FindUnsharedParts(const TComparedDocument& a, const TComparedDocument& b,
                           std::vector<std::string>& lines) {
  const TParts fromA = PartsLeftOutOf(a);
  const TParts fromB = PartsLeftOutOf(b);
  TLeftOut leftOut;
  leftOut.fParts = fromA;
  leftOut.fParts.insert(fromB.begin(), fromB.end());
  if (!leftOut.fParts.empty()) {
    AddClasses(a, leftOut);
    AddClasses(b, leftOut);
  }
  AddLines(fromA, fromB, a.fFile, lines);
  AddLines(fromB, fromA, b.fFile, lines);
  return leftOut;
}

}  // namespace NVORNQDX20
