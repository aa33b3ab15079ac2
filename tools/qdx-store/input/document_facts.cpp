// SPDX-License-Identifier: Apache-2.0
#include "document_facts.h"

#include <algorithm>

namespace NVORNQDX20::NStore {
namespace {

bool Matches(const std::string& pattern, const std::string& text) {
  return pattern.empty() || pattern == text;
}

/// Returns whether the list, with blanks between its words, has the word.
bool Has(const std::string& words, const std::string& word) {
  return (" " + words + " ").find(" " + word + " ") != std::string::npos;
}

}  // namespace

bool TDocumentFacts::IsUnknown(const std::string& ns, const std::string& className,
                               const std::string& parts, const std::string& object,
                               const std::string& property) const {
  if (std::find(fNamespaces.begin(), fNamespaces.end(), ns) == fNamespaces.end()) return true;
  return std::any_of(fUnknown.begin(), fUnknown.end(), [&](const TUnknown& unknown) {
    return Matches(unknown.fNamespace, ns) && Matches(unknown.fClass, className) &&
           (unknown.fPart.empty() || Has(parts, unknown.fPart)) &&
           Matches(unknown.fProperty, property) && (!unknown.fObject || *unknown.fObject == object);
  });
}

}  // namespace NVORNQDX20::NStore
