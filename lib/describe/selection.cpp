// SPDX-License-Identifier: Apache-2.0
#include "selection.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace NVORNQDX20::NDescribe {
namespace {

using TStep = TDescriber::TStep;

/// The wanted classes and all that they need, at any distance.
class TSelection {
 public:
  explicit TSelection(const std::vector<TStep>& steps) {
    for (const TStep& step : steps) fClasses.emplace(step.fDeclaration->fName, step.fDeclaration);
  }

  /// Adds the class with its subclasses, since their instances are also its instances.
  void Add(const std::string& name) {
    const TClassDeclaration* const wanted = Find(name);
    if (wanted == nullptr || !fWanted.insert(wanted).second) return;
    for (const auto& each : fClasses) {
      if (IsA(*each.second, *wanted)) AddDeclaration(each.second);
    }
  }

  bool Has(const TClassDeclaration& cimClass) const { return fDeclared.count(&cimClass) != 0; }

 private:
  /// Adds the class, its superclasses, and what their references can refer to.
  void AddDeclaration(const TClassDeclaration* each) {
    for (; each != nullptr && fDeclared.insert(each).second; each = Find(each->fSuperclass)) {
      for (const TPropertyDeclaration& property : each->fProperties) Add(property.fReferencedClass);
    }
  }

  const TClassDeclaration* Find(const std::string& name) const {
    const auto found = fClasses.find(name);
    return found == fClasses.end() ? nullptr : found->second;
  }

  bool IsA(const TClassDeclaration& derived, const TClassDeclaration& base) const {
    const TClassDeclaration* each = &derived;
    while (each != nullptr && each != &base) each = Find(each->fSuperclass);
    return each != nullptr;
  }

  NModel::TNameMap<const TClassDeclaration*> fClasses;
  std::unordered_set<const TClassDeclaration*> fWanted;
  std::unordered_set<const TClassDeclaration*> fDeclared;
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

std::vector<TStep> WantedSteps(const std::vector<TStep>& all, const TOptionsMap& options) {
  const auto wanted = NModel::ClassesOf(options);
  if (!wanted) return all;
  TSelection selection(all);
  for (const std::string& name : *wanted) selection.Add(name);
  std::vector<TStep> steps;
  std::copy_if(all.begin(), all.end(), std::back_inserter(steps),
               [&](const TStep& step) { return selection.Has(*step.fDeclaration); });
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
        sink.Miss("not asked for: --with " + part->fName);
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
