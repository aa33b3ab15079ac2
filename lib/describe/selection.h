// SPDX-License-Identifier: Apache-2.0
/// Which classes of a provider are declared, and which of them are described.
#ifndef LIB_DESCRIBE_SELECTION_H_
#define LIB_DESCRIBE_SELECTION_H_

#include <qdxdescribe/provider.h>
#include <qdxmodel/names.h>
#include <qdxmodel/options.h>

#include <string>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// Tells which classes belong to parts that are left out.
class TPartSelection {
 public:
  TPartSelection(const std::vector<TDescriber::TStep>& steps, const TOptionsMap& options);

  NModel::TPartChoice::EVerdict VerdictOn(const TClassDeclaration& declaration) const;
  /// Returns the part for the sake of which instances of this class are missing, or null.
  const std::string* LeftOutPartOf(const std::string& className) const;

 private:
  void AddLeftOut(const TClassDeclaration& declaration);

  const NModel::TPartChoice fChoice;
  NModel::TNameMap<std::string> fSuperclasses;
  NModel::TNameMap<const TPart*> fLeftOut;
};

/// Returns the steps of the classes that option "classes" names, and of those that they need.
std::vector<TDescriber::TStep> WantedSteps(const std::vector<TDescriber::TStep>& all,
                                           const TOptionsMap& options);

/// Replaces the descriptions of classes in other parts by nothing, or by what the caller can do,
/// and drops the classes that nothing needs.
std::vector<TDescriber::TStep> ChosenSteps(std::vector<TDescriber::TStep> steps,
                                           const TPartSelection& parts);

/// Returns whether instances can be missing since they would refer to a part that is left out.
bool RefersToLeftOut(const TClassDeclaration& declaration, const TPartSelection& parts);

}  // namespace NVORNQDX20::NDescribe

#endif  // LIB_DESCRIBE_SELECTION_H_
