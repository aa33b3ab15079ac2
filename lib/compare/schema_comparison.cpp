// SPDX-License-Identifier: Apache-2.0
#include "schema_comparison.h"

#include <qdxmodel/names.h>
#include <qdxmodel/type.h>

#include <algorithm>
#include <utility>

#include <qdxsnapshot/schema.h>

namespace NVORNQDX20 {
namespace {

/// An element with the lower-case name by which it is found on the other side, a name for people,
/// and what is compared.
struct TElement {
  std::string fFolded;
  std::string fName;
  TJSON fValue;
};
using TElements = std::vector<TElement>;

class TSchemaComparison {
 public:
  TSchemaComparison(std::string ns, std::string owner, TFindings& findings)
      : fNamespace(std::move(ns)), fOwner(std::move(owner)), fFindings(findings) {}

  void Compare(TDifference::EElement kind, TElements a, TElements b) {
    for (TElements* elements : {&a, &b}) {
      std::stable_sort(elements->begin(), elements->end(), [](const auto& one, const auto& other) {
        return one.fFolded < other.fFolded;
      });
    }
    Merge(
        a, b, [](const TElement& each) -> const std::string& { return each.fFolded; },
        [&](const TElement* inA, const TElement* inB) {
          if (inA != nullptr && inB != nullptr && inA->fValue == inB->fValue) return;
          const auto change = inA == nullptr   ? TDifference::kAdded
                              : inB == nullptr ? TDifference::kRemoved
                                               : TDifference::kChanged;
          fFindings.Add({kind, change, fNamespace, fOwner, (inA != nullptr ? inA : inB)->fName,
                         inA != nullptr ? inA->fValue : TJSON(),
                         inB != nullptr ? inB->fValue : TJSON()});
        });
  }

 private:
  const std::string fNamespace;
  const std::string fOwner;
  TFindings& fFindings;
};

/// Adds the qualifiers of what is called `owner`; empty for the class itself.
void AddQualifiers(const std::string& owner, const std::vector<TQualifierValue>& qualifiers,
                   const std::string& ns, TElements& elements) {
  for (const TQualifierValue& each : qualifiers) {
    if (NModel::EqualIgnoringCase(each.fName, "Key")) continue;
    const std::string name = owner + (owner.empty() ? "[" : " [") + each.fName + "]";
    elements.push_back({NModel::Folded(name), name, ToJSON(each.fValue, ns)});
  }
}

TElements QualifiersOf(const TClassSchema& schema, const TClassSide& side, const std::string& ns) {
  TElements elements;
  AddQualifiers("", schema.fQualifiers, ns, elements);
  const auto isIgnored = [&side](const std::string& property) {
    const auto& order = side.GetOrder();
    return std::any_of(order.begin(), order.end(), [&](const TNamedPosition& each) {
      return side.IsIgnored(each.fPosition) && NModel::EqualIgnoringCase(each.fName, property);
    });
  };
  for (const TPropertySchema& property : schema.fProperties) {
    if (!isIgnored(property.fName)) {
      AddQualifiers(property.fName, property.fQualifiers, ns, elements);
    }
  }
  for (const TMethodSchema& method : schema.fMethods) {
    AddQualifiers(method.fName + "()", method.fQualifiers, ns, elements);
    for (const TParameterSchema& parameter : method.fParameters) {
      AddQualifiers(method.fName + "(" + parameter.fName + ")", parameter.fQualifiers, ns,
                    elements);
    }
  }
  return elements;
}

/// With return type and parameters: "uint32 (uint8 Delay, string Name)".
TElements MethodsOf(const TClassSchema& schema) {
  TElements elements;
  for (const TMethodSchema& method : schema.fMethods) {
    std::string parameters;
    for (const TParameterSchema& each : method.fParameters) {
      parameters += parameters.empty() ? "" : ", ";
      parameters += NModel::TypeText(each.fType) + " " + each.fName;
    }
    elements.push_back({NModel::Folded(method.fName), method.fName + "()",
                        NModel::TypeText(method.fReturnType) + " (" + parameters + ")"});
  }
  return elements;
}

TElements DeclaredIn(const TSide& side) {
  TElements elements;
  const ICIMNamespace& ns = *side.fNamespace.fNamespace;
  for (const TQualifierSchema& each : ReadQualifiers(ns)) {
    const TJSON value = {{"type", NModel::TypeText(each.fDefault.GetType())},
                         {"default", ToJSON(each.fDefault, ns.GetName({}))},
                         {"scope", each.fScope},
                         {"flavor", each.fFlavor}};
    elements.push_back({NModel::Folded(each.fName), "[" + each.fName + "]", value.dump()});
  }
  return elements;
}

}  // namespace

void CompareSchema(const TClassSide& a, const TClassSide& b, TFindings& findings) {
  if (!a.GetDeclaredClass() || !b.GetDeclaredClass()) return;
  const std::string& nsOfA = a.GetSide().fNamespace.fNamespace->GetName({});
  const std::string& nsOfB = b.GetSide().fNamespace.fNamespace->GetName({});
  const TClassSchema before = ReadSchema(a.GetDeclaredClass());
  const TClassSchema after = ReadSchema(b.GetDeclaredClass());
  TSchemaComparison comparison(nsOfA, a.GetClass().fName, findings);
  comparison.Compare(TDifference::kQualifier, QualifiersOf(before, a, nsOfA),
                     QualifiersOf(after, b, nsOfB));
  comparison.Compare(TDifference::kMethod, MethodsOf(before), MethodsOf(after));
}

void CompareQualifierDecls(const TSide& a, const TSide& b, TFindings& findings) {
  TSchemaComparison comparison(a.fNamespace.fNamespace->GetName({}), "", findings);
  comparison.Compare(TDifference::kQualifier, DeclaredIn(a), DeclaredIn(b));
}

}  // namespace NVORNQDX20
