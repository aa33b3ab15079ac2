// SPDX-License-Identifier: Apache-2.0
#include <qdxcompare/compare.h>

#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "class_comparison.h"
#include "devices.h"
#include "machine_name.h"
#include "schema_comparison.h"

namespace NVORNQDX20 {
namespace {

/// An element of a side with the lower-case name by which it is found on the other one.
template <typename T>
struct TNamed {
  std::string fFolded;
  T fElement;
};

template <typename T>
void SortByName(std::vector<TNamed<T>>& elements) {
  std::stable_sort(elements.begin(), elements.end(),
                   [](const auto& one, const auto& other) { return one.fFolded < other.fFolded; });
}

/// Calls `visit(const TClass&)` for each class of a namespace.
template <typename TVisit>
void ForEachClass(const ICIMNamespace& ns, const TVisit& visit) {
  ns.EnumerateClasses(
      [&visit](const TClass& root) {
        for (const TClass& each : NModel::WithSubclasses(root)) visit(each);
        return true;
      },
      {});
}

/// Leaves out whole classes that are ignored, and so what refers to their instances.
void LeaveOutIgnored(const std::vector<TComparedNamespace>& namespaces,
                     TComparisonOptions& options) {
  for (const TIgnored& ignored : options.fIgnored) {
    if (!ignored.fProperty.empty()) continue;
    for (const TComparedNamespace& ns : namespaces) {
      ForEachClass(*ns.fNamespace, [&](const TClass& each) {
        const std::string& name = each->GetName({});
        if (NamesClass(ignored, name)) options.fLeftOut.fClasses.insert(NModel::Folded(name));
      });
    }
  }
}

const auto kByName = [](const auto& element) -> const std::string& { return element.fFolded; };

class TComparison {
 public:
  explicit TComparison(TComparisonOptions options) : fOptions(std::move(options)) {}

  // One of `a` and `b` may be null.
  void CompareNamespaces(const TComparedNamespace* a, const TComparedNamespace* b);
  std::vector<TDifference> Finish();

 private:
  std::vector<TNamed<TClass>> ClassesOf(const TSide& side) const;

  const TComparisonOptions fOptions;
  TFindings fFindings;
  std::vector<std::unique_ptr<const TSide>> fSides;
};

void TComparison::CompareNamespaces(const TComparedNamespace* a, const TComparedNamespace* b) {
  static const TComparedNamespace none;
  auto inA = std::make_unique<TSide>(MakeSide(a != nullptr ? *a : none, fOptions.fMachineOfA,
                                              fOptions.fMachineOfB, fOptions.fLeftOut));
  auto inB = std::make_unique<TSide>(MakeSide(b != nullptr ? *b : none, fOptions.fMachineOfB,
                                              fOptions.fMachineOfA, fOptions.fLeftOut));
  if (a == nullptr || b == nullptr) {
    fFindings.Add({TDifference::kNamespace,
                   b == nullptr ? TDifference::kRemoved : TDifference::kAdded,
                   (a != nullptr ? a : b)->fNamespace->GetName({}), "", "", nullptr, nullptr});
  } else if (fOptions.fSchema) {
    CompareQualifierDecls(*inA, *inB, fFindings);
  }
  HideUnknownKeys(*inA, *inB);
  HideUnknownKeys(*inB, *inA);
  Merge(ClassesOf(*inA), ClassesOf(*inB), kByName,
        [&](const TNamed<TClass>* classOfA, const TNamed<TClass>* classOfB) {
          TClassSide sideA(*inA, classOfA != nullptr ? classOfA->fElement : nullptr, fOptions);
          TClassSide sideB(*inB, classOfB != nullptr ? classOfB->fElement : nullptr, fOptions);
          CompareClass(sideA, sideB, fOptions, fFindings);
        });
  fSides.push_back(std::move(inA));
  fSides.push_back(std::move(inB));
}

std::vector<TNamed<TClass>> TComparison::ClassesOf(const TSide& side) const {
  std::vector<TNamed<TClass>> classes;
  if (!side.fNamespace.fNamespace) return classes;
  ForEachClass(*side.fNamespace.fNamespace, [&](const TClass& each) {
    std::string folded = NModel::Folded(each->GetName({}));
    if (fOptions.fLeftOut.fClasses.count(folded) == 0) {
      classes.push_back({std::move(folded), each});
    }
  });
  SortByName(classes);
  return classes;
}

std::vector<TDifference> TComparison::Finish() {
  std::vector<const TSide*> sides;
  for (const auto& side : fSides) sides.push_back(side.get());
  FindDevices(sides, fFindings);
  return std::move(fFindings.fDifferences);
}

std::vector<TNamed<const TComparedNamespace*>> SortedByName(
    const std::vector<TComparedNamespace>& namespaces) {
  std::vector<TNamed<const TComparedNamespace*>> sorted;
  sorted.reserve(namespaces.size());
  for (const TComparedNamespace& each : namespaces) {
    sorted.push_back({NModel::Folded(each.fNamespace->GetName({})), &each});
  }
  SortByName(sorted);
  return sorted;
}

}  // namespace

bool NamesClass(const TIgnored& ignored, const std::string& className) {
  if (ignored.fClass == "*" || NModel::EqualIgnoringCase(ignored.fClass, className)) return true;
  const std::size_t underscore = className.find('_');
  return underscore != std::string::npos &&
         NModel::EqualIgnoringCase(ignored.fClass, className.substr(underscore + 1));
}

std::vector<TDifference> Compare(const std::vector<TComparedNamespace>& a,
                                 const std::vector<TComparedNamespace>& b,
                                 const TComparisonOptions& options) {
  TComparisonOptions effective = options;
  LeaveOutIgnored(a, effective);
  LeaveOutIgnored(b, effective);
  TComparison comparison(std::move(effective));
  const auto elementOf = [](const auto* named) {
    return named == nullptr ? nullptr : named->fElement;
  };
  Merge(SortedByName(a), SortedByName(b), kByName, [&](const auto* inA, const auto* inB) {
    comparison.CompareNamespaces(elementOf(inA), elementOf(inB));
  });
  return comparison.Finish();
}

}  // namespace NVORNQDX20
