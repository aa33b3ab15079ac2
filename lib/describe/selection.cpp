// SPDX-License-Identifier: Apache-2.0
#include "selection.h"

#include <qdxcore/logger.h>
#include <qdxdescribe/missing_values.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

namespace NVORNQDX20::NDescribe {
namespace {

using TStep = TDescriber::TStep;

using TDeclarationOf = std::function<const TClassDeclaration&(std::size_t)>;

/// The wanted classes and all that they need, at any distance.
class TSelection {
 public:
  TSelection(const std::vector<TLineage>& classes, const TDeclarationOf& declarationOf)
      : fDeclarationOf(declarationOf),
        fSuperclasses(classes.size(), kNone),
        fIsWanted(classes.size()),
        fIsDeclared(classes.size()) {
    for (std::size_t i = 0; i < classes.size(); ++i) fNumbers.emplace(classes[i].fName, i);
    for (std::size_t i = 0; i < classes.size(); ++i)
      fSuperclasses[i] = Find(classes[i].fSuperclass);
  }

  /// Adds the class with its subclasses, since their instances are also its instances.
  void Add(const std::string& name) {
    const std::size_t wanted = Find(name);
    if (wanted == kNone || fIsWanted[wanted]) return;
    fIsWanted[wanted] = true;
    for (std::size_t i = 0; i < fSuperclasses.size(); ++i) {
      if (IsA(i, wanted)) AddDeclaration(i);
    }
  }

  const std::vector<bool>& GetDeclared() const { return fIsDeclared; }

 private:
  static constexpr auto kNone = static_cast<std::size_t>(-1);

  /// Adds the class, its superclasses, and what their references can refer to.
  void AddDeclaration(std::size_t each) {
    for (; each != kNone && !fIsDeclared[each]; each = fSuperclasses[each]) {
      fIsDeclared[each] = true;
      for (const TPropertyDeclaration& property : fDeclarationOf(each).fProperties) {
        if (!property.fReferencedClass.empty()) Add(property.fReferencedClass);
      }
    }
  }

  std::size_t Find(const std::string& name) const {
    const auto found = fNumbers.find(name);
    return found == fNumbers.end() ? kNone : found->second;
  }

  bool IsA(std::size_t derived, std::size_t base) const {
    while (derived != kNone && derived != base) derived = fSuperclasses[derived];
    return derived != kNone;
  }

  const TDeclarationOf& fDeclarationOf;
  NModel::TNameMap<std::size_t> fNumbers;
  std::vector<std::size_t> fSuperclasses;
  std::vector<bool> fIsWanted;
  std::vector<bool> fIsDeclared;
};

}  // namespace

TPartSelection::TPartSelection(const std::vector<TStep>& steps, const TOptionsMap& options)
    : fChoice(options) {
  for (const TStep& step : steps) {
    const TClassDeclaration& declaration = *step.fDeclaration;
    fSuperclasses.emplace(declaration.fName, declaration.fSuperclass);
    if (VerdictOn(declaration) != NModel::TPartChoice::kChosen) AddLeftOut(declaration);
  }
}

NModel::TPartChoice::EVerdict TPartSelection::VerdictOn(
    const TClassDeclaration& declaration) const {
  const auto& [name, isOnRequest] = declaration.fPart;
  return name.empty() ? NModel::TPartChoice::kChosen : fChoice.Of(name, isOnRequest);
}

const std::string* TPartSelection::LeftOutPartOf(const std::string& className) const {
  const auto found = fLeftOut.find(className);
  return found == fLeftOut.end() ? nullptr : &found->second->fName;
}

/// Adds the superclasses, too, since a reference can name one of them.
void TPartSelection::AddLeftOut(const TClassDeclaration& declaration) {
  std::string name = declaration.fName;
  while (!name.empty() && fLeftOut.emplace(name, &declaration.fPart).second) {
    name = fSuperclasses[name];
  }
}

std::vector<bool> WantedClasses(const std::vector<TLineage>& classes, const TOptionsMap& options,
                                const TDeclarationOf& declarationOf) {
  const auto wanted = NModel::ClassesOf(options);
  if (!wanted) return std::vector<bool>(classes.size(), true);
  TSelection selection(classes, declarationOf);
  for (const std::string& name : *wanted) selection.Add(name);
  return selection.GetDeclared();
}

void CheckLineage(const TLineage& lineage, const TClassDeclaration& declaration) {
  if (lineage.fName == declaration.fName && lineage.fSuperclass == declaration.fSuperclass) return;
  throw TExplainedException(kQDXStatusInvalidClass,
                            "the catalogue has class " + lineage.fName + " derived from \"" +
                                lineage.fSuperclass + "\", which is " + declaration.fName +
                                " derived from \"" + declaration.fSuperclass + '"');
}

std::vector<TStep> WantedSteps(const std::vector<TStep>& all, const TOptionsMap& options) {
  std::vector<TLineage> classes;
  classes.reserve(all.size());
  for (const TStep& step : all) {
    classes.push_back({step.fDeclaration->fName, step.fDeclaration->fSuperclass});
  }
  const std::vector<bool> isWanted = WantedClasses(
      classes, options,
      [&all](std::size_t number) -> const TClassDeclaration& { return *all[number].fDeclaration; });
  std::vector<TStep> steps;
  steps.reserve(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (isWanted[i]) steps.push_back(all[i]);
  }
  return steps;
}

std::vector<TStep> ChosenSteps(std::vector<TStep> steps, const TPartSelection& parts) {
  NModel::TNameMap<bool> needed;
  std::vector<TStep> chosen;
  chosen.reserve(steps.size());
  // What a class needs comes before it.
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    const TClassDeclaration& declaration = *step->fDeclaration;
    const auto verdict = parts.VerdictOn(declaration);
    if (verdict == NModel::TPartChoice::kLeftOut && needed.count(declaration.fName) == 0) continue;
    if (verdict == NModel::TPartChoice::kNotAskedFor && step->fDescribe) {
      step->fDescribe = [part = &declaration.fPart](const ICIMNamespace&, IInstanceSink& sink) {
        sink.Miss(ReasonUntilAskedFor(part->fName));
      };
    } else if (verdict != NModel::TPartChoice::kChosen) {
      step->fDescribe = nullptr;
    }
    needed.emplace(declaration.fSuperclass, true);
    for (const TPropertyDeclaration& each : declaration.fProperties) {
      needed.emplace(each.fReferencedClass, true);
    }
    chosen.push_back(*step);
  }
  std::reverse(chosen.begin(), chosen.end());
  return chosen;
}

bool RefersToLeftOut(const TClassDeclaration& declaration, const TPartSelection& parts) {
  return std::any_of(declaration.fProperties.begin(), declaration.fProperties.end(),
                     [&parts](const TPropertyDeclaration& property) {
                       return parts.LeftOutPartOf(property.fReferencedClass) != nullptr;
                     });
}

}  // namespace NVORNQDX20::NDescribe
